#pragma once

#include "text/lower_case.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnwick {

// The extension of a path, by which it is loaded, in small letters; empty for a path that has none, whose
// only "." is its first character, or with one of 9 characters and more.
inline std::string ExtensionOf(std::string_view path) {
    constexpr std::size_t kTooLong = 9;
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || path.size() - dot > kTooLong) { return {}; }
    return LowerCase(std::string(path.substr(dot + 1)));
}

} // namespace tarnwick
