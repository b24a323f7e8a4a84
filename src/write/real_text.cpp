#include "write/real_text.h"

#include <charconv>
#include <cmath>

namespace tarnwick {

float RoundReal(double value) {
    const auto rounded = static_cast<float>(value);
    return std::abs(rounded) < 1e-7f ? 0.0f : rounded;
}

void AppendReal(double value, std::string* out) {
    char digits[64];
    out->append(
        digits,
        std::to_chars(digits, digits + sizeof digits, RoundReal(value), std::chars_format::fixed).ptr);
}

} // namespace tarnwick
