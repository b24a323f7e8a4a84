#include "tools/make/shapes/builders.h"

#include <numbers>

namespace tarnwick::make {

namespace {

// The sector of a ring around one of its holes, laid out like a HoleCell.
struct HoleSector {
    const FlangeDims& d;
    const Turns& turns;
    int number;
    int steps;
    double inner;
    double outer;
    double z;

    int Count() const { return 4 * steps; }
    Vec3 Rim(int i) const {
        const int j = i % steps;
        const int first = number * steps;
        const int last = first + steps;
        switch (i / steps) {
        case 0:
            return turns.Point(first, Mix(inner, outer, j, steps), z);
        case 1:
            return turns.Point(first + j, outer, z);
        case 2:
            return turns.Point(last, Mix(outer, inner, j, steps), z);
        default:
            return turns.Point(last - j, inner, z);
        }
    }
    Vec3 HoleDirection(int i) const {
        const double angle = -0.75 * std::numbers::pi + 2 * std::numbers::pi * i / Count() + Middle();
        return {std::cos(angle), std::sin(angle), 0};
    }
    Vec3 HoleCentre() const { return {d.holeRing * std::cos(Middle()), d.holeRing * std::sin(Middle()), z}; }
    Vec3 Hole(int i) const { return HoleCentre() + HoleDirection(i) * d.hole; }
    double Middle() const { return 2 * std::numbers::pi * (number + 0.5) / d.holes; }
};

class FlangeBuilder {
public:
    FlangeBuilder(const FlangeDims& d, Fineness fine, MeshBuilder* out)
        : d_(d), out_(*out), steps_(fine.level + 2), turns_(EvenTurns(steps_ * d.holes)),
          edge_(2 * std::numbers::pi * d.outer / turns_.Count()), seatHeight_(0.14 * d.thickness),
          seat_(d.holeRing - 1.6 * d.hole), top_(seatHeight_ + d.thickness), spare_(fine.extraRows / 2),
          holeSpare_(fine.extraRows - spare_) {}

    void Build() const {
        out_.Revolve({{d_.outer, seatHeight_}, {d_.outer, top_}}, false, turns_, edge_, 0);
        Ring(d_.neck, top_, true);
        out_.Revolve(NeckProfile(), false, turns_, edge_, spare_);
        Ring(seat_, seatHeight_, false);
        for (int k = 0; k < d_.holes; ++k) { Hole(Sector(k, seat_, top_)); }
    }

private:
    HoleSector Sector(int number, double inner, double z) const {
        return {d_, turns_, number, steps_, inner, d_.outer, z};
    }

    // From the top over the neck and through the bore to the seat.
    std::vector<ProfilePoint> NeckProfile() const {
        const double neckTop = top_ + d_.neckHeight;
        const double lip = (d_.neck + d_.bore) / 2;
        return {{d_.neck, top_},
                {d_.neck, top_ + 0.2 * d_.neckHeight},
                {lip, neckTop - 0.25 * d_.neckHeight},
                {lip, neckTop},
                {d_.bore, neckTop},
                {d_.bore, 0},
                {seat_, 0},
                {seat_, seatHeight_}};
    }

    // The flat face around the holes on one side.
    void Ring(double inner, double z, bool up) const {
        const Vec3 normal{0, 0, up ? 1.0 : -1.0};
        out_.StartFace(Plane({0, 0, z}, normal));
        const int rows = RowsFor((d_.outer - inner) / 2 - d_.hole, edge_);
        for (int k = 0; k < d_.holes; ++k) {
            const HoleSector s = Sector(k, inner, z);
            const auto pointAt = [&](int row, int i) {
                return up ? Mix(s.Rim(i), s.Hole(i), row, rows) : Mix(s.Hole(i), s.Rim(i), row, rows);
            };
            out_.Grid(rows, s.Count(), true, pointAt, Constant(normal));
        }
    }
    void Hole(const HoleSector& s) const {
        const int spare = holeSpare_ * (s.number + 1) / d_.holes - holeSpare_ * s.number / d_.holes;
        const int rows = RowsFor(d_.thickness, edge_) + spare;
        const auto pointAt = [&](int row, int i) {
            const Vec3 p = s.Hole(i);
            return Vec3{p.x, p.y, Mix(top_, seatHeight_, row, rows)};
        };
        out_.StartFace(Cylinder(s.HoleCentre(), {0, 0, 1}, d_.hole));
        out_.Grid(rows, s.Count(), true, pointAt, [&](int, int i) { return s.HoleDirection(i) * -1; });
    }

    const FlangeDims& d_;
    MeshBuilder& out_;
    const int steps_;
    const Turns turns_;
    const double edge_;
    const double seatHeight_;
    const double seat_; // radius
    const double top_;  // height
    const int spare_;   // rows for the neck
    const int holeSpare_;
};

} // namespace

void Build(const FlangeDims& d, Fineness fine, MeshBuilder* out) {
    FlangeBuilder(d, fine, out).Build();
}

} // namespace tarnwick::make
