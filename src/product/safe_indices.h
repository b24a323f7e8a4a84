#pragma once

#include "product/scene_records.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace tarnwick {

// What is drawn in place of arrays that would make the graphics library read past their end: a file may name
// vertices that it doesn't have, and give a face fewer normals than vertices. Every scene is checked once; a
// sound one needs nothing here.
class SafeIndices {
public:
    struct Mesh {
        bool hasNormals = true;             // false when there are fewer normals than vertices
        bool hasIndices = true;             // false when `indices` replace those of the mesh
        std::vector<std::uint32_t> indices; // the triangles or quads whose vertices are all there, in order
    };

    // Looks through all meshes that are about to be drawn. Either may be null.
    void Check(const DrawList* drawList, const ResultMesh* resultMesh);

    // What to draw in place of arrays of the mesh, or null when it can be drawn as it is.
    const Mesh* Find(const void* mesh) const {
        if (replaced_.empty()) { return nullptr; }
        const auto found = replaced_.find(mesh);
        return found == replaced_.end() ? nullptr : &found->second;
    }

private:
    void CheckMesh(const StepFaceB& mesh);

    std::unordered_map<const void*, Mesh> replaced_; // by StepFaceB or ResultMesh
};

} // namespace tarnwick
