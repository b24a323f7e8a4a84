#pragma once

#include "write/vec.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The tessellated solids that every kind of output writes: flat arrays, and the ways of cutting them into
// faces.
namespace tarnwick::make {

using Index = std::uint32_t;
using Triangle = std::array<Index, 3>;

// Lists of vertex numbers (from 0), one behind the other; ends[k] is where list k ends.
struct IndexLists {
    std::vector<Index> indices;
    std::vector<std::size_t> ends;

    std::size_t Count() const { return ends.size(); }
    std::span<const Index> List(std::size_t k) const {
        const std::size_t start = k == 0 ? 0 : ends[k - 1];
        return {indices.data() + start, ends[k] - start};
    }
    void CloseList() { ends.push_back(indices.size()); }
};

// The exact surface under a face, in the coordinates of its solid.
struct Surface {
    enum class Kind { kFree, kPlane, kCylinder, kCone };
    Kind kind = Kind::kFree;
    Vec3 origin;
    Vec3 axis{0, 0, 1};   // plane: outward normal; cone: the direction in which it widens
    double radius = 0;    // at the origin
    double halfAngle = 0; // of a cone, radians
    bool operator==(const Surface&) const = default;
};

// A strip s gives the triangles (s0 s1 s2), (s3 s2 s1), (s2 s3 s4) ...; a fan f gives (f0 f1 f2), (f0 f2 f3)
// ... Counter-clockwise seen from outside. points and normals are parallel.
struct Face {
    std::vector<Vec3> points;
    std::vector<Vec3> normals;
    IndexLists strips;
    IndexLists fans;
    Surface surface;
    int origin =
        -1; // number of the face of the shape that this one is, or is cut from; -1 when joined from several
};

// A corner of a turned outline: distance from the axis and height. The outline has the material on its left.
struct ProfilePoint {
    double r = 0;
    double z = 0;
    bool joined = false; // the segment that starts here goes on with the face of the one before it
};

// What a segment of the outline becomes when turned.
Surface SurfaceOfSegment(ProfilePoint from, ProfilePoint to);

struct Solid {
    std::vector<Face> faces;
    // The whole outline of a turned solid, whose segment i carries the face of origin i; empty for any other.
    std::vector<ProfilePoint> profile;
    int shapeFaces = 0; // faces of the shape before they were cut or joined
};

std::size_t TriangleCount(const Face& face);
std::size_t TriangleCount(const Solid& solid);
void AppendTriangles(const Face& face, std::vector<Triangle>* triangles);

// The same triangles as strips alone, or as fans alone.
IndexLists AsStrips(const Face& face);
IndexLists AsFans(const Face& face);

// Cuts or joins the faces until there are `count` of them, if there are that many pieces to cut: the largest
// number is one face for each quad of a strip and for each triangle of a fan.
void SetFaceCount(Solid* solid, std::size_t count);

// Moves the points and turns the normals; the surfaces and the profile stay in the solid's own coordinates.
void PlaceMesh(const Placement& at, Solid* solid);

} // namespace tarnwick::make
