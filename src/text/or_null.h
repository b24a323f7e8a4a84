#pragma once

namespace tarnwick {

// The text, or "(null)" for null: what a C library prints for that differs from one to another.
inline const char* OrNull(const char* text) {
    return text != nullptr ? text : "(null)";
}

} // namespace tarnwick
