#pragma once

#include "write/placement.h"

namespace tarnwick::make {

// Step i of n on the way from a to b. The ends are exact and Mix(a, b, i, n) has the bits of Mix(b, a, n - i,
// n): two faces that walk a common edge in opposite directions must meet in the same points.
inline double Mix(double a, double b, int i, int n) {
    if (i == 0 || a == b) { return a; }
    if (i == n) { return b; }
    return (a * (n - i) + b * i) / n;
}
inline Vec3 Mix(Vec3 a, Vec3 b, int i, int n) {
    return {Mix(a.x, b.x, i, n), Mix(a.y, b.y, i, n), Mix(a.z, b.z, i, n)};
}

} // namespace tarnwick::make
