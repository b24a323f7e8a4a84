#pragma once

#include "mesher/mesh_format.h"

class TopoDS_Face;

namespace tarnwick::tools {

// Takes the triangles of a face, with points and normals as the face lies in its body; `unit` is millimetres
// of one length unit of the points. Leaves `mesh` without triangles where the kernel made none or a point
// isn't finite. The kernel may throw.
void TakeFaceMesh(const TopoDS_Face& face, double unit, MeshFace* mesh);

} // namespace tarnwick::tools
