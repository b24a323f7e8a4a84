#pragma once

#include <string>

namespace tarnwick::tools {

// The file that the viewer shows for any STEP file, which tarnwick-open prepares where it must, in the user's
// cache. Empty, with a phrase in *why, where there is none. It has so many seconds; 0 for no limit. To be
// called on one thread.
std::string PreparedPath(const std::string& file, double seconds, std::string* why);

} // namespace tarnwick::tools
