#include "tools/make/shapes/drilled_cell.h"

#include <numbers>

namespace tarnwick::make {

namespace {

// Points of the section of an angle, in x and z: both legs from the end of the fillet outward, the fillet,
// and the outer corner with as many points as the fillet.
struct BracketSection {
    BracketSection(const BracketDims& d, int steps, int arcSteps) : thickness(d.thickness) {
        const double start = d.thickness + d.fillet;
        x = Stations(start, d.legX - start, 1, steps);
        z = Stations(start, d.legZ - start, 1, steps);
        const int half = arcSteps / 2;
        for (int i = 0; i <= arcSteps; ++i) {
            const double angle = std::numbers::pi + std::numbers::pi / 2 * i / arcSteps;
            inward.push_back({-std::cos(angle), 0, -std::sin(angle)});
            arc.push_back(Vec3{start, 0, start} - inward.back() * d.fillet);
            corner.push_back(i < half ? Vec3{0, 0, Mix(start, 0, i, half)}
                                      : Vec3{Mix(0, start, i - half, half), 0, 0});
        }
        arc.front() = {thickness, 0, start};
        arc.back() = {start, 0, thickness};
        inward.front() = {1, 0, 0};
        inward.back() = {0, 0, 1};
    }
    double thickness;
    std::vector<double> x;
    std::vector<double> z;
    std::vector<Vec3> arc;
    std::vector<Vec3> inward;
    std::vector<Vec3> corner;
};

class BracketBuilder {
public:
    BracketBuilder(const BracketDims& d, Fineness fine, MeshBuilder* out)
        : d_(d), out_(*out), steps_(fine.level + 1), arcSteps_(2 * ((fine.level + 3) / 4)),
          extra_(fine.extraRows), width_(d.cellY * d.holes), edge_(d.cellY / steps_),
          section_(d, steps_, arcSteps_), y_(Stations(0, d.cellY, d.holes, steps_)),
          across_(RowsFor(d.thickness, edge_)) {}

    void Build() {
        Leg(
            section_.x, [this](double u, double v, double w) { return At(u, v, w); }, {0, 0, 1}, false, 0);
        Leg(
            section_.z, [this](double v, double u, double w) { return At(w, u, v); }, {1, 0, 0}, true,
            d_.holes);
        Fillet();
        Side(0, {0, -1, 0});
        Side(width_, {0, 1, 0});
        End({1, 0, 0},
            [this](double y, int i) { return At(section_.x.back(), y, Mix(0, d_.thickness, i, across_)); });
        End({0, 0, 1},
            [this](double y, int i) { return At(Mix(d_.thickness, 0, i, across_), y, section_.z.back()); });
    }

private:
    Vec3 At(double x, double y, double z) const { return {x - d_.legX / 2, y - width_ / 2, z}; }
    double Y(int i) const { return y_[static_cast<std::size_t>(i)]; }
    int YCount() const { return static_cast<int>(y_.size()) - 1; }

    // at(s, y, w): s along the leg, w from its outer side (0) to its inner side (thickness). Which of s and y
    // comes first in a right-handed plane differs between the two legs.
    template <class PointIn>
    void Leg(const std::vector<double>& s, PointIn at, Vec3 normal, bool yFirst, int firstHole) {
        const double t = d_.thickness;
        const auto in = [&](double u, double v, double w) {
            return yFirst ? at(v, u, t - w) : at(u, v, t - w);
        };
        const auto forEachCell = [&](auto use) {
            for (int k = 0; k < d_.holes; ++k) {
                const auto first = static_cast<std::size_t>(k * steps_);
                HoleCell cell{yFirst ? y_ : s,    yFirst ? s : y_, yFirst ? first : 0,
                              yFirst ? 0 : first, steps_,          d_.hole};
                use(DrilledCell(cell, cell.RowsToHole(edge_), in), k);
            }
        };
        out_.StartFace(Plane(at(s[0], 0, t), normal));
        forEachCell([&](const auto& cell, int) { cell.Side(&out_, 0, true, normal); });
        out_.StartFace(Plane(at(s[0], 0, 0), normal * -1));
        forEachCell([&](const auto& cell, int) { cell.Side(&out_, t, false, normal * -1); });
        CornerStrip(yFirst, normal * -1);
        forEachCell([&](const auto& cell, int k) {
            const int holes = 2 * d_.holes;
            const int hole = firstHole + k;
            const int spare = extra_ * (hole + 1) / holes - extra_ * hole / holes;
            cell.Wall(&out_, t, across_ + spare);
        });
    }
    // What the outer side of a leg has besides its cells: the stretch from the outer corner to the end of the
    // fillet.
    void CornerStrip(bool upright, Vec3 normal) {
        const int half = arcSteps_ / 2;
        const int first = upright ? 0 : half;
        const auto pointAt = [&](int row, int i) {
            const Vec3 p = section_.corner[static_cast<std::size_t>(first + i)];
            return At(p.x, Y(YCount() - row), p.z);
        };
        out_.Grid(YCount(), half, false, pointAt, Constant(normal));
    }
    void Fillet() {
        const double start = d_.thickness + d_.fillet;
        out_.StartFace(Cylinder(At(start, 0, start), {0, 1, 0}, d_.fillet));
        const auto pointAt = [&](int row, int i) {
            const Vec3 p = section_.arc[static_cast<std::size_t>(i)];
            return At(p.x, Y(row), p.z);
        };
        out_.Grid(YCount(), arcSteps_, false, pointAt,
                  [&](int, int i) { return section_.inward[static_cast<std::size_t>(i)]; });
    }
    // The L-shaped face at one end of the row of holes; seen from the far end it is walked the other way
    // round.
    void Side(double y, Vec3 normal) {
        const bool far = y > 0;
        const double t = d_.thickness;
        out_.StartFace(Plane(At(0, y, 0), normal));
        const auto band = [&](int count, auto outer, auto inner) {
            const auto pointAt = [&](int row, int i) {
                const auto k = static_cast<std::size_t>(i);
                const Vec3 p =
                    far ? Mix(inner(k), outer(k), row, across_) : Mix(outer(k), inner(k), row, across_);
                return At(p.x, y, p.z);
            };
            out_.Grid(across_, count, false, pointAt, Constant(normal));
        };
        const auto corner = [&](std::size_t i) { return section_.corner[i]; };
        const auto arc = [&](std::size_t i) { return section_.arc[i]; };
        band(arcSteps_, corner, arc);
        const auto bottom = [&](std::size_t i) { return Vec3{section_.x[i], 0, 0}; };
        const auto top = [&](std::size_t i) { return Vec3{section_.x[i], 0, t}; };
        band(steps_, bottom, top);
        const std::vector<double> down(section_.z.rbegin(), section_.z.rend());
        const auto back = [&](std::size_t i) { return Vec3{0, 0, down[i]}; };
        const auto front = [&](std::size_t i) { return Vec3{t, 0, down[i]}; };
        band(steps_, back, front);
    }
    template <class PointIn>
    void End(Vec3 normal, PointIn at) {
        out_.StartFace(Plane(at(0, 0), normal));
        out_.Grid(
            across_, YCount(), false, [&](int row, int i) { return at(Y(i), row); }, Constant(normal));
    }

    const BracketDims& d_;
    MeshBuilder& out_;
    int steps_;
    int arcSteps_;
    int extra_;
    double width_;
    double edge_;
    BracketSection section_;
    std::vector<double> y_;
    int across_;
};

} // namespace

void Build(const BracketDims& d, Fineness fine, MeshBuilder* out) {
    BracketBuilder(d, fine, out).Build();
}

} // namespace tarnwick::make
