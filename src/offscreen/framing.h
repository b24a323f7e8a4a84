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

// The rotation by `first` and then by `second`.
Rotation Combined(const Rotation& second, const Rotation& first);
// The rotation about an axis: 0 for x, 1 for y, 2 for z. A positive angle turns y to z, z to x or x to y.
Rotation About(int axis, double degrees);

struct NamedView {
    std::string_view name;
    Rotation rotation;
};
// The model stands on its x y plane, and its front looks towards lower y. "top" is the drawing window's view
// of a new model.
extern const std::array<NamedView, 7> kNamedViews;
const NamedView* FindView(std::string_view name); // null for an unknown name

// How the drawing window projects. The eye looks along -z from `distance` above the origin. At a distance of
// 1 from the eye, the picture shows what is up to `across` and `up` off the middle.
struct Lens {
    double across;
    double up;
    double distance;
};

// How to bring the drawn vertices into the picture: move the model's `centre` to the origin, scale, turn,
// then move by `across` and `up`.
struct Framing {
    double centre[3];
    double scale;
    double across;
    double up;
};

// The framing with which the drawn scene fills the picture but for a margin, and fits into it in each of the
// rotations. Empty when nothing is drawn.
std::optional<Framing> FitDrawn(const SceneView& view, const std::vector<Rotation>& rotations,
                                const Lens& lens);

} // namespace tarnwick
