#pragma once

#include "tools/make/shapes/mesh_builder.h"
#include "tools/make/shapes/shapes.h"

// One builder for each shape, and what several of them use.
namespace tarnwick::make {

void Build(const PlateDims& d, Fineness fine, MeshBuilder* out);
void Build(const GearDims& d, Fineness fine, MeshBuilder* out);
void Build(const BoltDims& d, Fineness fine, MeshBuilder* out);
void Build(const FlangeDims& d, Fineness fine, MeshBuilder* out);
void Build(const ShaftDims& d, Fineness fine, MeshBuilder* out);
void Build(const WasherDims& d, Fineness fine, MeshBuilder* out);
void Build(const BracketDims& d, Fineness fine, MeshBuilder* out);

// The closed outline of a turned shape.
std::vector<ProfilePoint> Profile(const ShaftDims& d);
std::vector<ProfilePoint> Profile(const WasherDims& d);

inline Surface Plane(Vec3 origin, Vec3 outward) {
    return {Surface::Kind::kPlane, origin, outward, 0, 0};
}
inline Surface Cylinder(Vec3 origin, Vec3 axis, double radius) {
    return {Surface::Kind::kCylinder, origin, axis, radius, 0};
}
inline auto Constant(Vec3 v) {
    return [v](int, int) { return v; };
}

} // namespace tarnwick::make
