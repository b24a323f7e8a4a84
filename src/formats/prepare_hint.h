#pragma once

#include "load/scene_view.h"

#include <string>

namespace tarnwick {

// What brings more of a file to the screen than its load did, as one line for the user with the command to
// type; empty where the load drew something, and where the file is none that could be prepared. `isKnown` is
// what LoadFile returned for the path.
std::string PrepareHint(const SceneView& view, bool isKnown, const std::string& path);

} // namespace tarnwick
