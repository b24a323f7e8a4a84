#pragma once

#include <algorithm>
#include <string>

namespace tarnwick {

// A name with its control characters as "?", for a message: names come from files, and a line feed in one
// would make two lines of its own.
inline std::string OnOneLine(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
    return name;
}

} // namespace tarnwick
