// Scenes made by hand, as a load leaves them.
#pragma once

#include "load/scene_view.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <vector>

namespace tarnwick::test {

class DrawnScene {
public:
    DrawnScene() {
        list_.items = items_.data();
        view.loaded.drawList = &list_;
    }

    // A part of one face, placed by a world matrix or as it stands.
    void AddPart(const std::vector<float>& points, const std::vector<std::uint32_t>& triangles,
                 const float* matrix = nullptr) {
        std::vector<float>& vertices = points_.emplace_back(points);
        std::vector<std::uint32_t>& indices = indices_.emplace_back(triangles);
        StepFaceB& face = faces_.emplace_back();
        face.vertices = vertices.data();
        face.vertexCount = static_cast<std::int32_t>(vertices.size() / 3);
        face.triangles = indices.data();
        face.triangleCount = static_cast<std::int32_t>(indices.size() / 3);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            face.box[2 * axis] = face.box[2 * axis + 1] = vertices[axis];
            for (std::size_t i = axis; i < vertices.size(); i += 3) {
                face.box[2 * axis] = std::min(face.box[2 * axis], vertices[i]);
                face.box[2 * axis + 1] = std::max(face.box[2 * axis + 1], vertices[i]);
            }
        }
        StepFaceB*& mesh = meshes_.emplace_back(&face);
        items_.push_back(&drawn_.emplace_back(DrawItem{&mesh, 1, matrix, nullptr}));
        list_.items = items_.data();
        list_.count = static_cast<std::int32_t>(items_.size());
        view.loaded.drawnTriangles += face.triangleCount;
    }

    SceneView view;

private:
    std::deque<std::vector<float>> points_;
    std::deque<std::vector<std::uint32_t>> indices_;
    std::deque<StepFaceB> faces_;
    std::deque<StepFaceB*> meshes_;
    std::deque<DrawItem> drawn_;
    std::vector<DrawItem*> items_;
    DrawList list_{};
};

} // namespace tarnwick::test
