#include "platform/environment.h"

#include <cstdlib>

namespace tarnwick {

std::optional<std::string> EnvironmentText(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

} // namespace tarnwick
