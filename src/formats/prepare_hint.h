#pragma once

#include "load/scene_view.h"

#include <string>

namespace tarnwick {

// The command that prepares the file, with its path as a shell takes it.
std::string PrepareCommand(const std::string& path);

// What to do about a file of which nothing is drawn, as one line for the user with the command to type; empty
// when the load drew something, and when the file can't be prepared. `isKnown` is what LoadFile returned for
// the path.
std::string PrepareHint(const SceneView& view, bool isKnown, const std::string& path);

} // namespace tarnwick
