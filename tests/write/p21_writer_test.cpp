#include "write/p21_writer.h"

#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

// What the data section of a file has in front of its end.
std::string Written(void (*write)(P21Writer*)) {
    std::string text;
    StringSink sink(&text);
    P21Writer writer(&sink);
    write(&writer);
    writer.Footer();
    return text.substr(0, text.find("ENDSEC;"));
}

TEST(P21WriterTest, RealsHaveAPointAndNoExponent) {
    const std::string text = Written([](P21Writer* out) {
        for (const double v : {0.0, 1.0, -2.5, 1e-9, 1e-5, 123456.0, 0.1}) {
            out->Put(v);
            out->Put(' ');
        }
    });
    EXPECT_EQ(text, "0. 1. -2.5 0. 0.00001 123456. 0.1 ");
}

TEST(P21WriterTest, StringsAreEscaped) {
    EXPECT_EQ(EncodeString("plain (text), #1"), "'plain (text), #1'");
    EXPECT_EQ(EncodeString("it's a \\"), "'it''s a \\\\'");
    EXPECT_EQ(EncodeString("\xC3\xA9\xE2\x82\xAC"), "'\\X2\\00E9\\X0\\\\X2\\20AC\\X0\\'");
    EXPECT_EQ(EncodeString("\xF0\x9F\x94\xA9"), "'\\X4\\0001F529\\X0\\'");
    EXPECT_EQ(EncodeString("a\nb\xFF."), "'a?b?.'");
    // Neither half a character of UTF-16 nor one that is longer than it need be is valid UTF-8.
    EXPECT_EQ(EncodeString("\xED\xA0\x80,\xC0\xA7."), "'???,??.'");
}

TEST(P21WriterTest, ReferenceToNothingIsADollar) {
    const std::string text = Written([](P21Writer* out) {
        out->Add("X", EntityId{}, EntityId{7}, std::vector{EntityId{1}, EntityId{2}}, 3, "a");
    });
    EXPECT_EQ(text, "#1=X($,#7,(#1,#2),3,'a');\n");
}

} // namespace
} // namespace tarnwick::test
