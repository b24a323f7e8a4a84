#pragma once

#include <optional>
#include <string>

namespace tarnwick {

// The value of a variable of the process's environment, UTF-8 where the system's own is UTF-16; none where it
// isn't set.
std::optional<std::string> EnvironmentText(const char* name);

} // namespace tarnwick
