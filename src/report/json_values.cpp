#include "report/json_values.h"

#include <zlib.h>

#include <bit>
#include <charconv>
#include <cmath>

namespace tarnwick {

static_assert(std::endian::native == std::endian::little, "checksums are those of little-endian arrays");

namespace {

const char* NotFinite(double value) {
    if (std::isnan(value)) { return "nan"; }
    return value > 0 ? "inf" : "-inf";
}

} // namespace

nlohmann::ordered_json JsonFloat(float value) {
    if (!std::isfinite(value)) { return NotFinite(static_cast<double>(value)); }
    // The f64 next to the 9 digits is written with just these digits.
    char text[64];
    const auto end =
        std::to_chars(text, text + sizeof text, static_cast<double>(value), std::chars_format::scientific, 8);
    double nine = 0;
    std::from_chars(text, end.ptr, nine);
    return nine;
}

nlohmann::ordered_json JsonDouble(double value) {
    if (!std::isfinite(value)) { return NotFinite(value); }
    return value;
}

std::string JsonText(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | code >> 6);
            text += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return text;
}

std::string Crc(const void* data, std::size_t bytes) {
    uLong crc = crc32(0, nullptr, 0);
    if (bytes > 0) { crc = crc32_z(crc, static_cast<const unsigned char*>(data), bytes); }
    char digits[9];
    for (int i = 0; i < 8; ++i) { digits[i] = "0123456789abcdef"[crc >> (28 - 4 * i) & 15]; }
    return std::string(digits, 8);
}

} // namespace tarnwick
