#pragma once

#include "mesher/mesh_format.h"

namespace tarnwick::prepare {

// Gives a face without normals its own: one for all where it is flat, else one for each point, from the
// triangles around that are within 40 degrees of each other. A point at an edge that is sharper becomes
// several. Linear in the triangles.
void AddNormals(MeshFace* face);

} // namespace tarnwick::prepare
