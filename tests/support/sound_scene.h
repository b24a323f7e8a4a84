#pragma once

#include "load/scene_view.h"

#include <string>

namespace tarnwick::test {

// The first thing in a view that no load leaves behind, whatever the file: a count that isn't that of the
// records, an index out of its range. Empty where all is sound. Every number that is drawn is read, for a
// sanitizer to watch.
std::string UnsoundIn(const SceneView& view);

} // namespace tarnwick::test
