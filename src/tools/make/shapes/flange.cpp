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

} // namespace

void Build(const FlangeDims& d, Fineness fine, MeshBuilder* out) {
    const int steps = fine.level + 2;
    const Turns turns = EvenTurns(steps * d.holes);
    const double edge = 2 * std::numbers::pi * d.outer / turns.Count();
    const double seatHeight = 0.14 * d.thickness;
    const double seat = d.holeRing - 1.6 * d.hole;
    const double top = seatHeight + d.thickness;
    const int spare = fine.extraRows / 2;
    const int holeSpare = fine.extraRows - spare;

    out->Revolve({{d.outer, seatHeight}, {d.outer, top}}, false, turns, edge, 0);
    const auto forEachSector = [&](double inner, double z, auto use) {
        for (int k = 0; k < d.holes; ++k) { use(HoleSector{d, turns, k, steps, inner, d.outer, z}); }
    };
    const auto ring = [&](double inner, double z, bool up) {
        const Vec3 normal{0, 0, up ? 1.0 : -1.0};
        out->StartFace(Plane({0, 0, z}, normal));
        const int rows = RowsFor((d.outer - inner) / 2 - d.hole, edge);
        forEachSector(inner, z, [&](const HoleSector& s) {
            const auto pointAt = [&](int row, int i) {
                return up ? Mix(s.Rim(i), s.Hole(i), row, rows) : Mix(s.Hole(i), s.Rim(i), row, rows);
            };
            out->Grid(rows, s.Count(), true, pointAt, Constant(normal));
        });
    };
    ring(d.neck, top, true);
    const double neckTop = top + d.neckHeight;
    const double lip = (d.neck + d.bore) / 2;
    out->Revolve({{d.neck, top},
                  {d.neck, top + 0.2 * d.neckHeight},
                  {lip, neckTop - 0.25 * d.neckHeight},
                  {lip, neckTop},
                  {d.bore, neckTop},
                  {d.bore, 0},
                  {seat, 0},
                  {seat, seatHeight}},
                 false, turns, edge, spare);
    ring(seat, seatHeight, false);
    forEachSector(seat, top, [&](const HoleSector& s) {
        out->StartFace(Cylinder(s.HoleCentre(), {0, 0, 1}, d.hole));
        const int rows = RowsFor(d.thickness, edge) + holeSpare * (s.number + 1) / d.holes -
                         holeSpare * s.number / d.holes;
        const auto pointAt = [&](int row, int i) {
            const Vec3 p = s.Hole(i);
            return Vec3{p.x, p.y, Mix(top, seatHeight, row, rows)};
        };
        out->Grid(rows, s.Count(), true, pointAt, [&](int, int i) { return s.HoleDirection(i) * -1; });
    });
}

} // namespace tarnwick::make
