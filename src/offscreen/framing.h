#pragma once

#include "load/scene_view.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace tarnwick {

// A rotation from the model's axes to those of the picture, x to the right, y up, z towards the eye: three
// rows of three.
using Rotation = std::array<double, 9>;

inline constexpr Rotation kNoRotation{1, 0, 0, 0, 1, 0, 0, 0, 1};

// `second` after `first`.
Rotation Combined(const Rotation& second, const Rotation& first);
// About one of the axes, 0 for x; from x to y, y to z, z to x where the angle, in degrees, is above 0.
Rotation About(int axis, double degrees);

struct NamedView {
    std::string_view name;
    Rotation rotation;
};
// The model stands on its x y plane, and its front looks towards lower y. "top" is the drawing window's view
// of a new model.
extern const std::array<NamedView, 7> kNamedViews;
const NamedView* FindView(std::string_view name); // null for no name of a view

// How the drawing window projects. The eye looks along -z from `distance` above the origin; at 1 from it, the
// picture shows what is up to `across` and `up` off the middle.
struct Lens {
    double across;
    double up;
    double distance;
};

// What brings the drawn vertices into the picture: `centre` of the model goes to the origin, all is scaled,
// turned, and then moved across and up.
struct Framing {
    double centre[3];
    double scale;
    double across;
    double up;
};

// The framing that fills the picture, but for a margin, with what is drawn in each of the rotations: it fits
// all of them. Empty when nothing is drawn.
std::optional<Framing> FitDrawn(const SceneView& view, const std::vector<Rotation>& rotations,
                                const Lens& lens);

} // namespace tarnwick
