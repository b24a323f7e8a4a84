#include "platform/plain_scan.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

namespace tarnwick {

namespace {

// A number as it is taken out of a text.
struct Taken {
    enum class Kind { kNone, kDecimal, kHexadecimal, kInfinite, kNotANumber };
    Kind kind = Kind::kNone;
    bool isNegative = false;
    std::string_view digits; // without the sign and "0x"; an exponent in it may lack its digits
    int length = 0;          // of all that is taken
};

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsHexadecimal(char c) {
    return IsDigit(c) || (Lower(c) >= 'a' && Lower(c) <= 'f');
}

// The characters that `word` shares with the text, in either case.
int SharedWith(const char* text, std::string_view word) {
    int count = 0;
    while (static_cast<std::size_t>(count) < word.size() &&
           Lower(text[count]) == word[static_cast<std::size_t>(count)]) {
        ++count;
    }
    return count;
}

// "inf", "infinity" or "nan"; nothing where more than "inf" but not all of "infinity" is there.
Taken TakeWord(const char* text, Taken taken) {
    const int infinity = SharedWith(text, "infinity");
    if (infinity == 3 || infinity == 8) {
        taken.kind = Taken::Kind::kInfinite;
        taken.length += infinity;
    } else if (SharedWith(text, "nan") == 3) {
        taken.kind = Taken::Kind::kNotANumber;
        taken.length += 3;
    }
    return taken;
}

// Digits with at most one point, and an exponent whose digits may be missing.
Taken Take(const char* text) {
    Taken taken;
    const char* p = text;
    taken.isNegative = *p == '-';
    if (*p == '-' || *p == '+') { ++p; }
    taken.length = static_cast<int>(p - text);
    if (Lower(*p) == 'i' || Lower(*p) == 'n') { return TakeWord(p, taken); }
    const bool isHexadecimal = p[0] == '0' && Lower(p[1]) == 'x';
    if (isHexadecimal) { p += 2; }
    const char exponentMark = isHexadecimal ? 'p' : 'e';
    const char* const first = p;
    bool hasDigit = false;
    bool hasPoint = false;
    bool hasExponent = false;
    for (;; ++p) {
        if (IsDigit(*p) || (isHexadecimal && !hasExponent && IsHexadecimal(*p))) {
            hasDigit = true;
        } else if (hasDigit && !hasExponent && Lower(*p) == exponentMark) {
            hasExponent = true;
        } else if (*p == '.' && !hasPoint && !hasExponent) {
            hasPoint = true;
        } else if (!(hasExponent && Lower(p[-1]) == exponentMark && (*p == '-' || *p == '+'))) {
            break;
        }
    }
    // "0x." is the 0 before the "x".
    if (p == first || (!hasDigit && !isHexadecimal)) { return taken; }
    taken.kind = isHexadecimal ? Taken::Kind::kHexadecimal : Taken::Kind::kDecimal;
    taken.digits = std::string_view(first, static_cast<std::size_t>(p - first));
    taken.length = static_cast<int>(p - text);
    return taken;
}

// Whether a number that is out of range is too large for its type, not too small.
bool IsLarge(const Taken& taken) {
    const bool isHexadecimal = taken.kind == Taken::Kind::kHexadecimal;
    const std::string_view digits = taken.digits;
    const std::size_t mark = std::min(digits.find_first_of(isHexadecimal ? "pP" : "eE"), digits.size());
    long long power = 0; // of the first digit that isn't 0
    bool isAfterPoint = false;
    bool hasBegun = false;
    for (const char c : digits.substr(0, mark)) {
        if (c == '.') {
            isAfterPoint = true;
            continue;
        }
        hasBegun = hasBegun || c != '0';
        power += isAfterPoint ? (hasBegun ? 0 : -1) : (hasBegun ? 1 : 0);
    }
    if (isHexadecimal) { power *= 4; }
    if (mark == digits.size()) { return power > 0; }
    const char* exponent = digits.data() + mark + 1;
    const bool isNegative = *exponent == '-';
    if (isNegative || *exponent == '+') { ++exponent; }
    long long magnitude = 0;
    const auto read = std::from_chars(exponent, digits.data() + digits.size(), magnitude);
    if (read.ec == std::errc::result_out_of_range) { return !isNegative; }
    return power + (isNegative ? -magnitude : magnitude) > 0;
}

template <class T>
T ValueOf(const Taken& taken) {
    using Limits = std::numeric_limits<T>;
    if (taken.kind == Taken::Kind::kInfinite) { return Limits::infinity(); }
    if (taken.kind == Taken::Kind::kNotANumber) { return Limits::quiet_NaN(); }
    const bool isHexadecimal = taken.kind == Taken::Kind::kHexadecimal;
    T value = 0;
    const auto read = std::from_chars(taken.digits.data(), taken.digits.data() + taken.digits.size(), value,
                                      isHexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (read.ec == std::errc::result_out_of_range) { return IsLarge(taken) ? Limits::infinity() : 0; }
    return read.ec == std::errc() ? value : 0;
}

template <class T>
int Scan(const char* text, T* value) {
    const Taken taken = Take(text);
    if (taken.kind == Taken::Kind::kNone) { return 0; }
    const T magnitude = ValueOf<T>(taken);
    *value = taken.isNegative ? -magnitude : magnitude;
    return taken.length;
}

} // namespace

int PlainScanReal(const char* text, double* value) {
    return Scan(text, value);
}

int PlainScanReal(const char* text, float* value) {
    return Scan(text, value);
}

} // namespace tarnwick
