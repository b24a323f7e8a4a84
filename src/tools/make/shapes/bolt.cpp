#include "tools/make/shapes/builders.h"

#include <algorithm>
#include <numbers>

namespace tarnwick::make {

namespace {

std::vector<ProfilePoint> ShankProfile(const BoltDims& d, int level) {
    const double seat = d.headHeight;
    const double tip = seat + d.length;
    const double start = seat + d.length * 0.35;
    const double core = d.shank - 0.6 * d.pitch;
    const double end = tip - 0.6 * d.pitch;
    // A coarse bolt has fewer and wider grooves, so that it needn't cost hundreds of triangles.
    const int grooves = std::clamp(static_cast<int>((end - start) / d.pitch), 1, 3 + 2 * level);
    std::vector<ProfilePoint> profile{{d.shank, seat}, {d.shank, start}};
    for (int i = 0; i < grooves; ++i) {
        profile.push_back({core, Mix(start, end, 2 * i + 1, 2 * grooves), true});
        profile.push_back({d.shank, Mix(start, end, 2 * i + 2, 2 * grooves), i + 1 < grooves});
    }
    profile.push_back({core, tip});
    profile.push_back({0, tip});
    return profile;
}

void BuildBoltHead(const BoltDims& d, int perSide, const Turns& turns, double edge, MeshBuilder* out) {
    const int count = turns.Count();
    const double chamfer = 0.16 * d.headHeight;
    const double flat = d.head * std::cos(std::numbers::pi / 6) * 0.94;
    const Turns corners = EvenTurns(6);
    const auto hexagon = [&](int i, double z) {
        const int side = i / perSide % 6;
        return Mix(corners.Point(side, d.head, z), corners.Point(side + 1, d.head, z), i % perSide, perSide);
    };
    out->StartFace(Plane({0, 0, 0}, {0, 0, -1}));
    const int rows = RowsFor(flat, edge);
    out->Disc({0, 0, 0}, count, {0, 0, -1},
              [&](int i) { return turns.Point((count - i) % count, Mix(0, flat, 1, rows), 0); });
    if (rows > 1) {
        const auto outward = [&](int row, int i) { return turns.Point(i, Mix(0, flat, row + 1, rows), 0); };
        out->Grid(rows - 1, count, true, outward, Constant({0, 0, -1}));
    }
    out->StartFace();
    const int chamferRows = RowsFor(chamfer, edge);
    const auto slope = [&](int row, int i) {
        return Mix(turns.Point(i, flat, 0), hexagon(i, chamfer), row, chamferRows);
    };
    const auto slopeNormal = [&](int, int i) {
        return Unit(turns.Direction(i) * chamfer + Vec3{0, 0, flat - Length(hexagon(i, 0))});
    };
    out->Grid(chamferRows, count, true, slope, slopeNormal);
    const int up = RowsFor(d.headHeight - chamfer, edge);
    for (int side = 0; side < 6; ++side) {
        const Vec3 normal = Unit(corners.Point(side, 1, 0) + corners.Point(side + 1, 1, 0));
        out->StartFace(Plane(hexagon(side * perSide, 0), normal));
        const auto pointAt = [&](int row, int i) {
            return hexagon(side * perSide + i, Mix(chamfer, d.headHeight, row, up));
        };
        out->Grid(up, perSide, false, pointAt, Constant(normal));
    }
    out->StartFace(Plane({0, 0, d.headHeight}, {0, 0, 1}));
    const int in = RowsFor(d.head - d.shank, edge);
    const auto seat = [&](int row, int i) {
        return Mix(hexagon(i, d.headHeight), turns.Point(i, d.shank, d.headHeight), row, in);
    };
    out->Grid(in, count, true, seat, Constant({0, 0, 1}));
}

} // namespace

void Build(const BoltDims& d, Fineness fine, MeshBuilder* out) {
    const int perSide = fine.level + 1;
    const Turns turns = EvenTurns(6 * perSide);
    const double edge = 2 * std::numbers::pi * d.shank / turns.Count() * 1.5;
    BuildBoltHead(d, perSide, turns, edge, out);
    out->Revolve(ShankProfile(d, fine.level), false, turns, edge, fine.extraRows);
}

} // namespace tarnwick::make
