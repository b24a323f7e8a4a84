#include "offscreen/framing.h"

#include "offscreen/drawn_reach.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace tarnwick {

namespace {

// Of half the picture; what is left of it on each side is the margin.
constexpr double kFilled = 0.94;
// How near to the eye the drawn may come, as a part of the eye's distance: long things that point at it would
// otherwise reach into it.
constexpr double kNearest = 0.5;

constexpr std::size_t kReaches = 5; // of each rotation, in the order of `Sides`

// How far what is drawn reaches towards each side of the view's pyramid, and towards the eye.
struct Sides {
    double right, left, top, bottom, front;

    void Widen(const Sides& other) {
        right = std::max(right, other.right);
        left = std::max(left, other.left);
        top = std::max(top, other.top);
        bottom = std::max(bottom, other.bottom);
        front = std::max(front, other.front);
    }
};

Direction Row(const Rotation& rotation, std::size_t row) {
    return {rotation[3 * row], rotation[3 * row + 1], rotation[3 * row + 2]};
}

Direction Sum(const Direction& a, double factor, const Direction& b) {
    return {a[0] * factor + b[0], a[1] * factor + b[1], a[2] * factor + b[2]};
}

double Product(const Direction& a, const double b[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

} // namespace

Rotation Combined(const Rotation& second, const Rotation& first) {
    Rotation product{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            for (std::size_t k = 0; k < 3; ++k) {
                product[3 * row + column] += second[3 * row + k] * first[3 * k + column];
            }
        }
    }
    return product;
}

Rotation About(int axis, double degrees) {
    // Quarters exactly, so that a picture from the side has straight edges.
    const double turn = std::remainder(degrees, 360.0);
    double sine = std::sin(turn * std::numbers::pi / 180);
    double cosine = std::cos(turn * std::numbers::pi / 180);
    if (std::remainder(turn, 90.0) == 0) {
        sine = std::round(sine);
        cosine = std::round(cosine);
    }
    const auto next = static_cast<std::size_t>((axis + 1) % 3);
    const auto last = static_cast<std::size_t>((axis + 2) % 3);
    Rotation rotation = kNoRotation;
    rotation[3 * next + next] = rotation[3 * last + last] = cosine;
    rotation[3 * last + next] = sine;
    rotation[3 * next + last] = -sine;
    return rotation;
}

const std::array<NamedView, 7> kNamedViews{{
    {"front", {1, 0, 0, 0, 0, 1, 0, -1, 0}},
    {"back", {-1, 0, 0, 0, 0, 1, 0, 1, 0}},
    {"left", {0, -1, 0, 0, 0, 1, -1, 0, 0}},
    {"right", {0, 1, 0, 0, 0, 1, 1, 0, 0}},
    {"top", kNoRotation},
    {"bottom", {1, 0, 0, 0, -1, 0, 0, 0, -1}},
    // From the front, the right and above, all three alike.
    {"iso",
     {1 / std::numbers::sqrt2, 1 / std::numbers::sqrt2, 0, //
      -std::numbers::inv_sqrt3 / std::numbers::sqrt2, std::numbers::inv_sqrt3 / std::numbers::sqrt2,
      std::numbers::inv_sqrt3* std::numbers::sqrt2, //
      std::numbers::inv_sqrt3, -std::numbers::inv_sqrt3, std::numbers::inv_sqrt3}},
}};

const NamedView* FindView(std::string_view name) {
    const auto* const found = std::find_if(kNamedViews.begin(), kNamedViews.end(),
                                           [name](const NamedView& view) { return view.name == name; });
    return found != kNamedViews.end() ? found : nullptr;
}

// A point q of the turned model is seen at (scale * q.x + across) / (distance - scale * q.z) of the middle,
// and must be seen within `lens.across`, times what is filled: scale * (q.x + wide * q.z) + across <= wide *
// distance, and the same for the other sides. So a largest value for each side is all that the vertices have
// to say.
std::optional<Framing> FitDrawn(const SceneView& view, const std::vector<Rotation>& rotations,
                                const Lens& lens) {
    const double wide = kFilled * lens.across;
    const double high = kFilled * lens.up;
    std::vector<Direction> directions;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Direction along{};
        along[axis] = 1;
        directions.push_back(along);
        along[axis] = -1;
        directions.push_back(along);
    }
    const std::size_t fixed = directions.size();
    for (const Rotation& rotation : rotations) {
        const Direction x = Row(rotation, 0);
        const Direction y = Row(rotation, 1);
        const Direction z = Row(rotation, 2);
        const Direction left{-x[0], -x[1], -x[2]};
        const Direction down{-y[0], -y[1], -y[2]};
        directions.insert(directions.end(),
                          {Sum(z, wide, x), Sum(z, wide, left), Sum(z, high, y), Sum(z, high, down), z});
    }
    const auto reach = DrawnReach(view, directions);
    if (!reach) { return std::nullopt; }

    Framing framing{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        framing.centre[axis] = ((*reach)[2 * axis] - (*reach)[2 * axis + 1]) / 2;
    }
    constexpr double kNone = -std::numeric_limits<double>::infinity();
    Sides sides{kNone, kNone, kNone, kNone, kNone};
    for (std::size_t i = fixed; i < directions.size(); i += kReaches) {
        const auto from = [&](std::size_t k) {
            return (*reach)[i + k] - Product(directions[i + k], framing.centre);
        };
        sides.Widen({from(0), from(1), from(2), from(3), from(4)});
    }
    framing.scale = std::min({2 * wide * lens.distance / (sides.right + sides.left),
                              2 * high * lens.distance / (sides.top + sides.bottom),
                              kNearest * lens.distance / std::max(sides.front, 0.0)});
    if (!std::isfinite(framing.scale) || framing.scale <= 0) { framing.scale = 1; } // all is in one point
    framing.across = framing.scale * (sides.left - sides.right) / 2;
    framing.up = framing.scale * (sides.bottom - sides.top) / 2;
    return framing;
}

} // namespace tarnwick
