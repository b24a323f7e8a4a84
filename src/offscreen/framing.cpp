#include "offscreen/framing.h"

#include "offscreen/drawn_reach.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace tarnwick {

namespace {

// The part of half the picture to be filled; the rest on each side is the margin.
constexpr double kFilled = 0.94;
// How near to the eye a vertex may come, as a part of the eye's distance: otherwise long things that point at
// the eye would reach into it.
constexpr double kNearest = 0.5;

// Steps between the slopes of planes through the eye, from the view's axis to the edge of the picture.
constexpr std::size_t kSlopes = 8;

// How far the drawn scene reaches beyond planes of each slope, towards one side of the picture and the other.
struct Reaches {
    std::array<double, kSlopes + 1> towards;
    std::array<double, kSlopes + 1> away;

    Reaches() {
        towards.fill(-std::numeric_limits<double>::infinity());
        away.fill(-std::numeric_limits<double>::infinity());
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
    // Quarter turns are exact, so that a picture from the side has straight edges.
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
    // From the front, the right and above, in equal parts.
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

namespace {

// The directions that FitDrawn asks about for each rotation: for each slope and axis of the picture the
// normals of the planes of both sides, then the axis towards the eye.
constexpr std::size_t kPerRotation = 4 * (kSlopes + 1) + 1;

double SlopeOf(std::size_t step, double edge) {
    return edge * static_cast<double>(step) / static_cast<double>(kSlopes);
}

void AddDirections(const Rotation& rotation, const double edges[2], std::vector<Direction>* directions) {
    const Direction toEye = Row(rotation, 2);
    for (std::size_t axis = 0; axis < 2; ++axis) {
        const Direction along = Row(rotation, axis);
        const Direction back{-along[0], -along[1], -along[2]};
        for (std::size_t step = 0; step <= kSlopes; ++step) {
            directions->push_back(Sum(toEye, SlopeOf(step, edges[axis]), along));
            directions->push_back(Sum(toEye, SlopeOf(step, edges[axis]), back));
        }
    }
    directions->push_back(toEye);
}

// How far to move the scene at this scale, so that both sides have the same room left.
double Middle(const Reaches& reaches, double scale, double edge, double distance) {
    // By the slope at which both sides just fit. Between two slopes the reach is below their chord, so that
    // nothing is cut off.
    double slack[2] = {};
    double shift[2] = {};
    for (std::size_t step = 0; step <= kSlopes; ++step) {
        slack[0] = slack[1];
        shift[0] = shift[1];
        slack[1] = 2 * SlopeOf(step, edge) * distance - scale * (reaches.towards[step] + reaches.away[step]);
        shift[1] = scale * (reaches.away[step] - reaches.towards[step]) / 2;
        if (step > 0 && slack[1] >= 0) { break; }
    }
    if (!(slack[1] > slack[0])) { return shift[1]; }
    const double part = std::clamp(-slack[0] / (slack[1] - slack[0]), 0.0, 1.0);
    return shift[0] + part * (shift[1] - shift[0]);
}

} // namespace

// A point q of the turned model is seen at (scale * q.x + shift) / (distance - scale * q.z) off the middle.
// That is within a slope where scale * (q.x + slope * q.z) + shift <= slope * distance, and likewise for the
// other sides: of all vertices only the largest value for each side and slope matters.
std::optional<Framing> FitDrawn(const SceneView& view, const std::vector<Rotation>& rotations,
                                const Lens& lens) {
    const double edges[2] = {kFilled * lens.across, kFilled * lens.up};
    std::vector<Direction> directions;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Direction along{};
        along[axis] = 1;
        directions.push_back(along);
        along[axis] = -1;
        directions.push_back(along);
    }
    const std::size_t fixed = directions.size();
    for (const Rotation& rotation : rotations) { AddDirections(rotation, edges, &directions); }
    const auto reach = DrawnReach(view, directions);
    if (!reach) { return std::nullopt; }

    Framing framing{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        framing.centre[axis] = ((*reach)[2 * axis] - (*reach)[2 * axis + 1]) / 2;
    }
    Reaches sides[2];
    double front = 0;
    for (std::size_t first = fixed; first < directions.size(); first += kPerRotation) {
        std::size_t next = first;
        const auto take = [&] {
            const double fromCentre = (*reach)[next] - Product(directions[next], framing.centre);
            ++next;
            return fromCentre;
        };
        for (Reaches& side : sides) {
            for (std::size_t step = 0; step <= kSlopes; ++step) {
                side.towards[step] = std::max(side.towards[step], take());
                side.away[step] = std::max(side.away[step], take());
            }
        }
        front = std::max(front, take());
    }
    framing.scale = kNearest * lens.distance / front;
    for (std::size_t axis = 0; axis < 2; ++axis) {
        framing.scale = std::min(framing.scale, 2 * edges[axis] * lens.distance /
                                                    (sides[axis].towards.back() + sides[axis].away.back()));
    }
    if (!std::isfinite(framing.scale) || framing.scale <= 0) { framing.scale = 1; } // all in one point
    framing.across = Middle(sides[0], framing.scale, edges[0], lens.distance);
    framing.up = Middle(sides[1], framing.scale, edges[1], lens.distance);
    return framing;
}

} // namespace tarnwick
