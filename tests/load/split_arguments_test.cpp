#include "load/arguments.h"
#include "load/load_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SplitArguments, KeepsBlanksInTheFoldersOfAnUnquotedPath) {
    EXPECT_THAT(SplitArguments("C:\\My Parts\\a.stp"), ElementsAre("C:\\My Parts\\a.stp"));
    EXPECT_THAT(SplitArguments("/my parts/a b.stp Gear"), ElementsAre("/my parts/a b.stp", "Gear"));
}

TEST(SplitArguments, CutsAPathAtABlankBehindItsFirstPoint) {
    EXPECT_THAT(SplitArguments("/v1.2 final/a.stp"), ElementsAre("/v1.2", "final/a.stp"));
}

TEST(SplitArguments, DoesNotLookFurtherInAPathThatStartsWithAPoint) {
    EXPECT_THAT(SplitArguments("./my parts/a.stp"), ElementsAre("./my", "parts/a.stp"));
    EXPECT_THAT(SplitArguments(". x"), ElementsAre(".", "x"));
}

TEST(SplitArguments, TakesWhatStandsInQuotes) {
    EXPECT_THAT(SplitArguments("\"/v1.2 final/a.stp\" Gear"), ElementsAre("/v1.2 final/a.stp", "Gear"));
    EXPECT_THAT(SplitArguments("\"a.stp\" \"Big Gear\""), ElementsAre("a.stp", "Big Gear"));
    EXPECT_THAT(SplitArguments("a.stp \"Big Gear\""), ElementsAre("a.stp", "Big Gear"));
    EXPECT_THAT(SplitArguments("\"\" \"\""), ElementsAre("", ""));
}

TEST(SplitArguments, StepsTwoCharactersPastAQuotedToken) {
    EXPECT_THAT(SplitArguments("\"a.stp\"xGear"), ElementsAre("a.stp", "Gear")) << "the second is lost";
    EXPECT_THAT(SplitArguments("\"a.stp\"    Gear"), ElementsAre("a.stp", "Gear"));
}

TEST(SplitArguments, EndsAQuotedTokenAtTheEnd) {
    EXPECT_THAT(SplitArguments("\"a b.stp"), ElementsAre("a b.stp"));
    EXPECT_THAT(SplitArguments("a.stp \""), ElementsAre("a.stp", ""));
}

TEST(SplitArguments, SkipsBlanksBehindAToken) {
    EXPECT_THAT(SplitArguments("a.stp   Gear   "), ElementsAre("a.stp", "Gear"));
    EXPECT_THAT(SplitArguments("a.stp\tGear"), ElementsAre("a.stp\tGear")) << "blanks only";
}

TEST(SplitArguments, DoesNotSkipBlanksAheadOfTheFirst) {
    EXPECT_THAT(SplitArguments("  a.stp Gear"), ElementsAre("  a.stp", "Gear"));
}

TEST(SplitArguments, TakesAllOfATextWithoutPoint) {
    EXPECT_THAT(SplitArguments("my part and more"), ElementsAre("my part and more"));
}

TEST(SplitArguments, CutsLaterTokensAtBlanksOnly) {
    EXPECT_THAT(SplitArguments("a.stp b c.d e"), ElementsAre("a.stp", "b", "c.d", "e"));
    EXPECT_THAT(SplitArguments("a.stp Ge\"ar x"), ElementsAre("a.stp", "Ge\"ar", "x"));
}

TEST(SplitArguments, FindsNothingInAnEmptyText) {
    EXPECT_THAT(SplitArguments(""), IsEmpty());
}

TEST(SplitArguments, StopsAtTenTokens) {
    EXPECT_EQ(SplitArguments("a.stp 2 3 4 5 6 7 8 9 10 11 12").size(), kMostArguments);
}

TEST(SplitArguments, GivesUtf8) {
    EXPECT_THAT(SplitArguments("/\u00E9t\u00E9/a.stp \u20AC"),
                ElementsAre("/\xC3\xA9t\xC3\xA9/a.stp", "\xE2\x82\xAC"));
}

TEST(JoinArguments, IsUndoneBySplitting) {
    const std::vector<std::string> arguments{"/v1.2 final/a b.stp", "Big Gear", "\xE9 no UTF-8"};
    EXPECT_EQ(SplitArguments(JoinArguments(arguments)), arguments);
    EXPECT_EQ(JoinArguments({"a b.stp", "G"}), "\"a b.stp\" \"G\"");
}

} // namespace
} // namespace tarnwick::test
