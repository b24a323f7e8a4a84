#include "tools/make/shapes/drilled_cell.h"

namespace tarnwick::make {

namespace {

void BuildPlateRim(const std::vector<double>& x, const std::vector<double>& y, double height, int rows,
                   MeshBuilder* out) {
    const auto wall = [&](const std::vector<double>& along, auto at, Vec3 normal) {
        out->StartFace(Plane(at(along[0], 0), normal));
        const auto pointAt = [&](int row, int i) {
            return at(along[static_cast<std::size_t>(i)], Mix(0, height, row, rows));
        };
        out->Grid(rows, static_cast<int>(along.size()) - 1, false, pointAt, Constant(normal));
    };
    const std::vector<double> xBack(x.rbegin(), x.rend());
    const std::vector<double> yBack(y.rbegin(), y.rend());
    wall(x, [&](double s, double z) { return Vec3{s, y.front(), z}; }, {0, -1, 0});
    wall(y, [&](double s, double z) { return Vec3{x.back(), s, z}; }, {1, 0, 0});
    wall(xBack, [&](double s, double z) { return Vec3{s, y.back(), z}; }, {0, 1, 0});
    wall(yBack, [&](double s, double z) { return Vec3{x.front(), s, z}; }, {-1, 0, 0});
}

void BuildBlock(const PlateDims& d, Fineness fine, MeshBuilder* out) {
    const auto x = Stations(-d.cellX * d.columns / 2, d.cellX, d.columns, fine.level);
    const auto y = Stations(-d.cellY * d.rows / 2, d.cellY, d.rows, fine.level);
    const auto at = [&](int i, int j, double z) {
        return Vec3{x[static_cast<std::size_t>(i)], y[static_cast<std::size_t>(j)], z};
    };
    const int columns = static_cast<int>(x.size()) - 1;
    const int rows = static_cast<int>(y.size()) - 1;
    out->StartFace(Plane({0, 0, 0}, {0, 0, -1}));
    out->Grid(
        columns, rows, false, [&](int i, int j) { return at(i, j, 0); }, Constant({0, 0, -1}));
    BuildPlateRim(x, y, d.thickness, fine.level + fine.extraRows, out);
    out->StartFace(Plane({0, 0, d.thickness}, {0, 0, 1}));
    out->Grid(
        rows, columns, false, [&](int j, int i) { return at(i, j, d.thickness); }, Constant({0, 0, 1}));
}

} // namespace

void Build(const PlateDims& d, Fineness fine, MeshBuilder* out) {
    if (d.hole == 0) { return BuildBlock(d, fine, out); }
    const int steps = fine.level + 1;
    const auto x = Stations(-d.cellX * d.columns / 2, d.cellX, d.columns, steps);
    const auto y = Stations(-d.cellY * d.rows / 2, d.cellY, d.rows, steps);
    const double edge = (d.cellX + d.cellY) / (2 * steps);
    const auto in = [&](double u, double v, double w) { return Vec3{u, v, d.thickness - w}; };

    const auto forEachCell = [&](auto use) {
        for (int r = 0; r < d.rows; ++r) {
            for (int c = 0; c < d.columns; ++c) {
                HoleCell cell{x,
                              y,
                              static_cast<std::size_t>(c * steps),
                              static_cast<std::size_t>(r * steps),
                              steps,
                              (r + c) % 2 == 0 ? d.hole : d.otherHole};
                use(DrilledCell(cell, cell.RowsToHole(edge), in), r * d.columns + c);
            }
        }
    };
    out->StartFace(Plane({0, 0, 0}, {0, 0, -1}));
    forEachCell([&](const auto& cell, int) { cell.Side(out, d.thickness, false, {0, 0, -1}); });
    BuildPlateRim(x, y, d.thickness, RowsFor(d.thickness, edge), out);
    out->StartFace(Plane({0, 0, d.thickness}, {0, 0, 1}));
    forEachCell([&](const auto& cell, int) { cell.Side(out, 0, true, {0, 0, 1}); });
    const int holes = d.rows * d.columns;
    forEachCell([&](const auto& cell, int k) {
        const int spare = fine.extraRows * (k + 1) / holes - fine.extraRows * k / holes;
        cell.Wall(out, d.thickness, RowsFor(d.thickness, edge) + spare);
    });
}

} // namespace tarnwick::make
