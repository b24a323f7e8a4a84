#include "platform/environment.h"

#include <cstdlib>

namespace tarnwick {

namespace {

constexpr const char* kWindowSystem = "QT_QPA_PLATFORM"; // the toolkit's

bool IsSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

} // namespace

std::optional<std::string> EnvironmentText(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

bool HasDisplay() {
    return IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY") || IsSet(kWindowSystem);
}

void ChooseWindowSystem() {
    // Under Wayland no buffer that is on the screen can be read, which a snapshot needs.
    setenv(kWindowSystem, "xcb", 0);
}

} // namespace tarnwick
