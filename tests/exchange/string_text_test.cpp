#include "exchange/string_text.h"

#include "write/p21_writer.h"

#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

TEST(StringText, DoubledQuotesAndBackslashesAreOne) {
    EXPECT_EQ(StringOf("'it''s a \\\\ b'"), "it's a \\ b");
    EXPECT_EQ(StringOf("''''"), "'");
    EXPECT_EQ(StringOf("''"), "");
    EXPECT_EQ(StringOf("$"), "");
}

TEST(StringText, DirectivesAreTheCharactersThatTheyStandFor) {
    EXPECT_EQ(StringOf("'\\X2\\00E400F6\\X0\\b'"), "\u00E4\u00F6b");
    EXPECT_EQ(StringOf("'\\X4\\0001F600\\X0\\'"), "\U0001F600");
    EXPECT_EQ(StringOf("'\\X2\\D83DDE00\\X0\\'"), "\U0001F600");
    EXPECT_EQ(StringOf("'\\X\\E4'"), "\u00E4");
    EXPECT_EQ(StringOf("'\\S\\d'"), "\u00E4");
    EXPECT_EQ(StringOf("'\\PE\\\\S\\0'"), "\u0410"); // the first Cyrillic capital of 8859-5
}

TEST(StringText, HalfOfAPairIsTheReplacementCharacter) {
    EXPECT_EQ(StringOf("'\\X2\\D83D0041DE00\\X0\\'"), "\uFFFDA\uFFFD");
    EXPECT_EQ(StringOf("'\\X2\\D83DD83DDE00D83D\\X0\\'"), "\uFFFD\U0001F600\uFFFD");
}

TEST(StringText, AClippedTextEndsWithAWholeCharacter) {
    EXPECT_EQ(ClippedUtf8("a\u00E4\U0001F600", 7), "a\u00E4\U0001F600");
    EXPECT_EQ(ClippedUtf8("a\u00E4\U0001F600", 6), "a\u00E4");
    EXPECT_EQ(ClippedUtf8("a\u00E4\U0001F600", 2), "a");
    EXPECT_EQ(ClippedUtf8("\x80\x80", 1), "");
}

TEST(StringText, BytesBeyondAsciiAreUtf8WhereTheyCanBe) {
    EXPECT_EQ(StringOf("'\u00E4'"), "\u00E4");
    EXPECT_EQ(StringOf("'\xE4'"), "\u00E4");
    EXPECT_EQ(StringOf("'\xC0\x80'"), "\u00C0\u0080");
}

TEST(StringText, BrokenDirectivesStayAsTheyStand) {
    EXPECT_EQ(StringOf("'\\X2\\00'"), "00");
    EXPECT_EQ(StringOf("'\\Q'"), "\\Q");
    EXPECT_EQ(StringOf("'\\X\\G0'"), "\\X\\G0");
    EXPECT_EQ(StringOf("'a\r\nb'"), "ab");
}

TEST(StringText, ReadsWhatTheWriterWrites) {
    for (const std::string_view text : {"plain", "it's", "a\\b", "\u00E4\U0001F600", "'\\X2\\"}) {
        std::string argument = "'";
        argument += EncodeString(text);
        argument += "'";
        if (EncodeString(text).starts_with('\'')) { argument = EncodeString(text); }
        EXPECT_EQ(StringOf(argument), text);
    }
}

} // namespace
} // namespace tarnwick::test
