#pragma once

#include "text/char_bits.h"
#include "text/load_eight.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// Searches in a text that has a sentinel after its end: none of them tests for the end, and a place at or
// after it means that the character isn't there. They look at more characters than they need, so 32 bytes
// after the sentinel must be readable.
namespace tarnwick::find {

inline constexpr std::uint64_t kOnes = 0x0101010101010101u;
inline constexpr std::uint64_t kHighs = 0x8080808080808080u;

// The high bit of each byte of `word` that is `c`; bytes above the lowest such one may be marked too.
inline std::uint64_t Marks(std::uint64_t word, char c) {
    const std::uint64_t x = word ^ (kOnes * static_cast<unsigned char>(c));
    return (x - kOnes) & ~x & kHighs;
}

inline const char* AtMark(const char* p, std::uint64_t marks) {
    return p + (std::countr_zero(marks) >> 3);
}

// The first of the characters `c...` at or after `p`.
template <char... c>
inline const char* First(const char* p) {
#ifdef __SSE2__
    for (;; p += 16) {
        const std::uint32_t bits = SixteenBits<c...>(p);
        if (bits != 0) { return p + std::countr_zero(bits); }
    }
#else
    for (;; p += 8) {
        const std::uint64_t word = LoadEight(p);
        const std::uint64_t marks = (Marks(word, c) | ...);
        if (marks != 0) { return AtMark(p, marks); }
    }
#endif
}

// The first `c` among the 32 characters from `p` on, or null.
template <char c>
inline const char* Near(const char* p) {
    for (const char* const end = p + 32; p < end;) {
#ifdef __SSE2__
        const std::uint32_t bits = SixteenBits<c>(p);
        if (bits != 0) { return p + std::countr_zero(bits); }
        p += 16;
#else
        const std::uint64_t marks = Marks(LoadEight(p), c);
        if (marks != 0) { return AtMark(p, marks); }
        p += 8;
#endif
    }
    return nullptr;
}

// The value up to its first NUL, which a file may have put into it.
inline std::string_view CutAtNul(std::string_view value) {
    if (value.empty()) { return value; }
    const void* const nul = std::memchr(value.data(), '\0', value.size());
    return nul == nullptr
               ? value
               : value.substr(0, static_cast<std::size_t>(static_cast<const char*>(nul) - value.data()));
}

} // namespace tarnwick::find
