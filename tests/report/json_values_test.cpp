#include "report/json_values.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace tarnwick::test {
namespace {

bool ReadsBack(float value) {
    const std::string text = JsonFloat(value).dump();
    return std::bit_cast<std::uint32_t>(std::strtof(text.c_str(), nullptr)) ==
           std::bit_cast<std::uint32_t>(value);
}
bool ReadsBack(double value) {
    const std::string text = JsonDouble(value).dump();
    return std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)) ==
           std::bit_cast<std::uint64_t>(value);
}

TEST(JsonFloat, ReadsBackToTheSameNumber) {
    std::mt19937 random(7);
    for (int i = 0; i < 200000; ++i) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(value)) { ASSERT_TRUE(ReadsBack(value)) << JsonFloat(value).dump(); }
    }
    using Limits = std::numeric_limits<float>;
    for (const float value : {0.0f, 0.1f, 0.3f, 1.0f, 16777217.0f, Limits::max(), Limits::lowest(),
                              Limits::min(), Limits::denorm_min(), 1e-9f, 1234567.9f}) {
        EXPECT_TRUE(ReadsBack(value)) << value;
        EXPECT_TRUE(ReadsBack(-value)) << value;
    }
}

TEST(JsonFloat, HasAtMostNineDigits) {
    EXPECT_EQ(JsonFloat(0.3f).dump(), "0.300000012");
    EXPECT_EQ(JsonFloat(0.5f).dump(), "0.5");
    EXPECT_EQ(JsonFloat(1.0f).dump(), "1.0");
}

TEST(JsonFloat, KeepsANegativeZero) {
    const std::string text = JsonFloat(-0.0f).dump();
    EXPECT_TRUE(text == "-0" || text == "-0.0") << text;
    const std::string wide = JsonDouble(-0.0).dump();
    EXPECT_TRUE(wide == "-0" || wide == "-0.0") << wide;
    EXPECT_EQ(JsonFloat(0.0f).dump()[0], '0');
}

TEST(JsonFloat, IsAStringWhenItIsNotFinite) {
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(JsonFloat(infinity).dump(), "\"inf\"");
    EXPECT_EQ(JsonFloat(-infinity).dump(), "\"-inf\"");
    EXPECT_EQ(JsonFloat(std::numeric_limits<float>::quiet_NaN()).dump(), "\"nan\"");
    EXPECT_EQ(JsonFloat(-std::numeric_limits<float>::quiet_NaN()).dump(), "\"nan\"");
}

TEST(JsonDouble, ReadsBackToTheSameNumber) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        const double value = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
        if (std::isfinite(value)) { ASSERT_TRUE(ReadsBack(value)) << JsonDouble(value).dump(); }
    }
    EXPECT_TRUE(ReadsBack(0.1));
    EXPECT_TRUE(ReadsBack(std::numeric_limits<double>::denorm_min()));
}

TEST(JsonDouble, IsAStringWhenItIsNotFinite) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(JsonDouble(infinity).dump(), "\"inf\"");
    EXPECT_EQ(JsonDouble(-infinity).dump(), "\"-inf\"");
    EXPECT_EQ(JsonDouble(std::numeric_limits<double>::quiet_NaN()).dump(), "\"nan\"");
}

TEST(JsonFloat, HasAPointInEveryLocale) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) { GTEST_SKIP() << "no locale with a comma here"; }
    EXPECT_EQ(JsonFloat(0.5f).dump(), "0.5");
    EXPECT_EQ(JsonDouble(0.5).dump(), "0.5");
    std::setlocale(LC_ALL, "C");
}

TEST(JsonText, TakesEachByteAsALatin1Character) {
    EXPECT_EQ(JsonText("abc"), "abc");
    EXPECT_EQ(JsonText("\xE9\xFF\x80\xBF\xC0"), "\xC3\xA9\xC3\xBF\xC2\x80\xC2\xBF\xC3\x80");
    EXPECT_EQ(JsonText("\xC3\xA9"), "\xC3\x83\xC2\xA9") << "also of what is UTF-8";
    for (int byte = 0; byte < 256; ++byte) {
        const nlohmann::json json = JsonText(std::string(1, static_cast<char>(byte)));
        EXPECT_NO_THROW(static_cast<void>(json.dump())) << byte;
    }
}

TEST(Crc, IsThatOfZlibInEightSmallDigits) {
    EXPECT_EQ(Crc("123456789", 9), "cbf43926");
    EXPECT_EQ(Crc(nullptr, 0), "00000000");
    EXPECT_EQ(Crc("x", 0), "00000000");
    const float zero = 0;
    EXPECT_EQ(Crc(&zero, 4), "2144df1c");
    const std::uint32_t one = 1;
    EXPECT_EQ(Crc(&one, 4), "99f8b879");
}

} // namespace
} // namespace tarnwick::test
