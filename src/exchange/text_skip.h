#pragma once

#include <cstddef>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Moves over the text of an exchange file. `end` is after its last character; 16 bytes from there on can be
// read.
namespace tarnwick {

inline bool IsExchangeBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

// The first place after blanks, line ends and comments.
inline const char* SkipBlanks(const char* p, const char* end) {
    for (;;) {
        while (p < end && IsExchangeBlank(*p)) { ++p; }
        if (end - p < 2 || p[0] != '/' || p[1] != '*') { return p; }
        const char* q = p + 2;
        do {
            q = static_cast<const char*>(std::memchr(q, '*', static_cast<std::size_t>(end - q)));
        } while (q != nullptr && ++q < end && *q != '/');
        if (q == nullptr || q >= end) { return end; }
        p = q + 1;
    }
}

// The place after the closing quote of the string that begins at `p`; a doubled quote doesn't close it. `end`
// where it isn't closed.
inline const char* SkipString(const char* p, const char* end) {
    for (++p;;) {
        p = p < end ? static_cast<const char*>(std::memchr(p, '\'', static_cast<std::size_t>(end - p)))
                    : nullptr;
        if (p == nullptr) { return end; }
        if (++p == end || *p != '\'') { return p; }
        ++p;
    }
}

// The first of these characters from `p` on, or `end`.
template <char... kWanted>
const char* FindAny(const char* p, const char* end) {
#ifdef __SSE2__
    for (; p < end; p += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        __m128i found = _mm_setzero_si128();
        ((found = _mm_or_si128(found, _mm_cmpeq_epi8(block, _mm_set1_epi8(kWanted)))), ...);
        const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(found));
        if (mask != 0) {
            p += __builtin_ctz(mask);
            return p < end ? p : end;
        }
    }
    return end;
#else
    while (p < end && ((*p != kWanted) && ...)) { ++p; }
    return p;
#endif
}

// The place after what begins at `p`, which is a quote, a slash or a double quote inside a list.
inline const char* SkipInList(const char* p, const char* end) {
    if (*p == '\'') { return SkipString(p, end); }
    if (*p == '/') {
        const char* const after = SkipBlanks(p, end);
        return after == p ? p + 1 : after;
    }
    const void* const close = std::memchr(p + 1, '"', static_cast<std::size_t>(end - p - 1));
    return close == nullptr ? end : static_cast<const char*>(close) + 1;
}

// The place after the ")" that closes the list whose inside begins at `p`; `end` where nothing does.
inline const char* SkipList(const char* p, const char* end) {
    int depth = 1;
#ifdef __SSE2__
    // Long lists are parentheses and numbers; the parentheses are searched sixteen characters at a time.
    while (p < end) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const auto maskOf = [block](char c) {
            return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, _mm_set1_epi8(c))));
        };
        const unsigned opening = maskOf('(');
        const unsigned others = maskOf('\'') | maskOf('/') | maskOf('"');
        const char* next = p + 16;
        for (unsigned left = opening | maskOf(')') | others; left != 0; left &= left - 1) {
            const unsigned bit = left & (0 - left);
            const char* const at = p + __builtin_ctz(left);
            if (at >= end) { return end; }
            if ((bit & others) != 0) {
                next = SkipInList(at, end);
                break;
            }
            depth += (bit & opening) != 0 ? 1 : -1;
            if (depth == 0) { return at + 1; }
        }
        p = next;
    }
    return end;
#else
    for (; p < end;) {
        if (*p == '(') {
            ++depth;
        } else if (*p == ')') {
            if (--depth == 0) { return p + 1; }
        } else if (*p == '\'' || *p == '/' || *p == '"') {
            p = SkipInList(p, end);
            continue;
        }
        ++p;
    }
    return end;
#endif
}

} // namespace tarnwick
