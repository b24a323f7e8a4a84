#include "tools/make/shapes/builders.h"

#include <algorithm>
#include <numbers>

namespace tarnwick::make {

namespace {

double LargestRadius(const std::vector<ProfilePoint>& profile) {
    double radius = 0;
    for (const ProfilePoint p : profile) { radius = std::max(radius, p.r); }
    return radius;
}

void BuildTurned(const std::vector<ProfilePoint>& profile, Fineness fine, MeshBuilder* out) {
    const Turns turns = EvenTurns(4 + 4 * fine.level);
    const double edge = 2 * std::numbers::pi * LargestRadius(profile) / turns.Count() * 1.5;
    out->Revolve(profile, profile.front().r != 0, turns, edge, fine.extraRows);
}

} // namespace

std::vector<ProfilePoint> Profile(const ShaftDims& d) {
    std::vector<ProfilePoint> profile{{0, 0}, {d.steps.front().radius - d.chamfer, 0}};
    double z = 0;
    double radius = 0;
    for (const ShaftDims::Step& step : d.steps) {
        radius = step.radius;
        profile.push_back({radius, z == 0 ? d.chamfer : z});
        z += step.length;
        profile.push_back({radius, z});
    }
    profile.back().z = z - d.chamfer;
    profile.push_back({radius - d.chamfer, z});
    profile.push_back({0, z});
    return profile;
}

std::vector<ProfilePoint> Profile(const WasherDims& d) {
    const double c = d.chamfer;
    const double h = d.thickness;
    return {{d.outer - c, 0}, {d.outer, c},    {d.outer, h - c}, {d.outer - c, h},
            {d.bore + c, h},  {d.bore, h - c}, {d.bore, c},      {d.bore + c, 0}};
}

void Build(const ShaftDims& d, Fineness fine, MeshBuilder* out) {
    BuildTurned(Profile(d), fine, out);
}
void Build(const WasherDims& d, Fineness fine, MeshBuilder* out) {
    BuildTurned(Profile(d), fine, out);
}

} // namespace tarnwick::make
