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

class BoltHead {
public:
    BoltHead(const BoltDims& d, int perSide, const Turns& turns, double edge, MeshBuilder* out)
        : d_(d), perSide_(perSide), turns_(turns), edge_(edge), out_(*out), chamfer_(0.16 * d.headHeight),
          flat_(d.head * std::cos(std::numbers::pi / 6) * 0.94), corners_(EvenTurns(6)) {}

    void Build() const {
        Bottom();
        Chamfer();
        for (int side = 0; side < 6; ++side) { Side(side); }
        Seat();
    }

private:
    Vec3 Hexagon(int i, double z) const {
        const int side = i / perSide_ % 6;
        return Mix(corners_.Point(side, d_.head, z), corners_.Point(side + 1, d_.head, z), i % perSide_,
                   perSide_);
    }

    void Bottom() const {
        const Vec3 down{0, 0, -1};
        const int count = turns_.Count();
        const int rows = RowsFor(flat_, edge_);
        out_.StartFace(Plane({0, 0, 0}, down));
        out_.Disc({0, 0, 0}, count, down,
                  [&](int i) { return turns_.Point((count - i) % count, Mix(0, flat_, 1, rows), 0); });
        if (rows == 1) { return; }
        const auto pointAt = [&](int row, int i) { return turns_.Point(i, Mix(0, flat_, row + 1, rows), 0); };
        out_.Grid(rows - 1, count, true, pointAt, Constant(down));
    }
    void Chamfer() const {
        const int rows = RowsFor(chamfer_, edge_);
        const auto pointAt = [&](int row, int i) {
            return Mix(turns_.Point(i, flat_, 0), Hexagon(i, chamfer_), row, rows);
        };
        const auto normalAt = [&](int, int i) {
            return Unit(turns_.Direction(i) * chamfer_ + Vec3{0, 0, flat_ - Length(Hexagon(i, 0))});
        };
        out_.StartFace();
        out_.Grid(rows, turns_.Count(), true, pointAt, normalAt);
    }
    void Side(int side) const {
        const Vec3 normal = Unit(corners_.Point(side, 1, 0) + corners_.Point(side + 1, 1, 0));
        const int rows = RowsFor(d_.headHeight - chamfer_, edge_);
        const auto pointAt = [&](int row, int i) {
            return Hexagon(side * perSide_ + i, Mix(chamfer_, d_.headHeight, row, rows));
        };
        out_.StartFace(Plane(Hexagon(side * perSide_, 0), normal));
        out_.Grid(rows, perSide_, false, pointAt, Constant(normal));
    }
    void Seat() const {
        const int rows = RowsFor(d_.head - d_.shank, edge_);
        const auto pointAt = [&](int row, int i) {
            return Mix(Hexagon(i, d_.headHeight), turns_.Point(i, d_.shank, d_.headHeight), row, rows);
        };
        out_.StartFace(Plane({0, 0, d_.headHeight}, {0, 0, 1}));
        out_.Grid(rows, turns_.Count(), true, pointAt, Constant({0, 0, 1}));
    }

    const BoltDims& d_;
    const int perSide_; // edges of the outline
    const Turns& turns_;
    const double edge_;
    MeshBuilder& out_;
    const double chamfer_; // its height
    const double flat_;    // radius of the bottom
    const Turns corners_;
};

} // namespace

void Build(const BoltDims& d, Fineness fine, MeshBuilder* out) {
    const int perSide = fine.level + 1;
    const Turns turns = EvenTurns(6 * perSide);
    const double edge = 2 * std::numbers::pi * d.shank / turns.Count() * 1.5;
    BoltHead(d, perSide, turns, edge, out).Build();
    out->Revolve(ShankProfile(d, fine.level), false, turns, edge, fine.extraRows);
}

} // namespace tarnwick::make
