#pragma once

#include "tools/make/shapes/mesh.h"
#include "tools/make/shapes/mix.h"

#include <cmath>

// Builds the faces of a solid from grids of points, or only counts the triangles that it would build.
namespace tarnwick::make {

// How far a shape is subdivided: a level for its outlines, and single rows more for what lies between two
// levels.
struct Fineness {
    int level = 1; // from 1
    int extraRows = 0;
};

// Rows that make the quads of a grid about as long as the edges across.
inline int RowsFor(double length, double edge) {
    return std::max(1, static_cast<int>(length / edge + 0.5));
}

// Directions around an axis, counter-clockwise.
struct Turns {
    std::vector<double> cosines;
    std::vector<double> sines;

    int Count() const { return static_cast<int>(cosines.size()); }
    void Add(double angle) {
        cosines.push_back(std::cos(angle));
        sines.push_back(std::sin(angle));
    }
    Vec3 Direction(int i) const { return Point(i, 1, 0); }
    // i may be Count(), which is the first direction again
    Vec3 Point(int i, double radius, double height) const {
        const auto k = static_cast<std::size_t>(i == Count() ? 0 : i);
        return {radius * cosines[k], radius * sines[k], height};
    }
};
Turns EvenTurns(int count);

class MeshBuilder {
public:
    enum class Mode { kBuild, kCount };
    explicit MeshBuilder(Mode mode) : counting_(mode == Mode::kCount) {}

    void StartFace(const Surface& surface = {});

    // A grid of rows x columns quads, appended to the face in hand. pointAt(row, column) and normalAt(row,
    // column) are asked for all corners; a closed grid's last column joins its first. Columns run so that
    // (direction of columns) x (direction of rows) points out of the solid.
    template <class PointAt, class NormalAt>
    void Grid(int rows, int columns, bool closed, PointAt pointAt, NormalAt normalAt);

    // Triangles around a centre; pointAt(0 .. count - 1) runs counter-clockwise seen from outside. A disc
    // goes all the way round, a fan of count points has count - 1 triangles.
    template <class PointAt>
    void Disc(Vec3 centre, int count, Vec3 normal, PointAt pointAt);
    template <class PointAt>
    void Fan(Vec3 centre, int count, Vec3 normal, PointAt pointAt);

    // One face for each segment of a turned outline, but for those that are joined to the one before. A point
    // on the axis makes a disc. `edge` is the length that the rows aim at; `spareRows` more rows are spread
    // over all.
    void Revolve(const std::vector<ProfilePoint>& profile, bool closed, const Turns& turns, double edge,
                 int spareRows);

    std::size_t Triangles() const { return triangles_; }
    std::vector<Face>& Faces() { return faces_; }

private:
    void RevolveSegment(ProfilePoint from, ProfilePoint to, const Turns& turns, int rows);
    void AddRowStrips(Index first, int rows, int columns, bool closed);

    bool counting_;
    std::size_t triangles_ = 0;
    std::vector<Face> faces_;
};

template <class PointAt, class NormalAt>
void MeshBuilder::Grid(int rows, int columns, bool closed, PointAt pointAt, NormalAt normalAt) {
    triangles_ += 2 * static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
    if (counting_) { return; }
    Face& face = faces_.back();
    const auto first = static_cast<Index>(face.points.size());
    for (int row = 0; row <= rows; ++row) {
        for (int column = 0; column < columns + (closed ? 0 : 1); ++column) {
            face.points.push_back(pointAt(row, column));
            face.normals.push_back(normalAt(row, column));
        }
    }
    AddRowStrips(first, rows, columns, closed);
}

template <class PointAt>
void MeshBuilder::Fan(Vec3 centre, int count, Vec3 normal, PointAt pointAt) {
    triangles_ += static_cast<std::size_t>(count) - 1;
    if (counting_) { return; }
    Face& face = faces_.back();
    const auto first = static_cast<Index>(face.points.size());
    face.points.push_back(centre);
    for (int i = 0; i < count; ++i) { face.points.push_back(pointAt(i)); }
    face.normals.resize(face.points.size(), normal);
    for (int i = 0; i <= count; ++i) { face.fans.indices.push_back(first + static_cast<Index>(i)); }
    face.fans.CloseList();
}

template <class PointAt>
void MeshBuilder::Disc(Vec3 centre, int count, Vec3 normal, PointAt pointAt) {
    Fan(centre, count, normal, pointAt);
    ++triangles_;
    if (counting_) { return; }
    Face& face = faces_.back();
    face.fans.indices.push_back(static_cast<Index>(face.points.size()) - static_cast<Index>(count));
    face.fans.ends.back() = face.fans.indices.size();
}

} // namespace tarnwick::make
