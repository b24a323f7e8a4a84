#pragma once

#include <optional>
#include <string>

namespace tarnwick {

// The value of a variable of the process's environment, UTF-8 where the system's own is UTF-16; none where it
// isn't set.
std::optional<std::string> EnvironmentText(const char* name);

// Whether a window can be opened, as far as the environment tells.
bool HasDisplay();

// Chooses the window system for the toolkit, unless the user has. Call it before the toolkit starts, while
// there is no other thread.
void ChooseWindowSystem();

} // namespace tarnwick
