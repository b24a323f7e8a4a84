#include "text/wide_text.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

TEST(WideText, IsUtf8InNarrowForm) {
    EXPECT_EQ(WideFromNarrow("a.stp"), U"a.stp");
    EXPECT_EQ(WideFromNarrow("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), U"\u00E9\u20AC\U0001F600");
    EXPECT_EQ(NarrowFromWide(U"\u00E9\u20AC\U0001F600"), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(NarrowFromWide(U""), "");
}

TEST(WideText, BringsEveryPathBackByteForByte) {
    for (int first = 1; first < 256; ++first) {
        for (const int second : {0x20, 0x41, 0x7F, 0x80, 0xA0, 0xBF, 0xC0, 0xED, 0xFF}) {
            const std::string text{'x', static_cast<char>(first), static_cast<char>(second), 'y'};
            ASSERT_EQ(NarrowFromWide(WideFromNarrow(text)), text) << first << " " << second;
        }
    }
}

TEST(WideText, BringsBackWhatIsNoUtf8) {
    for (const std::string text : {"\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC0\x80", "\xE0\x80\x80",
                                   "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xED\xB2\x80"}) {
        EXPECT_EQ(NarrowFromWide(WideFromNarrow(text)), text);
    }
}

} // namespace
} // namespace tarnwick::test
