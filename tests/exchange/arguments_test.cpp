#include "exchange/arguments.h"

#include "exchange/padded.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;

std::vector<std::string> ArgumentsOf(std::string_view list) {
    const Padded text(list);
    ArgumentCursor cursor(text.Text());
    std::vector<std::string> all;
    for (std::string_view argument; cursor.Next(&argument);) { all.emplace_back(argument); }
    return all;
}

TEST(Arguments, AreSplitAtTheirOwnCommasAlone) {
    EXPECT_THAT(ArgumentsOf("'a,b',(1,(2,3)),#4,$,*,.T.,A(1,2),\"0,1\""),
                ElementsAre("'a,b'", "(1,(2,3))", "#4", "$", "*", ".T.", "A(1,2)", "\"0,1\""));
}

TEST(Arguments, LoseBlanksAndCommentsAround) {
    EXPECT_THAT(ArgumentsOf(" 1 , /* x,y */ 'b' /* ( */\n,( 2 )"), ElementsAre("1", "'b'", "( 2 )"));
    EXPECT_THAT(ArgumentsOf("LENGTH_MEASURE ( 2. ) , 3"), ElementsAre("LENGTH_MEASURE ( 2. )", "3"));
}

TEST(Arguments, AnEmptyListHasNoneAndAnEmptyPlaceIsOne) {
    EXPECT_THAT(ArgumentsOf(""), ElementsAre());
    EXPECT_THAT(ArgumentsOf(" /* c */ "), ElementsAre());
    EXPECT_THAT(ArgumentsOf("1,,2,"), ElementsAre("1", "", "2", ""));
}

TEST(Arguments, OfATextThatIsCutStayInside) {
    const std::string_view text = "'a''b',(1,(2,3)),A('x',\"0\"),/* c */#4";
    for (std::size_t length = 0; length <= text.size(); ++length) { ArgumentsOf(text.substr(0, length)); }
}

TEST(Records, OfSimpleAndComplexInstances) {
    const Padded simple("A_B ('x',1)");
    EXPECT_EQ(RecordOf(simple.Text()).keyword, "A_B");
    EXPECT_EQ(RecordOf(simple.Text()).arguments, "'x',1");
    const Padded complex("(A(1)\n B()C('(',(2)) )");
    const std::vector<Record> records = RecordsOf(complex.Text());
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[1].keyword, "B");
    EXPECT_EQ(records[1].arguments, "");
    EXPECT_EQ(FindRecord(complex.Text(), "C").arguments, "'(',(2)");
    EXPECT_FALSE(FindRecord(complex.Text(), "D").IsFound());
    EXPECT_EQ(FindRecord(simple.Text(), "A_B").arguments, "'x',1");
}

TEST(Values, AreReadOrAbsent) {
    EXPECT_EQ(ReferenceOf("#12"), 12u);
    EXPECT_EQ(ReferenceOf("#12x"), 0u);
    EXPECT_EQ(ReferenceOf("$"), 0u);
    EXPECT_EQ(RealOf("-1.5E-3"), -1.5e-3);
    EXPECT_EQ(RealOf("+2."), 2.0);
    EXPECT_EQ(RealOf(Padded("LENGTH_MEASURE(25.4)").Text()), 25.4);
    EXPECT_EQ(RealOf(Padded("POSITIVE_LENGTH_MEASURE( 3 )").Text()), 3.0);
    EXPECT_EQ(RealOf("$"), std::nullopt);
    EXPECT_EQ(RealOf("1.E999"), std::nullopt);
    EXPECT_EQ(TripleOf(Padded("(1.,-2.E1, 3)").Text()), (std::array{1.0, -20.0, 3.0}));
    EXPECT_EQ(TripleOf(Padded("(1.,2.)").Text()), (std::array{1.0, 2.0, 0.0}));
    EXPECT_EQ(TripleOf(Padded("(1.)").Text()), std::nullopt);
    EXPECT_EQ(TripleOf(Padded("(1.,$,2.)").Text()), std::nullopt);
    EXPECT_EQ(EnumerationOf(".MILLI."), "MILLI");
    EXPECT_EQ(EnumerationOf("$"), "");
}

TEST(Values, OfAllExportersAreReadAndOthersNotInPart) {
    for (const std::string_view text :
         {"1500.", "1500", "1.5E3", "1.5e+3", "1.5D3", "1.5d+03", "+1.5D3", ".15D4"}) {
        EXPECT_EQ(RealOf(text), 1500.0) << text;
    }
    for (const std::string_view text : {"", "+", "-", "1.5x", "1.5.2", "1.D", "1.E5.", "D3", "inf", "-inf",
                                        "nan", "-nan", "1.D999", "0x10"}) {
        EXPECT_EQ(RealOf(text), std::nullopt) << text;
    }
}

TEST(Records, AreFoundByKeywordsInSmallLettersToo) {
    EXPECT_EQ(FindRecord(Padded("(a(1)b_c(2))").Text(), "B_C").arguments, "2");
    EXPECT_FALSE(FindRecord(Padded("(a(1)b_c(2))").Text(), "B").IsFound());
}

TEST(References, AreFoundAtAnyDepthButNotInStringsAndComments) {
    const Padded text("A('#1',(#2,(#3)),B(#4)/* #5 */,\"#6\",#7)");
    std::vector<std::uint64_t> references;
    AppendReferences(text.Text(), &references);
    EXPECT_THAT(references, ElementsAre(2, 3, 4, 7));
}

} // namespace
} // namespace tarnwick::test
