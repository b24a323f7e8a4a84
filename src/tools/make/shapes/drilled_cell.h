#pragma once

#include "tools/make/shapes/builders.h"

#include <numbers>

// A rectangular stretch of a wall with a round hole through it: plates and brackets are made of these.
namespace tarnwick::make {

// Points along a straight row of cells, `steps` to a cell; neighbouring faces take their points from one such
// list.
inline std::vector<double> Stations(double first, double cell, int cells, int steps) {
    std::vector<double> stations;
    for (int c = 0; c < cells; ++c) {
        for (int j = 0; j < steps; ++j) {
            stations.push_back(Mix(first + cell * c, first + cell * (c + 1), j, steps));
        }
    }
    stations.push_back(first + cell * cells);
    return stations;
}

// A rectangular cell with a round hole, in a plane with the axes u and v. The rim and the hole have 4 * steps
// points each, counter-clockwise from the corner of least u and v.
struct HoleCell {
    const std::vector<double>& u;
    const std::vector<double>& v;
    std::size_t firstU;
    std::size_t firstV;
    int steps;
    double radius;

    int Count() const { return 4 * steps; }
    double CentreU() const { return (u[firstU] + u[firstU + Steps()]) / 2; }
    double CentreV() const { return (v[firstV] + v[firstV + Steps()]) / 2; }
    std::size_t Steps() const { return static_cast<std::size_t>(steps); }

    Vec3 Rim(int i) const {
        const auto j = static_cast<std::size_t>(i % steps);
        const auto n = Steps();
        switch (i / steps) {
        case 0:
            return {u[firstU + j], v[firstV], 0};
        case 1:
            return {u[firstU + n], v[firstV + j], 0};
        case 2:
            return {u[firstU + n - j], v[firstV + n], 0};
        default:
            return {u[firstU], v[firstV + n - j], 0};
        }
    }
    Vec3 HoleDirection(int i) const {
        const double angle = -0.75 * std::numbers::pi + 2 * std::numbers::pi * i / Count();
        return {std::cos(angle), std::sin(angle), 0};
    }
    Vec3 Hole(int i) const { return Vec3{CentreU(), CentreV(), 0} + HoleDirection(i) * radius; }
    int RowsToHole(double edge) const {
        return RowsFor((u[firstU + Steps()] - u[firstU] + v[firstV + Steps()] - v[firstV]) / 4 - radius,
                       edge);
    }
};

// Both sides of a wall with a hole, and the hole's own wall. in(u, v, w) gives a point of the solid; w is the
// depth, 0 on the front. Seen from the front, v is a quarter turn counter-clockwise from u.
template <class In>
class DrilledCell {
public:
    DrilledCell(const HoleCell& cell, int rows, In in) : cell_(cell), rows_(rows), in_(in) {}

    void Side(MeshBuilder* out, double w, bool front, Vec3 normal) const {
        const auto pointAt = [&](int row, int i) {
            const Vec3 p = front ? Mix(cell_.Rim(i), cell_.Hole(i), row, rows_)
                                 : Mix(cell_.Hole(i), cell_.Rim(i), row, rows_);
            return in_(p.x, p.y, w);
        };
        out->Grid(rows_, cell_.Count(), true, pointAt, Constant(normal));
    }
    void Wall(MeshBuilder* out, double depth, int rows) const {
        const Vec3 zero = in_(0, 0, 0);
        const Vec3 centre = in_(cell_.CentreU(), cell_.CentreV(), 0);
        out->StartFace(Cylinder(centre, in_(0, 0, 1) - zero, cell_.radius));
        const auto pointAt = [&](int row, int i) {
            const Vec3 p = cell_.Hole(i);
            return in_(p.x, p.y, Mix(0, depth, row, rows));
        };
        const auto normalAt = [&](int, int i) {
            const Vec3 d = cell_.HoleDirection(i);
            return zero - in_(d.x, d.y, 0);
        };
        out->Grid(rows, cell_.Count(), true, pointAt, normalAt);
    }

private:
    const HoleCell& cell_;
    int rows_;
    In in_;
};

} // namespace tarnwick::make
