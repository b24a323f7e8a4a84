#include "prepare/placement/transform.h"

#include <algorithm>

namespace tarnwick::prepare {

namespace {

constexpr double kRigid = 1e-6;

Vec3 Column(const Transform& t, std::size_t i) {
    return {t.linear[i], t.linear[i + 3], t.linear[i + 6]};
}

Transform FromColumns(Vec3 x, Vec3 y, Vec3 z, Vec3 move) {
    return {{x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z}, move};
}

// Of unit length; nothing for one without a direction.
std::optional<Vec3> Direction(const std::optional<Vec3>& v) {
    if (!v) { return std::nullopt; }
    const double length = Length(*v);
    if (!(length > 0) || !std::isfinite(length)) { return std::nullopt; }
    return *v * (1 / length);
}

} // namespace

Transform operator*(const Transform& outer, const Transform& inner) {
    Transform product;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            double sum = 0;
            for (std::size_t k = 0; k < 3; ++k) {
                sum += outer.linear[3 * row + k] * inner.linear[3 * k + column];
            }
            product.linear[3 * row + column] = sum;
        }
    }
    product.move = Apply(outer, inner.move);
    return product;
}

double Determinant(const Transform& t) {
    return Dot(Column(t, 0), Cross(Column(t, 1), Column(t, 2)));
}

std::optional<Transform> Inverse(const Transform& t) {
    const double determinant = Determinant(t);
    if (!std::isfinite(determinant) || determinant == 0) { return std::nullopt; }
    const Vec3 x = Column(t, 0);
    const Vec3 y = Column(t, 1);
    const Vec3 z = Column(t, 2);
    const Vec3 a = Cross(y, z) * (1 / determinant);
    const Vec3 b = Cross(z, x) * (1 / determinant);
    const Vec3 c = Cross(x, y) * (1 / determinant);
    Transform inverse{{a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z}, {}};
    inverse.move = TurnBy(inverse, t.move) * -1;
    return inverse;
}

Transform Scaling(double factor) {
    return {{factor, 0, 0, 0, factor, 0, 0, 0, factor}, {}};
}

bool IsIdentity(const Transform& t) {
    return t == Transform{};
}

bool IsRigid(const Transform& t) {
    const Vec3 x = Column(t, 0);
    const Vec3 y = Column(t, 1);
    const Vec3 z = Column(t, 2);
    const auto isNear = [](double value, double wanted) { return std::abs(value - wanted) < kRigid; };
    return isNear(Dot(x, x), 1) && isNear(Dot(y, y), 1) && isNear(Dot(z, z), 1) && isNear(Dot(x, y), 0) &&
           isNear(Dot(y, z), 0) && isNear(Dot(z, x), 0) && Determinant(t) > 0;
}

Transform FromAxes(Vec3 origin, std::optional<Vec3> z, std::optional<Vec3> x) {
    const Vec3 axis = Direction(z).value_or(Vec3{0, 0, 1});
    std::optional<Vec3> across;
    if (const std::optional<Vec3> wanted = Direction(x)) {
        const Vec3 rest = *wanted - axis * Dot(*wanted, axis);
        if (Length(rest) > 1e-9) { across = Direction(rest); }
    }
    if (!across) {
        const Vec3 other = std::abs(axis.x) > 0.999999 ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
        across = Direction(other - axis * Dot(other, axis));
    }
    return FromColumns(*across, Cross(axis, *across), axis, origin);
}

Placement ToPlacement(const Transform& t) {
    return {t.move, Unit(Column(t, 2)), Unit(Column(t, 0))};
}

} // namespace tarnwick::prepare
