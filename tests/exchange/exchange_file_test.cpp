#include "exchange/exchange_file.h"

#include "exchange/padded.h"

#include <gmock/gmock.h>

#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string FileOf(std::string_view data) {
    return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
           "FILE_SCHEMA (('AP214'));\nENDSEC;\nDATA;\n" +
           std::string(data) + "\nENDSEC;\nEND-ISO-10303-21;\n";
}

// "#number keyword text" of all instances, in their order.
std::vector<std::string> InstancesOf(std::string_view text) {
    const Padded padded(text);
    const ExchangeFile file(padded.Text());
    std::vector<std::string> lines;
    for (const Instance& instance : file.Instances()) {
        lines.push_back("#" + std::to_string(instance.number) + " " + std::string(file.KeywordOf(instance)) +
                        " " + std::string(file.TextOf(instance)));
    }
    return lines;
}

std::vector<std::string> DeviationsOf(std::string_view text) {
    const Padded padded(text);
    const ExchangeFile file(padded.Text());
    std::vector<std::string> lines;
    for (const Deviation& deviation : file.Deviations()) {
        const TextPlace place = PlaceOf(file.Text(), deviation.offset);
        lines.push_back(std::to_string(place.line) + ":" + std::to_string(place.column) + " " +
                        deviation.what);
    }
    return lines;
}

TEST(ExchangeFile, FindsInstancesInAnyLayout) {
    const std::string text =
        FileOf("#1=A('x');#2 = B\n (1,\r\n 2) ;/* #9=Z(); */#3=\n(C(1)D('a;b'));\n\t#4=E(/* ; */\"0;F\");");
    EXPECT_THAT(InstancesOf(text), ElementsAre("#1 A A('x')", "#2 B B\n (1,\r\n 2)", "#3  (C(1)D('a;b'))",
                                               "#4 E E(/* ; */\"0;F\")"));
    EXPECT_THAT(DeviationsOf(text), ElementsAre());
}

TEST(ExchangeFile, QuotesAndSemicolonsInStringsDontEndAnInstance) {
    EXPECT_THAT(InstancesOf(FileOf("#1=A('it''s; #2=B();','''');\n#3=C('''a''');")),
                ElementsAre("#1 A A('it''s; #2=B();','''')", "#3 C C('''a''')"));
}

TEST(ExchangeFile, ReadsSeveralDataSectionsAndStepsOverOthers) {
    const std::string text =
        "ISO-10303-21;\nHEADER;\nENDSEC;\nANCHOR;\n<a>=#1;\nENDSEC;\nREFERENCE;\n#7=<b.stp#c>;\nENDSEC;\n"
        "DATA('one',('AP242'));\n#1=A();\nENDSEC;\nDATA('two',('AP242'));\n#2=B();\nENDSEC;\nEND-ISO-10303-"
        "21;\n"
        "SIGNATURE;\n-----BEGIN PKCS7-----\nMII'=\"/b\n-----END PKCS7-----\nENDSEC;\n";
    EXPECT_THAT(InstancesOf(text), ElementsAre("#1 A A()", "#2 B B()"));
    EXPECT_THAT(DeviationsOf(text), ElementsAre());
}

TEST(ExchangeFile, FindsEveryNumberWhateverTheirOrder) {
    for (const std::string_view data : {"#1=A();#2=B();#3=C();", "#30=C();#2=B();#1=A();",
                                        "#1=A();#18446744073709551615=B();", "#5=A();#4=B();#5=C();"}) {
        const Padded text(FileOf(data));
        const ExchangeFile file(text.Text());
        for (const Instance& instance : file.Instances()) {
            const Instance* const found = file.Find(instance.number);
            ASSERT_NE(found, nullptr);
            EXPECT_EQ(found->number, instance.number);
        }
        EXPECT_EQ(file.Find(0), nullptr);
        EXPECT_EQ(file.Find(17), nullptr);
    }
}

TEST(ExchangeFile, FindsEveryNumberOfSparseOnes) {
    std::string data;
    for (std::uint64_t i = 1; i < 2000; ++i) { data += "#" + std::to_string(i * i * i) + "=A();\n"; }
    const Padded text(FileOf(data));
    const ExchangeFile file(text.Text());
    for (std::uint64_t i = 1; i < 2000; ++i) {
        ASSERT_NE(file.Find(i * i * i), nullptr) << i;
        ASSERT_EQ(file.Find(i * i * i + 1), nullptr) << i;
    }
}

TEST(ExchangeFile, TheFirstOfTwoWithOneNumberCounts) {
    const Padded text(FileOf("#5=A();\n#5=B();"));
    const ExchangeFile file(text.Text());
    EXPECT_EQ(file.KeywordOf(*file.Find(5)), "A");
    EXPECT_THAT(DeviationsOf(text.Text()),
                ElementsAre("9:4 the number #5 stands twice; the first one counts"));
}

TEST(ExchangeFile, ListsTheInstancesOfAKeyword) {
    const Padded text(FileOf("#1=A();#2=B();#3=A();#4=(X()Y());#5=a();"));
    const ExchangeFile file(text.Text());
    EXPECT_THAT(file.OfKeyword("A"), ElementsAre(0u, 2u, 4u));
    EXPECT_THAT(file.ComplexInstances(), ElementsAre(3u));
    EXPECT_THAT(file.OfKeyword("C"), ElementsAre());
    EXPECT_THAT(file.OfKeyword(""), ElementsAre());
}

TEST(ExchangeFile, AnInstanceWithoutItsSemicolonCostsNoOther) {
    const std::string text = FileOf("#1=A('x')\n#2=B(1);\n#3=C();");
    EXPECT_THAT(InstancesOf(text), ElementsAre("#1 A A('x')", "#2 B B(1)", "#3 C C()"));
    EXPECT_THAT(DeviationsOf(text),
                ElementsAre("9:1 an instance begins before the one ahead of it has its ;"));
}

TEST(ExchangeFile, AStringWithoutItsQuoteCostsNoOtherInstance) {
    const std::string text = FileOf("#1=A('x);\n#2=B('y');\n#3=C();");
    EXPECT_THAT(InstancesOf(text), ElementsAre("#1 A A('x);", "#2 B B('y')", "#3 C C()"));
    EXPECT_THAT(DeviationsOf(text), ElementsAre("8:6 a string isn't closed"));
}

TEST(ExchangeFile, RubbishBetweenInstancesIsToldWithItsPlace) {
    const std::string text = FileOf("#1=A();\n  what is this\n#2=B();");
    EXPECT_THAT(InstancesOf(text), ElementsAre("#1 A A()", "#2 B B()"));
    EXPECT_THAT(DeviationsOf(text), ElementsAre("9:3 neither an instance nor a section"));
}

TEST(ExchangeFile, TextAfterTheEndCostsNothing) {
    const Padded padded(FileOf("#1=A();\n") + "the mail's signature\n");
    const ExchangeFile file(padded.Text());
    ASSERT_EQ(file.Deviations().size(), 1u);
    EXPECT_EQ(file.Deviations()[0].what, "text after END-ISO-10303-21;");
    EXPECT_FALSE(file.Deviations()[0].isLoss);
    EXPECT_EQ(file.Instances().size(), 1u);
}

TEST(ExchangeFile, TellsOfWhatIsNoExchangeFile) {
    const Padded text("<?xml version=\"1.0\"?><a/>");
    EXPECT_FALSE(ExchangeFile(text.Text()).IsExchangeFile());
    EXPECT_TRUE(ExchangeFile(Padded(FileOf("")).Text()).IsExchangeFile());
    EXPECT_THAT(DeviationsOf("\xEF\xBB\xBF" + FileOf("")),
                ElementsAre("1:1 the file begins with a byte order mark"));
}

TEST(ExchangeFile, ReadsATextThatIsCutAnywhere) {
    const std::string text = FileOf("#1=A('x',\"0F\",/* c */(1,2));\n#2=(B(#1)C());\n");
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const Padded cut(std::string_view(text).substr(0, length));
        const ExchangeFile file(cut.Text());
        EXPECT_LE(file.Instances().size(), 2u);
        if (length < text.size() - 1) { EXPECT_FALSE(file.Deviations().empty()) << length; }
    }
}

} // namespace
} // namespace tarnwick::test
