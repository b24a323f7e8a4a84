#include "report/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>

namespace tarnwick {

static_assert(std::endian::native == std::endian::little, "the first character is the lowest byte of a word");

namespace {

constexpr int kDigits = 9;
// The decimal exponents of the numbers that PutFloat takes apart by itself: for lower ones a power of five
// wouldn't fit into 64 bits, for higher ones the number has more than nine digits before its point.
constexpr int kLowest = -19;
constexpr int kHighest = kDigits - 1;
constexpr std::uint32_t kFourZeros = 0x30303030;
constexpr std::uint64_t kEightZeros = 0x3030303030303030;

__extension__ using Wide = unsigned __int128;

// The four digits of each number below 10000.
constexpr auto kFourDigits = [] {
    std::array<char[4], 10000> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        std::size_t rest = i;
        for (std::size_t digit = 4; digit-- > 0; rest /= 10) {
            table[i][digit] = static_cast<char>('0' + rest % 10);
        }
    }
    return table;
}();

constexpr auto kPowersOfFive = [] {
    std::array<std::uint64_t, kHighest - kLowest + 1> table{};
    std::uint64_t power = 1;
    for (std::uint64_t& entry : table) {
        entry = power;
        power *= 5;
    }
    return table;
}();

// From kLowest on. No f32 is between a power of ten and the f64 nearest to it.
constexpr double kPowersOfTen[] = {1e-19, 1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10,
                                   1e-9,  1e-8,  1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2,  1e-1,  1e0,
                                   1e1,   1e2,   1e3,   1e4,   1e5,   1e6,   1e7,   1e8,   1e9};

void PutFour(char* out, std::uint32_t number) {
    std::memcpy(out, kFourDigits[number], 4);
}

// The digits of a number below 10000 without leading zeros.
char* PutShort(char* out, std::uint32_t number) {
    std::uint32_t digits;
    std::memcpy(&digits, kFourDigits[number], 4);
    // The bit keeps the last digit, a zero or not.
    const int zeros = std::countr_zero((digits ^ kFourZeros) | 0x01000000) / 8;
    digits >>= 8 * zeros;
    std::memcpy(out, &digits, 4);
    return out + 4 - zeros;
}

char* PutPlainFloat(char* out, float number) {
    char* const end = std::to_chars(out, out + kNumberRoom, static_cast<double>(number),
                                    std::chars_format::general, kDigits)
                          .ptr;
    if (std::any_of(out, end, [](char c) { return c == '.' || c == 'e'; })) { return end; }
    std::memcpy(end, ".0", 2);
    return end + 2;
}

} // namespace

// The nine digits are the mantissa times a power of ten, that is, a power of five and a shift: exact in
// integers of 95 bits, so that exactly half a digit is seen as that, and is rounded to even.
char* PutFloat(char* out, float number) {
    const auto bits = std::bit_cast<std::uint32_t>(number);
    const double magnitude = static_cast<double>(std::bit_cast<float>(bits & 0x7FFFFFFF));
    *out = '-';
    if (magnitude == 0) { // most of the numbers in normals
        out += bits >> 31;
        std::memcpy(out, "0.0", 3);
        return out + 3;
    }
    if (!(magnitude >= kPowersOfTen[0] && magnitude < kPowersOfTen[kHighest + 1 - kLowest])) {
        return PutPlainFloat(out, number);
    }
    out += bits >> 31;

    const int binary = static_cast<int>(bits >> 23 & 0xFF) - 127;
    int exponent = binary * 1233 >> 12; // times log10(2), downwards
    if (magnitude >= kPowersOfTen[exponent + 1 - kLowest]) { ++exponent; }
    const int tens = kHighest - exponent;
    const int shift = 23 - binary - tens + 8; // the 8 keep it above 0
    const std::uint64_t mantissa = std::uint64_t{(bits & 0x7FFFFF) | 0x800000} << 8;
    const Wide product = Wide{mantissa} * kPowersOfFive[static_cast<std::size_t>(tens)];
    const auto odd = static_cast<std::uint64_t>(product >> shift) & 1;
    const Wide half = Wide{1} << (shift - 1);
    auto digits = static_cast<std::uint32_t>((product + half - 1 + odd) >> shift);
    if (digits == 1000000000) {
        digits /= 10;
        ++exponent;
    }

    char text[24];
    std::memset(text, '0', sizeof text);
    const std::uint32_t head = digits / 10000;
    text[0] = static_cast<char>('0' + head / 10000);
    PutFour(text + 1, head % 10000);
    PutFour(text + 5, digits % 10000);
    std::uint64_t last;
    std::memcpy(&last, text + 1, 8);
    const int significant = kDigits - std::countl_zero(last ^ kEightZeros) / 8;

    if (exponent >= 0) {
        std::memcpy(out, text, 16);
        out[exponent + 1] = '.';
        std::memcpy(out + exponent + 2, text + exponent + 1, 9);
        return out + std::max(significant, exponent + 2) + 1;
    }
    if (exponent >= -4) {
        std::memcpy(out, "0.000", 5);
        std::memcpy(out + 1 - exponent, text, 9);
        return out + 1 - exponent + significant;
    }
    *out++ = text[0];
    if (significant > 1) {
        *out = '.';
        std::memcpy(out + 1, text + 1, 8);
        out += significant;
    }
    std::memcpy(out, "e-", 2);
    std::memcpy(out + 2, kFourDigits[static_cast<std::size_t>(-exponent)] + 2, 2);
    return out + 4;
}

char* PutInteger(char* out, std::int64_t number) {
    auto magnitude = static_cast<std::uint64_t>(number);
    if (number < 0) {
        *out++ = '-';
        magnitude = 0 - magnitude;
    }
    if (magnitude < 10000) { return PutShort(out, static_cast<std::uint32_t>(magnitude)); }
    if (magnitude < 100000000) {
        const auto small = static_cast<std::uint32_t>(magnitude);
        out = PutShort(out, small / 10000);
        PutFour(out, small % 10000);
        return out + 4;
    }
    return std::to_chars(out, out + kNumberRoom - 1, magnitude).ptr;
}

} // namespace tarnwick
