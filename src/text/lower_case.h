#pragma once

#include <string>

namespace tarnwick {

// The text with A to Z as a to z, whatever the locale says.
inline std::string LowerCase(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') { c = static_cast<char>(c - 'A' + 'a'); }
    }
    return text;
}

} // namespace tarnwick
