// The rules that stand in for sscanf, against sscanf itself where that is right.

#include "platform/plain_scan.h"
#include "platform/scan_real.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <random>
#include <string>

namespace tarnwick::test {
namespace {

template <class T, class Bits>
void ExpectSame(const std::string& text) {
    T expected = 7;
    T value = 7;
    const int expectedLength = ScanReal(text.c_str(), &expected);
    EXPECT_EQ(PlainScanReal(text.c_str(), &value), expectedLength) << text;
    EXPECT_EQ(std::bit_cast<Bits>(value), std::bit_cast<Bits>(expected)) << text;
}

void ExpectBothSame(const std::string& text) {
    ExpectSame<double, std::uint64_t>(text);
    ExpectSame<float, std::uint32_t>(text);
}

TEST(PlainScanTest, TakesEveryShapeThatTheLibraryTakes) {
    for (const char* const text :
         {"0",        "-0",       "+1.5",      "1.",           ".5",
          "1e5",      "1E-5",     "1e",        "1e+",          "1e5.3",
          "1.2.3",    "0x1.8p3",  "0X1P-2",    "0x1p",         "0x1.8",
          "0xg",      "0x",       "0x.",       "0x.8",         "-0x1.8p1",
          "0x1e5",    "inf",      "INF",       "-infinity",    "nan",
          "-NaN",     "1e400",    "-1e400",    "1e-400",       "1e-320",
          "1e39",     "1e-46",    "1e-40",     "0.00001e-400", "123456789e99999999999999999999",
          "0x1p1023", "0x1p1024", "0x1p-1080", "9.24644800",   "2.1438971",
          "0e5",      "00012",    "1_2",       "5,3",          "12abc"}) {
        ExpectBothSame(text);
    }
}

TEST(PlainScanTest, TakesNothingThatTheLibraryRefuses) {
    for (const char* const text :
         {"", "-", "+", ".", "-.", "e5", ".e5", "in", "na", "x", "--1", "+-1", "infi"}) {
        ExpectBothSame(text);
    }
}

TEST(PlainScanTest, ReadsAnyTextOfTheseCharactersAsTheLibraryDoes) {
    constexpr std::string_view kCharacters = "0123456789012345678901234567890...eE+-xXpPaAfFinfty ";
    std::mt19937 random(7);
    for (int i = 0; i < 100000; ++i) {
        std::string text;
        for (std::size_t left = random() % 24; left > 0; --left) {
            text += kCharacters[random() % kCharacters.size()];
        }
        // Both begin after the white space.
        if (!text.starts_with(' ')) { ExpectBothSame(text); }
    }
}

TEST(PlainScanTest, RoundsOnce) {
    std::mt19937 random(8);
    for (int i = 0; i < 100000; ++i) {
        std::string text = std::to_string(random() % 100) + ".";
        for (std::size_t left = random() % 30; left > 0; --left) {
            text += static_cast<char>('0' + random() % 10);
        }
        if (i % 3 == 0) { text += "e" + std::to_string(static_cast<int>(random() % 700) - 350); }
        ExpectBothSame(text);
    }
}

} // namespace
} // namespace tarnwick::test
