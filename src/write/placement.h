#pragma once

#include <cmath>

// Points, directions and placements, in millimetres.
namespace tarnwick {

struct Vec3 {
    double x = 0;
    double y = 0;
    double z = 0;
    bool operator==(const Vec3&) const = default;
};

inline Vec3 operator+(Vec3 a, Vec3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(Vec3 a, Vec3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator*(Vec3 a, double s) {
    return {a.x * s, a.y * s, a.z * s};
}
inline double Dot(Vec3 a, Vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 Cross(Vec3 a, Vec3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(Vec3 a) {
    return std::sqrt(Dot(a, a));
}
inline Vec3 Unit(Vec3 a) {
    return a * (1.0 / Length(a));
}
inline bool IsFinite(Vec3 a) {
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

// Where a thing is: its own origin and its own x and z axes, both of unit length and at right angles.
struct Placement {
    Vec3 origin;
    Vec3 z{0, 0, 1};
    Vec3 x{1, 0, 0};
};

inline Vec3 Turn(const Placement& at, Vec3 v) {
    return at.x * v.x + Cross(at.z, at.x) * v.y + at.z * v.z;
}
inline Vec3 Place(const Placement& at, Vec3 p) {
    return at.origin + Turn(at, p);
}
inline Placement Place(const Placement& at, const Placement& inner) {
    return {Place(at, inner.origin), Turn(at, inner.z), Turn(at, inner.x)};
}

} // namespace tarnwick
