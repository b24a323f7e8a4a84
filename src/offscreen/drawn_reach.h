#pragma once

#include "load/scene_view.h"

#include <array>
#include <optional>
#include <vector>

namespace tarnwick {

// x, y, z in the model's coordinates, of any length.
using Direction = std::array<double, 3>;

// How far the drawn scene reaches in each direction: the largest scalar product of the direction with a
// vertex of a drawn triangle or quad, in the order of `directions`. Unused vertices don't count, nor do those
// that aren't finite. Empty when nothing is drawn.
std::optional<std::vector<double>> DrawnReach(const SceneView& view,
                                              const std::vector<Direction>& directions);

} // namespace tarnwick
