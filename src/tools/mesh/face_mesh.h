#pragma once

#include "mesher/mesh_format.h"

class TopoDS_Face;

namespace tarnwick::tools {

// Takes the triangles of a face, with points and normals where the face stands in its body and in units of so
// many millimetres. Leaves `mesh` without triangles where the kernel made none or a point of them isn't
// finite. The kernel may throw.
void TakeFaceMesh(const TopoDS_Face& face, double unit, MeshFace* mesh);

} // namespace tarnwick::tools
