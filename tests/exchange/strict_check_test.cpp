#include "exchange/strict_check.h"

#include "exchange/padded.h"

#include <gmock/gmock.h>

#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;

std::string FileOf(std::string_view data) {
    return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
           "FILE_SCHEMA(('AP214'));\nENDSEC;\nDATA;\n" +
           std::string(data) + "\nENDSEC;\nEND-ISO-10303-21;\n";
}

std::vector<std::string> FaultsOf(std::string_view text) {
    const Padded padded(text);
    std::vector<std::string> lines;
    for (const Deviation& deviation : CheckStrictly(padded.Text(), 10)) {
        const TextPlace place = PlaceOf(padded.Text(), deviation.offset);
        lines.push_back(std::to_string(place.line) + ":" + std::to_string(place.column) + " " +
                        deviation.what);
    }
    return lines;
}

TEST(StrictCheck, FindsNothingInASoundFile) {
    EXPECT_THAT(
        FaultsOf(FileOf("#1=A('x',(1,2.E5,()),.T.,\"0F\",$,*,B(3));\n#2=(C(#1)D('\\X2\\00E4\\X0\\'));")),
        ElementsAre());
}

TEST(StrictCheck, TellsEachDeviationWithLineAndColumn) {
    EXPECT_THAT(FaultsOf(FileOf("#1=A((1,2)));")), ElementsAre("8:12 a ; is missing"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A((1,2);")), ElementsAre("8:11 a , or a ) is missing"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A(1 2);")), ElementsAre("8:8 a , or a ) is missing"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A(1,);")), ElementsAre("8:8 a parameter is missing or isn't one"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A(#3);\n#2=B();")), ElementsAre("8:6 #3 leads to no instance"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A();\n#1=B();")), ElementsAre("9:1 the number #1 stands twice"));
    EXPECT_THAT(FaultsOf(FileOf("#1=a();")), ElementsAre("8:4 a keyword has small letters"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A(1.e5);")), ElementsAre("8:6 an exponent has a small e"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A(1.D5);")), ElementsAre("8:6 an exponent has another letter than E"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A(1E5);")), ElementsAre("8:6 a real has no point"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A(-.5);")), ElementsAre("8:6 a real has no digit before its point"));
    EXPECT_THAT(FaultsOf(FileOf("#1=A('\\Q');")),
                ElementsAre("8:6 a string has a backslash that begins no directive"));
    EXPECT_THAT(FaultsOf(FileOf("#0=A();")), ElementsAre("8:1 the number of an instance is from 1 on"));
    EXPECT_THAT(FaultsOf(FileOf("#1 A();\n#2=B();")), ElementsAre("8:4 a = is missing"));
}

TEST(StrictCheck, WantsTheHeaderWhole) {
    std::string text = FileOf("#1=A();");
    text.replace(text.find("FILE_NAME"), 9, "FILE_GAME");
    EXPECT_THAT(FaultsOf(text),
                ElementsAre("4:1 FILE_NAME is missing from the header or out of its order",
                            "4:1 FILE_SCHEMA is missing from the header or out of its order"));
}

TEST(StrictCheck, TellsEveryCutOfAFile) {
    const std::string text = FileOf("#1=A('x',\"0F\",(1,2));\n#2=(B(#1)C());");
    for (std::size_t length = 0; length + 1 < text.size(); ++length) {
        EXPECT_FALSE(FaultsOf(text.substr(0, length)).empty()) << length;
    }
}

} // namespace
} // namespace tarnwick::test
