#include "support/sound_scene.h"

namespace tarnwick::test {

namespace {

void Touch(const float* numbers, std::int32_t count) {
    volatile float sum = 0;
    for (std::int32_t i = 0; i < count; ++i) { sum = sum + numbers[i]; }
}

bool InRange(const std::uint32_t* indices, std::int32_t count, std::int32_t end) {
    for (std::int32_t i = 0; i < count; ++i) {
        if (indices[i] >= static_cast<std::uint32_t>(end)) { return false; }
    }
    return true;
}

std::string UnsoundItems(const DrawList& list, std::int32_t drawnTriangles) {
    std::int32_t triangles = 0;
    for (std::int32_t i = 0; i < list.count; ++i) {
        const DrawItem& item = *list.items[i];
        if (item.matrix != nullptr) { Touch(item.matrix, 16); }
        for (std::int32_t m = 0; m < item.meshCount; ++m) {
            const StepFaceB& face = *item.meshes[m];
            if (face.vertexCount < 1 || face.normalCount > face.vertexCount) { return "a face"; }
            Touch(face.vertices, 3 * face.vertexCount);
            Touch(face.normals, 3 * face.normalCount);
            triangles += face.triangleCount;
        }
    }
    return triangles == drawnTriangles ? "" : "the count of the triangles";
}

std::string UnsoundBoxes(const DrawList& list, std::int32_t drawnTriangles) {
    std::int32_t triangles = 0;
    for (std::int32_t i = 0; i < list.count; ++i) {
        const BoxItem& box = *list.boxes[i];
        if (box.matrix != nullptr) { Touch(box.matrix, 16); }
        Touch(box.vertices, 3 * box.vertexCount);
        Touch(box.normals, 3 * box.vertexCount);
        if (!InRange(box.indices, 3 * box.triangleCount, box.vertexCount)) { return "an index of a box"; }
        triangles += box.triangleCount;
    }
    return triangles == drawnTriangles ? "" : "the count of the boxes' triangles";
}

} // namespace

std::string UnsoundIn(const SceneView& view) {
    if (view.loaded.resultMesh != nullptr) {
        const ResultMesh& mesh = *view.loaded.resultMesh;
        Touch(mesh.vertices, 3 * mesh.nodeCount);
        if (!InRange(mesh.quadIndices, 4 * mesh.quadCount, mesh.nodeCount)) { return "a quad"; }
    }
    if (view.loaded.boxList != nullptr) {
        return UnsoundBoxes(*view.loaded.boxList, view.loaded.drawnTriangles);
    }
    return view.loaded.drawList != nullptr ? UnsoundItems(*view.loaded.drawList, view.loaded.drawnTriangles)
                                           : "";
}

} // namespace tarnwick::test
