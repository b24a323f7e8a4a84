#include "text/scan_reals.h"

#include "platform/scan_real.h"
#include "text/parse_real.h"
#include "text/text_find.h"

#include <charconv>
#include <cstdint>
#include <string>

namespace tarnwick {

namespace {

// Powers of 10 that an f64 holds exactly: a product or quotient of one and a mantissa up to real::kExact is
// rounded only once.
constexpr int kExactPowers = 22;
constexpr double kPowers[kExactPowers + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kMostDigits = 19; // that a u64 holds

bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

using real::IsDigit;

// The library's own reading of one number, for all unusual shapes. Returns the characters read, 0 for none.
template <class T>
int ReadSlowly(const char* p, const char* end, T* value) {
    const std::string copy(p, end);
    return ScanReal(copy.c_str(), value);
}

// Takes a run of digits, eight at a time. What exceeds the mantissa is lost.
const char* TakeDigits(const char* p, std::uint64_t* mantissa) {
    for (;;) {
        const std::uint64_t word = LoadEight(p);
        const unsigned count = real::LeadingDigits(word);
        if (count == 0) { return p; }
        *mantissa = *mantissa * real::kTables.ten[count] + real::DigitsValue(word, count);
        p += count;
        if (count < 8) { return p; }
    }
}

// A plain decimal number in one walk: sign, digits, point, digits, exponent. Null when the text has another
// shape or isn't ended by white space; then nothing is stored.
template <class T>
const char* ReadPlain(const char* p, const char* end, T* value) {
    const bool negative = *p == '-';
    if (negative || *p == '+') { ++p; }
    const char* const number = p;
    std::uint64_t mantissa = 0;
    p = TakeDigits(p, &mantissa);
    int digits = static_cast<int>(p - number);
    int power = 0;
    if (*p == '.') {
        const char* const fraction = ++p;
        p = TakeDigits(p, &mantissa);
        power = static_cast<int>(fraction - p);
        digits -= power;
    }
    if (digits == 0) { return nullptr; }
    if (*p == 'e' || *p == 'E') {
        ++p;
        const bool negativePower = *p == '-';
        if (negativePower || *p == '+') { ++p; }
        const char* const first = p;
        int exponent = 0;
        for (; IsDigit(*p) && p - first < 4; ++p) { exponent = exponent * 10 + (*p - '0'); }
        if (p == first || IsDigit(*p)) { return nullptr; }
        power += negativePower ? -exponent : exponent;
    }
    if (p < end && !IsSpace(*p)) { return nullptr; }
    if constexpr (sizeof(T) == sizeof(double)) {
        if (digits <= kMostDigits && mantissa <= real::kExact && power >= -kExactPowers &&
            power <= kExactPowers) {
            const double whole = static_cast<double>(static_cast<std::int64_t>(mantissa));
            const double result = power < 0 ? whole / kPowers[-power] : whole * kPowers[power];
            *value = negative ? -result : result;
            return p;
        }
    }
    T result;
    const std::from_chars_result read = std::from_chars(number, p, result);
    if (read.ec != std::errc() || read.ptr != p) { return nullptr; }
    *value = negative ? -result : result;
    return p;
}

template <class T>
int Scan(std::string_view text, T* values, int count) {
    text = find::CutAtNul(text);
    const char* p = text.data();
    const char* const end = p + text.size();
    for (int i = 0; i < count; ++i) {
        // Most numbers of a rotation are one digit. The character after the text is no digit.
        if (p < end && *p == ' ') { ++p; }
        const bool negative = *p == '-';
        const char* const digit = p + negative;
        if (digit < end && IsDigit(*digit) && (digit + 1 == end || digit[1] == ' ')) {
            const T value = static_cast<T>(*digit - '0');
            values[i] = negative ? -value : value;
            p = digit + 1;
            continue;
        }
        while (p < end && IsSpace(*p)) { ++p; }
        if (p == end) { return i; }
        const char* const plain = ReadPlain(p, end, values + i);
        if (plain != nullptr) [[likely]] {
            p = plain;
            continue;
        }
        const int used = ReadSlowly(p, end, values + i);
        if (used == 0) { return i; }
        p += used;
    }
    return count;
}

} // namespace

int ScanReals(std::string_view text, double* values, int count) {
    return Scan(text, values, count);
}

int ScanReals(std::string_view text, float* values, int count) {
    return Scan(text, values, count);
}

} // namespace tarnwick
