#include "product/safe_indices.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>

namespace tarnwick {

namespace {

// Whether all `count` indices are below `limit`. The loop has no early exit, so that it takes eight indices
// at a time.
bool AllBelow(const std::uint32_t* indices, std::size_t count, std::uint32_t limit) {
    std::uint32_t highest = 0;
    for (std::size_t i = 0; i < count; ++i) { highest = std::max(highest, indices[i]); }
    return count == 0 || highest < limit;
}

// A copy of the polygons, of `corners` indices each, whose indices are all below `limit`.
std::vector<std::uint32_t> SoundPolygons(const std::uint32_t* indices, std::size_t count, std::size_t corners,
                                         std::uint32_t limit) {
    std::vector<std::uint32_t> sound;
    for (std::size_t i = 0; i + corners <= count; i += corners) {
        if (AllBelow(indices + i, corners, limit)) {
            sound.insert(sound.end(), indices + i, indices + i + corners);
        }
    }
    return sound;
}

std::size_t CountOf(std::int32_t count) {
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

} // namespace

void SafeIndices::CheckMesh(const StepFaceB& mesh) {
    const std::size_t count = 3 * CountOf(mesh.triangleCount);
    const auto limit = static_cast<std::uint32_t>(CountOf(mesh.vertexCount));
    Mesh safe;
    safe.hasNormals = mesh.normalCount >= mesh.vertexCount;
    safe.hasIndices = AllBelow(mesh.triangles, count, limit);
    if (safe.hasNormals && safe.hasIndices) { return; }
    if (!safe.hasIndices) { safe.indices = SoundPolygons(mesh.triangles, count, 3, limit); }
    replaced_.emplace(&mesh, std::move(safe));
}

void SafeIndices::Check(const DrawList* drawList, const ResultMesh* resultMesh) {
    replaced_.clear();
    if (drawList != nullptr) {
        std::unordered_set<StepFaceB* const*> seen; // placed copies of a part share its array of meshes
        for (std::int32_t i = 0; i < drawList->count; ++i) {
            const DrawItem& item = *drawList->items[i];
            if (!seen.insert(item.meshes).second) { continue; }
            for (std::int32_t j = 0; j < item.meshCount; ++j) {
                if (item.meshes[j] != nullptr) { CheckMesh(*item.meshes[j]); }
            }
        }
    }
    if (resultMesh != nullptr) {
        const std::size_t count = 4 * CountOf(resultMesh->quadCount);
        const auto limit = static_cast<std::uint32_t>(CountOf(resultMesh->nodeCount));
        if (!AllBelow(resultMesh->quadIndices, count, limit)) {
            replaced_.emplace(resultMesh,
                              Mesh{true, false, SoundPolygons(resultMesh->quadIndices, count, 4, limit)});
        }
    }
}

} // namespace tarnwick
