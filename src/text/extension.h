#pragma once

#include "text/lower_case.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnwick {

// The extension of a path, by which a file is loaded, in small letters. Empty for a path without one, for one
// whose only "." is its first character, and for an extension of 9 characters or more.
inline std::string ExtensionOf(std::string_view path) {
    constexpr std::size_t kTooLong = 9;
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || path.size() - dot > kTooLong) { return {}; }
    return LowerCase(std::string(path.substr(dot + 1)));
}

} // namespace tarnwick
