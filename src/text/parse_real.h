#pragma once

#include "text/load_eight.h"

#include <cstdint>

// The number parser that all readers share. The reals of ISO 10303-21 (clause 6.4.2) are read with
// deliberately simple arithmetic in f64 whose every rounding is part of the result:
//   value = value * 10 + digit over all digits; scale = scale * 0.1 for each digit after the point; value *
//   scale; with an exponent times or by 1e50, 1e8 and 10 repeated. A negative exponent beyond 8 gives 0.
// This gives the same bits in fewer steps: digits are gathered in a u64 for as long as f64 would hold them
// exactly (up to 2^53), and the repeated products come from tables.
namespace tarnwick {

namespace real {

inline constexpr int kScales = 400; // 0.1 repeated underflows to 0 well before that
struct Tables {
    double scale[kScales]; // 0.1 to the power i, by repeated products
    double factor[309];    // 10 to the power i, by steps of 1e50, 1e8 and 10
    std::uint64_t ten[9];  // 10 to the power i, exactly
};
extern const Tables kTables;

inline constexpr std::uint64_t kExact = std::uint64_t{1} << 53;
inline constexpr std::uint64_t kLastBeforeDigit = (kExact - 9) / 10;
inline constexpr std::uint64_t kLastBeforeEight = (kExact - 99999999) / 100000000;

inline bool IsDigit(char c) {
    return static_cast<unsigned char>(c - '0') < 10;
}

// The digits of a run as far as they were taken: `mantissa` while `exact`, else `value`.
struct Run {
    std::uint64_t mantissa = 0;
    double value = 0.0;
    bool exact = true;
};

// Takes the rest of a run of digits one at a time, in f64 once it is longer than f64 holds exactly.
const char* TakeLongRun(const char* p, Run* run);

// The tail of a real from its "E" on; returns the position after it.
const char* TakeExponent(const char* p, double value, double sign, double* result);

// How many of the eight characters of `word`, the first in the lowest byte, are digits up to the first that
// isn't one.
inline unsigned LeadingDigits(std::uint64_t word) {
    const std::uint64_t above = word + 0x4646464646464646u; // carries into bit 7 from ':' on
    const std::uint64_t below = word - 0x3030303030303030u; // borrows into bit 7 below '0'
    const std::uint64_t others = (above | below) & 0x8080808080808080u;
    return others == 0 ? 8 : static_cast<unsigned>(__builtin_ctzll(others)) >> 3;
}

// The number that the first `count` characters of `word` (1 to 8, all digits) make.
inline std::uint32_t DigitsValue(std::uint64_t word, unsigned count) {
    std::uint64_t digits = (word - 0x3030303030303030u) << (64 - 8 * count); // leading zeros in front
    digits = digits * 10 + (digits >> 8);                                    // pairs in every other byte
    const std::uint64_t low = (digits & 0x000000FF000000FFu) * (100 + (std::uint64_t{1000000} << 32));
    const std::uint64_t high = ((digits >> 16) & 0x000000FF000000FFu) * (1 + (std::uint64_t{10000} << 32));
    return static_cast<std::uint32_t>((low + high) >> 32);
}

} // namespace real

// The real at `p`; *end is the position after it. Blanks and tabs before it are skipped; text without digits
// gives 0 or its negative. Up to 16 bytes after the number must be readable.
inline double ParseReal(const char* p, const char** end) {
    using namespace real;
    while (*p == ' ' || *p == '\t') { ++p; }
    const bool negative = *p == '-';
    if (negative || *p == '+') { ++p; }
    Run run;
    while (IsDigit(*p) && run.mantissa <= kLastBeforeDigit) {
        run.mantissa = run.mantissa * 10 + static_cast<std::uint64_t>(*p++ - '0');
    }
    if (IsDigit(*p)) [[unlikely]] { p = TakeLongRun(p, &run); }
    double value;
    if (*p == '.') {
        const char* const fraction = ++p;
        while (run.exact && run.mantissa <= kLastBeforeEight) {
            const std::uint64_t word = LoadEight(p);
            const unsigned count = LeadingDigits(word);
            if (count == 0) { break; }
            run.mantissa = run.mantissa * kTables.ten[count] + DigitsValue(word, count);
            p += count;
            if (count < 8) { break; }
        }
        if (IsDigit(*p)) [[unlikely]] { p = TakeLongRun(p, &run); }
        const auto digits = p - fraction;
        const double scale = digits < kScales ? kTables.scale[digits] : 0.0;
        value = (run.exact ? static_cast<double>(run.mantissa) : run.value) * scale;
    } else {
        value = run.exact ? static_cast<double>(run.mantissa) : run.value;
    }
    const double sign = negative ? -1.0 : 1.0;
    if (*p == 'E' || *p == 'e') {
        double result;
        *end = TakeExponent(p, value, sign, &result);
        return result;
    }
    *end = p;
    return value * sign;
}

inline double ParseReal(const char* p) {
    const char* end;
    return ParseReal(p, &end);
}

} // namespace tarnwick
