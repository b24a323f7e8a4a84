#include "text/wide_text.h"

#include <cstdint>

namespace tarnwick {

namespace {

constexpr std::uint32_t kEscape = 0xDC00;

// The length of the UTF-8 sequence at `p`, at most `left` bytes, and its code point; 0 when it isn't valid.
std::size_t Decode(const unsigned char* p, std::size_t left, std::uint32_t* code) {
    if (p[0] < 0x80) {
        *code = p[0];
        return 1;
    }
    const std::size_t length = p[0] >= 0xF0 ? 4 : p[0] >= 0xE0 ? 3 : 2;
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (p[0] < 0xC2 || p[0] > 0xF4 || length > left) { return 0; }
    *code = p[0] & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((p[i] & 0xC0) != 0x80) { return 0; }
        *code = *code << 6 | (p[i] & 0x3F);
    }
    const bool surrogate = *code >= 0xD800 && *code < 0xE000;
    return *code < kLeast[length] || *code > 0x10FFFF || surrogate ? 0 : length;
}

} // namespace

std::u32string WideFromNarrow(std::string_view text) {
    std::u32string wide;
    wide.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        std::uint32_t code = 0;
        const auto* const p = reinterpret_cast<const unsigned char*>(text.data()) + i;
        const std::size_t length = Decode(p, text.size() - i, &code);
        if (length == 0) { code = kEscape + p[0]; }
        wide.push_back(static_cast<char32_t>(code));
        i += length == 0 ? 1 : length;
    }
    return wide;
}

std::string NarrowFromWide(std::u32string_view text) {
    std::string narrow;
    narrow.reserve(text.size());
    const auto put = [&narrow](std::uint32_t byte) { narrow.push_back(static_cast<char>(byte)); };
    for (const char32_t character : text) {
        const auto code = static_cast<std::uint32_t>(character);
        if (code < 0x80) {
            put(code);
        } else if (code >= kEscape + 0x80 && code <= kEscape + 0xFF) {
            put(code - kEscape);
        } else if (code < 0x800) {
            put(0xC0 | code >> 6);
            put(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            put(0xE0 | code >> 12);
            put(0x80 | (code >> 6 & 0x3F));
            put(0x80 | (code & 0x3F));
        } else {
            put(0xF0 | (code >> 18 & 0x07));
            put(0x80 | (code >> 12 & 0x3F));
            put(0x80 | (code >> 6 & 0x3F));
            put(0x80 | (code & 0x3F));
        }
    }
    return narrow;
}

} // namespace tarnwick
