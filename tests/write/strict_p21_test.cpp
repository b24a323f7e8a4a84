#include "support/p21_text.h"
#include "support/strict_p21.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Lines kSound{
    "#1=COORDINATES_LIST('',2,((0.,0.5,-1.E-3),(1.,2.,3.)));",
    "#2=TRIANGULATED_FACE('it''s \\\\ \\X2\\00E9\\X0\\',#1,2,(),$,(),((1,2,1)));",
    "#3=(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.));",
    "#4=EXTERNAL_SOURCE(IDENTIFIER(''));",
};

std::vector<std::string> FaultsOf(const Lines& data) {
    return ReadP21(P21Text(data)).faults;
}

// The sound text with something else in one of its lines.
std::vector<std::string> FaultsWith(std::size_t line, const std::string& from, const std::string& to) {
    Lines data = kSound;
    data[line].replace(data[line].find(from), from.size(), to);
    return FaultsOf(data);
}

TEST(StrictP21, HasNothingToSayOfASoundText) {
    EXPECT_THAT(FaultsOf(kSound), IsEmpty());
}

TEST(StrictP21, GivesTheArgumentsAsTheyStand) {
    const P21File file = ReadP21(P21Text(kSound));
    const P21Instance& list = file.entities.at(1);
    EXPECT_EQ(list.Keyword(), "COORDINATES_LIST");
    EXPECT_EQ(list.records[0].text, "'',2,((0.,0.5,-1.E-3),(1.,2.,3.))");
    EXPECT_EQ(list.records[0].arguments[2].items[1].text, "(1.,2.,3.)");
    EXPECT_THAT(ReferencesIn(file.entities.at(2).records[0].arguments), ElementsAre(1));
    EXPECT_TRUE(file.entities.at(3).IsComplex());
}

TEST(StrictP21, FindsAParenthesisTooMany) {
    EXPECT_THAT(FaultsWith(0, ")));", "))));"), ElementsAre(HasSubstr("after #1, at: );")));
}

TEST(StrictP21, FindsAParenthesisTooFew) {
    EXPECT_THAT(FaultsWith(0, ")));", "));"), ElementsAre(HasSubstr("after #1, at: ;")));
}

TEST(StrictP21, FindsAnOpenString) {
    EXPECT_THAT(FaultsWith(1, "it''s", "it's"), ElementsAre(HasSubstr("after #2")));
    EXPECT_THAT(FaultsWith(3, "''", "'"), ElementsAre(HasSubstr("after #4")));
}

TEST(StrictP21, FindsWhatStringsCannotHold) {
    for (const char* const wrong :
         {"a\nb", "\xC3\xA9", "\\", "\\X2\\00E\\X0\\", "\\X2\\00e9\\X0\\", "\\X2\\00E9"}) {
        EXPECT_THAT(FaultsWith(0, "''", "'" + std::string(wrong) + "'"), ElementsAre(HasSubstr("after #1")))
            << wrong;
    }
}

TEST(StrictP21, FindsAReferenceThatLeadsNowhere) {
    EXPECT_THAT(FaultsWith(1, "#1,", "#5,"), ElementsAre("#2: leads to no entity: #5"));
}

TEST(StrictP21, FindsADoubledNumber) {
    EXPECT_THAT(FaultsWith(3, "#4", "#2"), ElementsAre("doubled: #2"));
}

TEST(StrictP21, FindsARealWithoutAPointAndAnIntegerWithOne) {
    for (const char* const wrong : {"(1,2.,3.)", "(1.,2.,3)", "(1.,2.)", "(1.,2.,3.,4.)"}) {
        EXPECT_THAT(FaultsWith(0, "(1.,2.,3.)", wrong), ElementsAre(HasSubstr("#1: not arguments of COORD")))
            << wrong;
    }
    EXPECT_THAT(FaultsWith(0, "2,((", "2.,(("), ElementsAre(HasSubstr("#1: not arguments of COORD")));
}

TEST(StrictP21, FindsNumbersThatNoReaderTakes) {
    for (const char* const wrong : {".5", "inf", "1e3", "1.E", "--1.", "1..", "0x1."}) {
        EXPECT_THAT(FaultsWith(0, "0.5", wrong), testing::SizeIs(1)) << wrong;
    }
}

TEST(StrictP21, FindsListsOfAnotherDepth) {
    EXPECT_THAT(FaultsWith(0, "((0.,0.5,-1.E-3),(1.,2.,3.))", "(0.,0.5,-1.E-3)"), testing::SizeIs(1));
    EXPECT_THAT(FaultsWith(0, "((0.,0.5,-1.E-3),(1.,2.,3.))", "(((0.,0.5,-1.E-3),(1.,2.,3.)))"),
                testing::SizeIs(1));
    EXPECT_THAT(FaultsWith(1, "((1,2,1))", "()"), testing::SizeIs(1));
}

TEST(StrictP21, FindsArgumentsThatAreMissingOrTooMany) {
    EXPECT_THAT(FaultsWith(1, "$,", ""), ElementsAre(HasSubstr("#2: not arguments of TRIANG")));
    EXPECT_THAT(FaultsWith(1, "$,", "$,$,"), ElementsAre(HasSubstr("#2: not arguments of TRIANG")));
    EXPECT_THAT(FaultsWith(1, "$,", "$,,"), ElementsAre(HasSubstr("after #2")));
    EXPECT_THAT(FaultsWith(0, "'',", "$,"), ElementsAre(HasSubstr("#1: not arguments of COORD")));
}

TEST(StrictP21, FindsAnUnknownKeyword) {
    EXPECT_THAT(FaultsWith(0, "COORDINATES_LIST", "COORDINATE_LIST"),
                ElementsAre(HasSubstr("#1: not arguments of COORDINATE_LIST")));
}

TEST(StrictP21, FindsAnUnknownEnumerationValue) {
    EXPECT_THAT(FaultsWith(2, ".METRE.", ".METER."), ElementsAre(HasSubstr("#3: not arguments of SI_UNIT")));
}

TEST(StrictP21, FindsAnEntityThatDoesNotEnd) {
    EXPECT_THAT(FaultsWith(3, ";", ""), ElementsAre(HasSubstr("after #4")));
}

TEST(StrictP21, FindsRecordsOutOfOrder) {
    EXPECT_THAT(FaultsOf({"#1=(NAMED_UNIT(*)LENGTH_UNIT()SI_UNIT(.MILLI.,.METRE.));"}),
                ElementsAre(HasSubstr("#1: its records")));
}

TEST(StrictP21, FindsSectionsAndHeaderEntitiesOutOfOrder) {
    const std::string sound = P21Text(kSound);
    for (const char* const word : {"ISO-10303-21;", "HEADER;", "FILE_NAME", "ENDSEC;", "DATA;", "END-ISO"}) {
        std::string text = sound;
        text.replace(text.find(word), 4, "AAAA");
        EXPECT_THAT(ReadP21(text).faults, testing::SizeIs(1)) << word;
    }
    EXPECT_THAT(ReadP21(sound + "DATA;\n").faults, testing::SizeIs(1));
}

} // namespace
} // namespace tarnwick::test
