#pragma once

#include "tools/make/shapes/mesh.h"
#include "write/p21_writer.h"

// The exact shapes that tessellated solids and faces link to.
namespace tarnwick::make {

struct ExactLinks {
    EntityId solid;              // MANIFOLD_SOLID_BREP, or none
    std::vector<EntityId> faces; // by Face::origin: ADVANCED_FACE, or the bare surface, or none
};

// A turned solid gets its whole boundary, any other the surfaces of those faces that have a simple one.
ExactLinks WriteExact(P21Writer* out, const Solid& solid, const Placement& at);

} // namespace tarnwick::make
