#pragma once

#include "write/index_lists.h"
#include "write/placement.h"

#include <cstddef>
#include <vector>

// The tessellated solids that every kind of output writes: flat arrays, and the ways of cutting them into
// faces.
namespace tarnwick::make {

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

// Strips and fans are read as WriteComplexFace says; points and normals are parallel.
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
