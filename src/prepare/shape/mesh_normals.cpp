#include "prepare/shape/mesh_normals.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace tarnwick::prepare {

namespace {

constexpr double kSmooth = 0.766; // the cosine of 40 degrees
constexpr double kFlat = 0.99999;
constexpr std::size_t kMostAround = 64; // triangles at a point that are compared with each other

Vec3 UnitOrZero(Vec3 v) {
    const double length = Length(v);
    return length > 0 && std::isfinite(length) ? v * (1 / length) : Vec3{};
}

// Twice its area long.
Vec3 AreaNormal(const MeshFace& face, const Triangle& t) {
    const Vec3 a = face.points[t[0]];
    return Cross(face.points[t[1]] - a, face.points[t[2]] - a);
}

bool IsFlat(const std::vector<Vec3>& units, Vec3 mean) {
    for (const Vec3 unit : units) {
        if (Dot(unit, unit) > 0 && Dot(unit, mean) < kFlat) { return false; }
    }
    return true;
}

// The corners at each point, by point: corner 3 * triangle + k.
struct CornersAtPoints {
    std::vector<std::size_t> begin; // one more than points
    std::vector<std::size_t> corners;

    explicit CornersAtPoints(const MeshFace& face)
        : begin(face.points.size() + 1), corners(3 * face.triangles.size()) {
        for (const Triangle& t : face.triangles) {
            for (const Index point : t) { ++begin[point + 1]; }
        }
        for (std::size_t i = 1; i < begin.size(); ++i) { begin[i] += begin[i - 1]; }
        std::vector<std::size_t> next(begin.begin(), begin.end() - 1);
        for (std::size_t i = 0; i < face.triangles.size(); ++i) {
            for (std::size_t k = 0; k < 3; ++k) { corners[next[face.triangles[i][k]]++] = 3 * i + k; }
        }
    }
};

} // namespace

void AddNormals(MeshFace* face) {
    std::vector<Vec3> areas;
    std::vector<Vec3> units;
    areas.reserve(face->triangles.size());
    units.reserve(face->triangles.size());
    Vec3 sum;
    for (const Triangle& t : face->triangles) {
        areas.push_back(AreaNormal(*face, t));
        units.push_back(UnitOrZero(areas.back()));
        sum = sum + areas.back();
    }
    const Vec3 mean = UnitOrZero(sum);
    if (IsFlat(units, mean)) {
        face->normals = {Dot(mean, mean) > 0 ? mean : Vec3{0, 0, 1}};
        return;
    }
    const CornersAtPoints around(*face);
    std::vector<Vec3> points;
    std::vector<Vec3> normals;
    for (std::size_t point = 0; point < face->points.size(); ++point) {
        const std::size_t begin = around.begin[point];
        const std::size_t end = around.begin[point + 1];
        const bool isMany = end - begin > kMostAround;
        const std::size_t first = points.size(); // of this point's copies
        for (std::size_t i = begin; i < end; ++i) {
            const std::size_t own = around.corners[i] / 3;
            Vec3 normal;
            for (std::size_t k = isMany ? i : begin; k < (isMany ? i + 1 : end); ++k) {
                const std::size_t other = around.corners[k] / 3;
                if (Dot(units[own], units[other]) >= kSmooth) { normal = normal + areas[other]; }
            }
            normal = UnitOrZero(normal);
            if (Dot(normal, normal) == 0) { normal = Dot(mean, mean) > 0 ? mean : Vec3{0, 0, 1}; }
            std::size_t copy = first;
            const std::size_t last = points.size();
            while (copy < last && (isMany || Dot(normals[copy], normal) < kFlat)) {
                copy += isMany ? last - copy : 1;
            }
            if (copy == last) {
                points.push_back(face->points[point]);
                normals.push_back(normal);
            }
            face->triangles[own][around.corners[i] % 3] = static_cast<Index>(copy);
        }
    }
    face->points = std::move(points);
    face->normals = std::move(normals);
}

} // namespace tarnwick::prepare
