#pragma once

#include "text/load_eight.h"

#include <algorithm>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tarnwick {

// The characters that one call of CharBits looks at.
inline constexpr int kCharBlock = 64;

// What CharBits gives, for machines without the instructions: eight characters at a time, whose high bits a
// multiplication then gathers.
template <char... c>
inline std::uint64_t PlainCharBits(const char* p) {
    constexpr std::uint64_t kOnes = 0x0101010101010101u;
    constexpr std::uint64_t kSevens = 0x7F7F7F7F7F7F7F7Fu;
    std::uint64_t bits = 0;
    for (int word = 0; word < 8; ++word) {
        const std::uint64_t eight = LoadEight(p + 8 * word);
        std::uint64_t others = ~std::uint64_t{0};
        for (const char one : {c...}) {
            const std::uint64_t x = eight ^ (kOnes * static_cast<unsigned char>(one));
            others &= ((x & kSevens) + kSevens) | x;
        }
        const std::uint64_t marks = (~(others | kSevens)) >> 7;
        bits |= ((marks * 0x0102040810204080u) >> 56) << (8 * word);
    }
    return bits;
}

#ifdef __SSE2__
// A bit for each of the 16 characters at `p` that is one of `c...`.
template <char... c>
inline std::uint32_t SixteenBits(const char* p) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    __m128i marks = _mm_setzero_si128();
    ((marks = _mm_or_si128(marks, _mm_cmpeq_epi8(block, _mm_set1_epi8(c)))), ...);
    return static_cast<std::uint32_t>(_mm_movemask_epi8(marks));
}
#endif

// A bit for each of the 64 characters at `p`, the lowest for the first: set where it is one of `c...`. To go
// from bit to bit takes a fraction of what a search for each would take, where lines, tags and values have a
// few dozen characters.
template <char... c>
inline std::uint64_t CharBits(const char* p) {
#ifdef __SSE2__
    std::uint64_t bits = 0;
    for (int part = 0; part < 4; ++part) {
        bits |= std::uint64_t{SixteenBits<c...>(p + 16 * part)} << (16 * part);
    }
    return bits;
#else
    return PlainCharBits<c...>(p);
#endif
}

// Whether one of the 64 characters at `p`, as an unsigned number, is at most `last`.
template <char last>
inline bool AnyUpTo(const char* p) {
#ifdef __SSE2__
    const __m128i* const blocks = reinterpret_cast<const __m128i*>(p);
    const __m128i least =
        _mm_min_epu8(_mm_min_epu8(_mm_loadu_si128(blocks), _mm_loadu_si128(blocks + 1)),
                     _mm_min_epu8(_mm_loadu_si128(blocks + 2), _mm_loadu_si128(blocks + 3)));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(least, _mm_set1_epi8(last)), least)) != 0;
#else
    unsigned char least = 0xFF;
    for (int i = 0; i < kCharBlock; ++i) { least = std::min(least, static_cast<unsigned char>(p[i])); }
    return least <= static_cast<unsigned char>(last);
#endif
}

} // namespace tarnwick
