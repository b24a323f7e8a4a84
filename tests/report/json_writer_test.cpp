#include "report/json_writer.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

std::string FloatText(float value) {
    JsonWriter json;
    json.Float(value);
    return json.Take();
}
std::string DoubleText(double value) {
    JsonWriter json;
    json.Double(value);
    return json.Take();
}
std::string TextText(std::string_view bytes) {
    JsonWriter json;
    json.Text(bytes);
    return json.Take();
}
std::string CrcText(const void* data, std::size_t bytes) {
    JsonWriter json;
    json.Crc(data, bytes);
    return json.Take();
}

bool ReadsBack(float value) {
    const std::string text = FloatText(value);
    return std::bit_cast<std::uint32_t>(std::strtof(text.c_str(), nullptr)) ==
           std::bit_cast<std::uint32_t>(value);
}
bool ReadsBack(double value) {
    const std::string text = DoubleText(value);
    return std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)) ==
           std::bit_cast<std::uint64_t>(value);
}

TEST(JsonFloat, ReadsBackToTheSameNumber) {
    std::mt19937 random(7);
    for (int i = 0; i < 200000; ++i) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(value)) { ASSERT_TRUE(ReadsBack(value)) << FloatText(value); }
    }
    using Limits = std::numeric_limits<float>;
    for (const float value : {0.0f, 0.1f, 0.3f, 1.0f, 16777217.0f, Limits::max(), Limits::lowest(),
                              Limits::min(), Limits::denorm_min(), 1e-9f, 1234567.9f}) {
        EXPECT_TRUE(ReadsBack(value)) << value;
        EXPECT_TRUE(ReadsBack(-value)) << value;
    }
}

TEST(JsonFloat, HasAtMostNineDigits) {
    EXPECT_EQ(FloatText(0.3f), "0.300000012");
    EXPECT_EQ(FloatText(0.5f), "0.5");
    EXPECT_EQ(FloatText(1.0f), "1.0");
}

TEST(JsonFloat, KeepsANegativeZero) {
    const std::string text = FloatText(-0.0f);
    EXPECT_TRUE(text == "-0" || text == "-0.0") << text;
    const std::string wide = DoubleText(-0.0);
    EXPECT_TRUE(wide == "-0" || wide == "-0.0") << wide;
    EXPECT_EQ(FloatText(0.0f)[0], '0');
}

TEST(JsonFloat, IsAStringWhenItIsNotFinite) {
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(FloatText(infinity), "\"inf\"");
    EXPECT_EQ(FloatText(-infinity), "\"-inf\"");
    EXPECT_EQ(FloatText(std::numeric_limits<float>::quiet_NaN()), "\"nan\"");
    EXPECT_EQ(FloatText(-std::numeric_limits<float>::quiet_NaN()), "\"nan\"");
}

TEST(JsonDouble, ReadsBackToTheSameNumber) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        const double value = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
        if (std::isfinite(value)) { ASSERT_TRUE(ReadsBack(value)) << DoubleText(value); }
    }
    EXPECT_TRUE(ReadsBack(0.1));
    EXPECT_TRUE(ReadsBack(std::numeric_limits<double>::denorm_min()));
}

TEST(JsonDouble, IsAStringWhenItIsNotFinite) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(DoubleText(infinity), "\"inf\"");
    EXPECT_EQ(DoubleText(-infinity), "\"-inf\"");
    EXPECT_EQ(DoubleText(std::numeric_limits<double>::quiet_NaN()), "\"nan\"");
}

TEST(JsonFloat, HasAPointInEveryLocale) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) { GTEST_SKIP() << "no locale with a comma here"; }
    EXPECT_EQ(FloatText(0.5f), "0.5");
    EXPECT_EQ(DoubleText(0.5), "0.5");
    std::setlocale(LC_ALL, "C");
}

TEST(JsonText, TakesEachByteAsALatin1Character) {
    EXPECT_EQ(TextText("abc"), "\"abc\"");
    EXPECT_EQ(TextText("\xE9\xFF\x80\xBF\xC0"), "\"\xC3\xA9\xC3\xBF\xC2\x80\xC2\xBF\xC3\x80\"");
    EXPECT_EQ(TextText("\xC3\xA9"), "\"\xC3\x83\xC2\xA9\"") << "also of what is UTF-8";
}

TEST(JsonText, IsReadBackWhateverItsBytes) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto read = nlohmann::json::parse(TextText(std::string(1, static_cast<char>(byte))));
        const std::string text = read.get<std::string>();
        const int code =
            text.size() == 1 ? static_cast<unsigned char>(text[0]) : (text[0] & 0x1F) << 6 | (text[1] & 0x3F);
        EXPECT_EQ(code, byte);
    }
}

TEST(JsonCrc, IsThatOfZlibInEightSmallDigits) {
    EXPECT_EQ(CrcText("123456789", 9), "\"cbf43926\"");
    EXPECT_EQ(CrcText(nullptr, 0), "\"00000000\"");
    EXPECT_EQ(CrcText("x", 0), "\"00000000\"");
    const float zero = 0;
    EXPECT_EQ(CrcText(&zero, 4), "\"2144df1c\"");
    const std::uint32_t one = 1;
    EXPECT_EQ(CrcText(&one, 4), "\"99f8b879\"");
}

TEST(JsonWriter, PutsCommasBetweenValuesAndNowhereElse) {
    JsonWriter json;
    json.BeginObject();
    json.Key("none");
    json.BeginArray();
    json.EndArray();
    json.Key("two");
    json.BeginArray();
    json.Integer(-1);
    json.BeginObject();
    json.EndObject();
    json.EndArray();
    json.TextKey("a\"b");
    json.Null();
    json.Key("name");
    json.TextOrNull(nullptr);
    json.EndObject();
    EXPECT_EQ(json.Take(), R"({"none":[],"two":[-1,{}],"a\"b":null,"name":null})");
}

// Pieces of the text, as they come.
class Pieces final : public ByteSink {
public:
    void Write(std::string_view bytes) override {
        text += bytes;
        ++count;
    }
    bool Close() override { return true; }

    std::string text;
    int count = 0;
};

TEST(JsonWriter, WritesARowAsItsNumbersOneByOne) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    std::vector<float> floats;
    std::vector<std::int32_t> integers;
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < 100000; ++i) { // more than a block
        floats.push_back(i % 1000 == 7 ? infinity : static_cast<float>(i) / 7);
        integers.push_back(i % 3 == 0 ? -i : i * 1000);
        bytes.push_back(static_cast<std::uint8_t>(i));
    }
    JsonWriter plain;
    Pieces pieces;
    JsonWriter rows(&pieces);
    for (JsonWriter* json : {&plain, &rows}) { json->BeginArray(); }
    for (const float value : floats) { plain.Float(value); }
    rows.Floats(floats.data(), floats.size());
    for (const std::int32_t value : integers) { plain.Integer(value); }
    rows.Integers(integers.data(), integers.size());
    for (const std::uint8_t value : bytes) { plain.Integer(value); }
    rows.Integers(bytes.data(), bytes.size());
    rows.Integers(bytes.data(), 0);
    for (JsonWriter* json : {&plain, &rows}) { json->EndArray(); }
    rows.Flush();
    EXPECT_GT(pieces.count, 3);
    EXPECT_TRUE(pieces.text == plain.Take());
}

TEST(JsonWriter, TakesATextThatIsLongerThanABlock) {
    const std::string text(1000000, 'x');
    JsonWriter json;
    json.Key(text);
    json.Utf8(text);
    EXPECT_TRUE(json.Take() == '"' + text + "\":\"" + text + '"');
}

} // namespace
} // namespace tarnwick::test
