#pragma once

#include "write/index_lists.h"
#include "write/p21_writer.h"

#include <span>

namespace tarnwick {

// A COORDINATES_LIST.
EntityId WriteCoordinates(P21Writer* out, std::span<const Vec3> points);

// What every kind of face has.
struct FaceEntity {
    EntityId coordinates;
    std::size_t points = 0;        // that the face uses
    std::span<const Vec3> normals; // none, one for the whole face, or one for each point
    EntityId link;                 // the exact face or surface, or none
    std::span<const int> pnindex;  // of each point its number in the list, from 1; empty: all in its order
};

// Triangles, strips and fans number the points of the face from 0. A strip s gives the triangles (s0 s1 s2),
// (s3 s2 s1), (s2 s3 s4) ...; a fan f gives (f0 f1 f2), (f0 f2 f3) ... Counter-clockwise seen from outside.
EntityId WriteFace(P21Writer* out, const FaceEntity& face, std::span<const Triangle> triangles);
EntityId WriteComplexFace(P21Writer* out, const FaceEntity& face, const IndexLists& strips,
                          const IndexLists& fans);
// A face that is itself an item of a representation; it has no link.
EntityId WriteSurfaceSet(P21Writer* out, const FaceEntity& face, const IndexLists& strips,
                         const IndexLists& fans);

} // namespace tarnwick
