// The fast texts of numbers, character by character beside those that the library makes.

#include "report/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

namespace tarnwick::test {
namespace {

std::string PlainFloat(float number) {
    char text[64];
    const auto end =
        std::to_chars(text, text + sizeof text, static_cast<double>(number), std::chars_format::general, 9);
    const std::string digits(text, end.ptr);
    return digits.find_first_of(".e") == std::string::npos ? digits + ".0" : digits;
}

std::string FastFloat(float number) {
    char text[kNumberRoom];
    return {text, PutFloat(text, number)};
}

std::string FastInteger(std::int64_t number) {
    char text[kNumberRoom];
    return {text, PutInteger(text, number)};
}

// Both signs of the number, which may be none.
void ExpectPlainText(float number) {
    if (!std::isfinite(number)) { return; }
    ASSERT_EQ(FastFloat(number), PlainFloat(number));
    ASSERT_EQ(FastFloat(-number), PlainFloat(-number));
}

void ExpectPlainTextAround(float number) {
    const auto bits = std::bit_cast<std::uint32_t>(number);
    for (std::uint32_t near = bits < 40 ? 0 : bits - 40; near <= bits + 40; ++near) {
        ExpectPlainText(std::bit_cast<float>(near));
    }
}

TEST(FloatText, IsThePlainOneForAnyBits) {
    std::mt19937 random(11);
    for (int i = 0; i < 1000000; ++i) {
        ExpectPlainText(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    }
}

TEST(FloatText, IsThePlainOneInTheRangeOfCoordinates) {
    std::mt19937 random(12);
    std::uniform_real_distribution<float> exponent(-7, 5);
    std::uniform_real_distribution<float> mantissa(1, 10);
    for (int i = 0; i < 500000; ++i) {
        ExpectPlainText(mantissa(random) * std::pow(10.0f, exponent(random)));
    }
}

TEST(FloatText, IsThePlainOneAroundPowersOfTenAndOfTwo) {
    for (int exponent = -45; exponent <= 38; ++exponent) {
        ExpectPlainTextAround(static_cast<float>(std::pow(10.0, exponent)));
    }
    for (int exponent = -149; exponent <= 127; ++exponent) {
        ExpectPlainTextAround(std::ldexp(1.0f, exponent));
    }
    using Limits = std::numeric_limits<float>;
    for (const float number : {0.0f, Limits::denorm_min(), Limits::min(), Limits::max(), 9999.99951f}) {
        ExpectPlainTextAround(number);
    }
}

TEST(FloatText, IsThePlainOneForShortFractions) {
    for (int tenths = 0; tenths < 100000; ++tenths) {
        for (const float unit : {10.0f, 1000.0f, 1e6f}) {
            ExpectPlainText(static_cast<float>(tenths) / unit);
        }
    }
}

// Numbers of ten and more digits whose last is a 5 with nothing after it.
TEST(FloatText, TakesHalfADigitToTheEvenOne) {
    for (std::uint32_t bits = std::bit_cast<std::uint32_t>(8192.0f); bits < 0x46100000; bits += 7) {
        ExpectPlainText(std::bit_cast<float>(bits));
    }
    EXPECT_EQ(FastFloat(10000.0009765625f), "10000.001");
    EXPECT_EQ(FastFloat(0.000030517578125f), "3.05175781e-05") << "the 2 that ends it is even";
    EXPECT_EQ(FastFloat(1048576.125f), "1048576.12");
    EXPECT_EQ(FastFloat(1048576.375f), "1048576.38");
}

TEST(IntegerText, IsThePlainOne) {
    for (std::int64_t number = -20000; number < 120000; ++number) {
        ASSERT_EQ(FastInteger(number), std::to_string(number));
    }
    for (std::int64_t power = 1; power < std::int64_t{1000000000000000000}; power *= 10) {
        for (std::int64_t near = power - 2; near <= power + 2; ++near) {
            ASSERT_EQ(FastInteger(near), std::to_string(near));
            ASSERT_EQ(FastInteger(-near), std::to_string(-near));
        }
    }
    using Limits = std::numeric_limits<std::int64_t>;
    EXPECT_EQ(FastInteger(Limits::min()), std::to_string(Limits::min()));
    EXPECT_EQ(FastInteger(Limits::max()), std::to_string(Limits::max()));
}

} // namespace
} // namespace tarnwick::test
