#pragma once

namespace tarnwick {

// What printf makes of a text that isn't there, the same in every C library.
inline const char* OrNull(const char* text) {
    return text != nullptr ? text : "(null)";
}

} // namespace tarnwick
