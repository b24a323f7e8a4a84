#pragma once

#include "write/placement.h"

#include <array>
#include <cmath>
#include <optional>

namespace tarnwick::prepare {

// Maps a point p to linear * p + move. `linear` by rows. It may mirror, scale and shear.
struct Transform {
    std::array<double, 9> linear{1, 0, 0, 0, 1, 0, 0, 0, 1};
    Vec3 move;
    bool operator==(const Transform&) const = default;
};

inline Vec3 TurnBy(const Transform& t, Vec3 v) {
    const auto& m = t.linear;
    return {m[0] * v.x + m[1] * v.y + m[2] * v.z, m[3] * v.x + m[4] * v.y + m[5] * v.z,
            m[6] * v.x + m[7] * v.y + m[8] * v.z};
}
inline Vec3 Apply(const Transform& t, Vec3 p) {
    return TurnBy(t, p) + t.move;
}

// First `inner`, then `outer`.
Transform operator*(const Transform& outer, const Transform& inner);
double Determinant(const Transform& t);
// Nothing for one that flattens space.
std::optional<Transform> Inverse(const Transform& t);
Transform Scaling(double factor);
bool IsIdentity(const Transform& t);
// Whether distances and handedness stay as they are, to 1e-6.
bool IsRigid(const Transform& t);
// Of a placement whose axes may be of any length and at any angle, as files have them: z counts, and of x the
// part at a right angle to z; an x along z gives way to another (ISO 10303-42, axis2_placement_3d).
Transform FromAxes(Vec3 origin, std::optional<Vec3> z, std::optional<Vec3> x);
// The placement of one that is rigid.
Placement ToPlacement(const Transform& t);

} // namespace tarnwick::prepare
