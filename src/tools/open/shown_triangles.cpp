#include "tools/open/shown_triangles.h"

#include "formats/load_commands.h"
#include "load/no_controls.h"
#include "platform/console.h"

#include <fcntl.h>
#include <unistd.h>

namespace tarnwick::tools {

namespace {

// The alpha test of the drawing drops what is at or below it.
constexpr float kLeastAlpha = 0.01f;

std::size_t CountVisible(const DrawList& list) {
    std::size_t count = 0;
    for (std::int32_t i = 0; i < list.count; ++i) {
        const DrawItem& item = *list.items[i];
        for (std::int32_t j = 0; j < item.meshCount; ++j) {
            const StepFaceB* const mesh = item.meshes[j];
            if (mesh != nullptr && mesh->colour[3] > kLeastAlpha) {
                count += static_cast<std::size_t>(mesh->triangleCount);
            }
        }
    }
    return count;
}

} // namespace

std::size_t ShownTriangles(const std::string& file) {
    EnableOutput(false);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) { dup2(nowhere, STDERR_FILENO); }
    SceneView view;
    NoControls controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    if (!LoadFile(dispatch, file.c_str(), nullptr, true)) { return 0; }
    if (view.loaded.drawList != nullptr) { return CountVisible(*view.loaded.drawList); }
    return static_cast<std::size_t>(view.loaded.drawnTriangles);
}

} // namespace tarnwick::tools
