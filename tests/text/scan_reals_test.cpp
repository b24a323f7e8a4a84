#include "text/scan_reals.h"

#include "platform/scan_real.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace tarnwick {
namespace {

// The library's own reading of up to nine numbers, one after the other; where it rounds twice, by the rules
// that stand in for it.
template <class T>
int Plain(const std::string& text, T* values) {
    const char* p = text.c_str();
    for (int i = 0; i < 9; ++i) {
        p += std::strspn(p, " \t\n\v\f\r");
        const int used = ScanReal(p, values + i);
        if (used == 0) { return i; }
        p += used;
    }
    return 9;
}

template <class T>
void ExpectAsTheLibrary(const std::string& text) {
    T expected[9];
    T actual[9];
    std::fill_n(expected, 9, T(-77));
    std::fill_n(actual, 9, T(-77));
    const std::string padded = text + std::string(16, '\0');
    EXPECT_EQ(ScanReals(std::string_view(padded.data(), text.size()), actual, 9), Plain(text, expected))
        << text;
    EXPECT_EQ(std::memcmp(expected, actual, sizeof expected), 0) << text;
}

TEST(ScanReals, ReadsWhatTheLibraryReadsBitForBit) {
    for (const char* const text : {"",
                                   " ",
                                   "1 0 0 0 1 0 0 0 1",
                                   "0.70710678118654757 -0.70710678118654746",
                                   "-0 -0.0 +5 .5 5. -.25e1",
                                   "1e22 1e23 1e-22 1e-23 9007199254740993 9007199254740992",
                                   "1,5 2",
                                   "1 2 x 3",
                                   "inf -nan 0x1p3 1",
                                   "1e",
                                   "1e+",
                                   "1e5x 2",
                                   "1\t2\n3\r4\v5\f6",
                                   "1e400 -1e400 1e-400 4.9e-324 2.4e-324",
                                   "--1",
                                   "+-1",
                                   "123456789012345678901234567890",
                                   "0.000000000000000000000000000123",
                                   "1e00000000000000000002",
                                   "1.7976931348623157e308",
                                   "3.4028236e38 1e-46",
                                   ".",
                                   "-",
                                   "1..2",
                                   "1.2.3",
                                   "12345678.87654321 1"}) {
        ExpectAsTheLibrary<double>(text);
        ExpectAsTheLibrary<float>(text);
    }
}

TEST(ScanReals, ReadsGeneratedTextsAsTheLibraryDoes) {
    std::mt19937 random(7);
    const std::string letters = "0123456789012345678901234567890123456789....--+eE  \t\nx,";
    for (int i = 0; i < 100000; ++i) {
        std::string text(random() % 60, ' ');
        for (char& c : text) { c = letters[random() % letters.size()]; }
        ExpectAsTheLibrary<double>(text);
        ExpectAsTheLibrary<float>(text);
    }
}

TEST(ScanReals, EndsAtANulThatTheTextHolds) {
    const std::string text("1 2\0 3 and more than what is read", 34);
    double values[3] = {-1, -1, -1};
    EXPECT_EQ(ScanReals(std::string_view(text).substr(0, 6), values, 3), 2);
    EXPECT_EQ(values[2], -1);
}

} // namespace
} // namespace tarnwick
