#include "p21/text_walk.h"

#include "p21/model_file.h"

#include "platform/fail_fast.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace tarnwick::test {
namespace {

constexpr std::int32_t kLeast = INT32_MIN;
constexpr std::int32_t kMost = INT32_MAX;

// A walk over a text of its own.
struct Walked {
    explicit Walked(std::string content)
        : text(std::move(content)), walk{text.data(), text.data() + text.size()} {}
    std::ptrdiff_t At() const { return walk.at - text.data(); }

    std::string text;
    TextWalk walk;
};

TEST(StringToInteger, ReadsWhiteSpaceSignAndDigits) {
    EXPECT_EQ(StringToInteger("12"), 12);
    EXPECT_EQ(StringToInteger("-12"), -12);
    EXPECT_EQ(StringToInteger("+12"), 12);
    EXPECT_EQ(StringToInteger(" \t\n\v\f\r12"), 12);
    EXPECT_EQ(StringToInteger("12,13"), 12);
    EXPECT_EQ(StringToInteger("007"), 7);
}

TEST(StringToInteger, GivesZeroWithoutDigits) {
    EXPECT_EQ(StringToInteger(""), 0);
    EXPECT_EQ(StringToInteger("#5"), 0);
    EXPECT_EQ(StringToInteger("- 5"), 0);
    EXPECT_EQ(StringToInteger("+-5"), 0);
    EXPECT_EQ(StringToInteger("(4"), 0);
}

TEST(StringToInteger, CutsToWhat32BitsHold) {
    EXPECT_EQ(StringToInteger("2147483647"), kMost);
    EXPECT_EQ(StringToInteger("2147483648"), kMost);
    EXPECT_EQ(StringToInteger("-2147483648"), kLeast);
    EXPECT_EQ(StringToInteger("-2147483649"), kLeast);
    EXPECT_EQ(StringToInteger(std::string(400, '9').c_str()), kMost);
}

TEST(TextWalk, StaysOnACharacterThatIsTheTarget) {
    Walked walked("(a,b)");
    walked.walk.GoTo('(');
    EXPECT_EQ(walked.At(), 0);
    walked.walk.GoTo(',');
    walked.walk.GoTo(',');
    EXPECT_EQ(walked.At(), 2);
    EXPECT_FALSE(walked.walk.overrun);
}

TEST(TextWalk, StopsAtTheEndOfTheTextAndSaysSo) {
    Walked walked("abc");
    walked.walk.GoTo('(');
    EXPECT_TRUE(walked.walk.overrun);
    EXPECT_EQ(walked.At(), 3);
    walked.walk.Step();
    walked.walk.GoTo('a');
    EXPECT_EQ(walked.At(), 3);
}

TEST(TextWalk, GoesPastANulThatStandsInTheText) {
    Walked walked(std::string("a\0(b", 4));
    walked.walk.GoTo('(');
    EXPECT_EQ(walked.At(), 2);
}

TEST(TextWalk, SkipsWhatStandsInParenthesesOnTheWayToAComma) {
    Walked walked("(1,(2,3)),next");
    walked.walk.GoToArgumentComma();
    EXPECT_EQ(walked.At(), 9);
    Walked here(",x");
    here.walk.GoToArgumentComma();
    EXPECT_EQ(here.At(), 0);
    Walked none("(1,2)");
    none.walk.GoToArgumentComma();
    EXPECT_TRUE(none.walk.overrun);
}

TEST(TextWalk, LeadsOutOfAListInHandToItsComma) {
    Walked walked("12),#5)");
    walked.walk.GoToArgumentComma();
    EXPECT_EQ(walked.At(), 3);
    Walked further("12);\n#3=X('',4);");
    further.walk.GoToArgumentComma();
    EXPECT_EQ(further.At(), 12) << "the first comma of the next entity";
}

TEST(TextWalk, EntersTheNextParenthesis) {
    Walked walked("X(a(b");
    walked.walk.Enter();
    EXPECT_EQ(walked.At(), 2);
    walked.walk.Enter();
    EXPECT_EQ(walked.At(), 4);
    walked.walk.Enter();
    EXPECT_TRUE(walked.walk.overrun);
}

TEST(TextWalk, PassesCommasWhereverTheyStand) {
    Walked walked("X('a,b',(1,2))");
    walked.walk.PassCommas(3);
    EXPECT_EQ(walked.At(), 11);
    walked.walk.PassCommas(1);
    EXPECT_TRUE(walked.walk.overrun);
}

TEST(TextWalk, SkipsArgumentsWithTheirLists) {
    Walked walked(" \n'a',((1,2),3) , 4)");
    walked.walk.SkipArguments(2);
    EXPECT_EQ(walked.walk.Ahead(3), " 4)");
    EXPECT_FALSE(walked.walk.overrun);
}

TEST(TextWalk, FindsTheFirstOfSeveralCharacters) {
    const Walked walked("ab)c,");
    EXPECT_EQ((walked.walk.Next<',', ')'>(walked.walk.at)), walked.walk.at + 2);
    EXPECT_EQ((walked.walk.Next<'(', '#'>(walked.walk.at)), walked.walk.end);
}

TEST(TextWalk, SeesNoFurtherAheadThanTheTextGoes) {
    Walked walked("abc");
    EXPECT_EQ(walked.walk.Ahead(2), "ab");
    EXPECT_EQ(walked.walk.Ahead(9), "abc");
    walked.walk.GoTo(',');
    EXPECT_EQ(walked.walk.Ahead(9), "");
}

TEST(ReadFirstString, TakesWhatStandsBetweenTheFirstQuotesAfterAParenthesis) {
    Walked walked("#1='no'(5,'yes','later')");
    EXPECT_EQ(ReadFirstString(&walked.walk, 300), "yes");
    EXPECT_EQ(walked.At(), 14);
}

TEST(ReadReals, TakesOneAfterEachComma) {
    Walked walked("1.5, -2. ),3)");
    double values[3];
    ReadReals(&walked.walk, values, 3);
    EXPECT_EQ(values[0], 1.5);
    EXPECT_EQ(values[1], -2.0);
    EXPECT_EQ(values[2], 3.0);
    EXPECT_EQ(walked.At(), 11);
    ReadReals(&walked.walk, values, 2);
    EXPECT_TRUE(walked.walk.overrun);
}

TEST(ReadReference, GoesToTheNumberSignAndTakesTheDigits) {
    Walked walked("  x#12)");
    EXPECT_EQ(ReadReference(&walked.walk), 12);
    EXPECT_EQ(walked.At(), 6);
    Walked empty("#)");
    EXPECT_EQ(ReadReference(&empty.walk), 0);
}

TEST(ReadDigits, TakesFourteenDigits) {
    Walked walked("00000000000042)");
    EXPECT_EQ(ReadDigits(&walked.walk), 42);
    EXPECT_EQ(walked.At(), 14);
    Walked large("99999999999999)");
    EXPECT_EQ(ReadDigits(&large.walk), kMost);
}

TEST(ReadDigitsDeathTest, EndsTheProcessAtFifteenDigits) {
    Walked walked("000000000000042)");
    EXPECT_EXIT(ReadDigits(&walked.walk), testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(ReadQuoted, TakesOneCharacterLessThanItsLimit) {
    Walked walked(std::string(299, 'n') + "'");
    EXPECT_EQ(ReadQuoted(&walked.walk, 300).size(), 299u);
    EXPECT_EQ(walked.At(), 299);
    EXPECT_FALSE(walked.walk.overrun);
}

TEST(ReadQuotedDeathTest, EndsTheProcessAtItsLimit) {
    Walked walked(std::string(300, 'n') + "'");
    EXPECT_EXIT(ReadQuoted(&walked.walk, 300), testing::ExitedWithCode(kFailFastStatus), "^$");
    Walked material(std::string(100, 'n') + "'");
    EXPECT_EXIT(ReadQuoted(&material.walk, 100), testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(ReadQuoted, UnderstandsNoDoubledQuotes) {
    Walked walked("it''s'");
    EXPECT_EQ(ReadQuoted(&walked.walk, 300), "it");
}

TEST(WalkInLine, EndsWithTheLineOrElseWithTheText) {
    const ModelFile file("ISO-10303-21;\nFILE_SCHEMA(('AP242'));\nDATA;\n#1=X(1);\n#2=X(22);");
    const auto lineOf = [&](std::int32_t id) {
        const TextWalk walk = file.model->WalkInLine(file.Find(id));
        return std::string(walk.at, walk.end);
    };
    EXPECT_EQ(lineOf(1), "#1=X(1);");
    EXPECT_EQ(lineOf(2), "#2=X(22);");
}

} // namespace
} // namespace tarnwick::test
