#pragma once

#include <string>

namespace tarnwick::tools {

// The file that the viewer shows for any STEP file: tarnwick-open prepares it in the user's cache where it
// must, in at most so many seconds; 0 for no limit. Empty, with a phrase in *why, where there is none. To be
// called on one thread.
std::string PreparedPath(const std::string& file, double seconds, std::string* why);

} // namespace tarnwick::tools
