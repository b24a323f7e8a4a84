// tarnwick-bench-stl FILE OUT.stl: what is drawn of a file as binary STL, so that programs for other formats
// can be compared with ours on the same triangles. Placements are applied; colours and normals are left out.

#include "formats/load_commands.h"
#include "load/no_controls.h"
#include "platform/console.h"
#include "platform/whole_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

using namespace tarnwick;

constexpr std::size_t kHeaderBytes = 80;

void AddCorner(const float* matrix, const float* vertex, std::vector<char>* bytes) {
    float placed[3] = {vertex[0], vertex[1], vertex[2]};
    for (int r = 0; matrix != nullptr && r < 3; ++r) {
        placed[r] =
            matrix[r] * vertex[0] + matrix[4 + r] * vertex[1] + matrix[8 + r] * vertex[2] + matrix[12 + r];
    }
    const char* const first = reinterpret_cast<const char*>(placed);
    bytes->insert(bytes->end(), first, first + sizeof placed);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) { return 2; }
    EnableOutput(false);
    ShowErrorsOnly(true);
    SceneView view;
    NoControls controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    LoadFile(dispatch, argv[1], nullptr, true);
    if (view.loaded.drawList == nullptr) { return 1; }
    std::vector<char> bytes(kHeaderBytes + sizeof(std::uint32_t));
    std::uint32_t count = 0;
    for (std::int32_t i = 0; i < view.loaded.drawList->count; ++i) {
        const DrawItem& item = *view.loaded.drawList->items[i];
        for (std::int32_t j = 0; j < item.meshCount; ++j) {
            if (item.meshes[j] == nullptr) { continue; }
            const StepFaceB& mesh = *item.meshes[j];
            for (std::int32_t t = 0; t < mesh.triangleCount; ++t, ++count) {
                bytes.insert(bytes.end(), 3 * sizeof(float), 0); // the normal
                for (int k = 0; k < 3; ++k) {
                    AddCorner(item.matrix, mesh.vertices + 3 * std::size_t{mesh.triangles[3 * t + k]},
                              &bytes);
                }
                bytes.insert(bytes.end(), 2, 0);
            }
        }
    }
    std::memcpy(bytes.data() + kHeaderBytes, &count, sizeof count);
    WholeFile file(argv[2]);
    file.Write(bytes.data(), bytes.size());
    return file.Close() == 0 ? 0 : 1;
}
