#include "p21/far_places.h"
#include "p21/text_walk.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

// A text of many blocks with few marks in it, so that most walks come far and many past the end.
std::string SparseText(std::mt19937& random, std::size_t length, int marks) {
    std::string text(length, random() % 3 == 0 ? 'x' : ' ');
    for (int i = 0; i < marks; ++i) { text[random() % length] = "(((),#'\nx"[random() % 9]; }
    return text;
}

// A walk by a plain scan and one with the places, from the same character.
struct Pair {
    Pair(const std::string& text, FarPlaces* far, std::size_t from)
        : plain{text.data() + from, text.data() + text.size()}, quick{text.data() + from,
                                                                      text.data() + text.size(), false, far} {
    }
    bool AreEqual() const { return plain.at == quick.at && plain.overrun == quick.overrun; }

    TextWalk plain;
    TextWalk quick;
};

TEST(FarPlaces, LeadWalksToWhereAPlainScanDoes) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        const std::size_t length = 1 + random() % (round % 2 == 0 ? 300000 : 9000);
        std::string text = SparseText(random, length, static_cast<int>(random() % 60));
        FarPlaces far(text.data(), text.data() + text.size());
        for (int i = 0; i < 100; ++i) {
            const std::size_t from = random() % (length + 1);
            for (const char c : {'(', ')', ',', '#', '\''}) {
                Pair walks(text, &far, from);
                walks.plain.GoTo(c);
                walks.quick.GoTo(c);
                ASSERT_TRUE(walks.AreEqual()) << "round " << round << " from " << from << " to " << c;
            }
            Pair walks(text, &far, from);
            walks.plain.GoToArgumentComma();
            walks.quick.GoToArgumentComma();
            ASSERT_TRUE(walks.AreEqual()) << "round " << round << " from " << from;
            std::vector<std::int32_t> plainIds;
            std::vector<std::int32_t> quickIds;
            for (const bool lineFeeds : {false, true}) {
                Pair blanks(text, &far, from);
                lineFeeds ? blanks.plain.SkipBlanksAndLineFeeds() : blanks.plain.SkipBlanks();
                lineFeeds ? blanks.quick.SkipBlanksAndLineFeeds() : blanks.quick.SkipBlanks();
                ASSERT_TRUE(blanks.AreEqual()) << "round " << round << " from " << from;
            }
            const Pair starts(text, &far, from);
            ASSERT_EQ((starts.plain.Next<'(', '#', '\0'>(starts.plain.at)),
                      (starts.quick.Next<'(', '#', '\0'>(starts.quick.at)));
            Pair lists(text, &far, from);
            ParseIdList(&lists.plain, &plainIds);
            ParseIdList(&lists.quick, &quickIds);
            ASSERT_TRUE(lists.AreEqual() && plainIds == quickIds) << "round " << round << " from " << from;
            // The readers take out the "#" of a line that breaks off.
            const std::size_t out = text.find('#', from);
            if (i % 10 == 0 && out != std::string::npos) {
                text[out] = '\0';
                far.NoteWritten(&text[out]);
            }
        }
    }
}

TEST(FarPlaces, CountDepthOverBlocks) {
    std::string text(10 * FarPlaces::kNear, ' ');
    text[1] = '(';
    text[5 * FarPlaces::kNear] = ',';     // at depth 1
    text[6 * FarPlaces::kNear - 1] = ')'; // on the last place of a block
    text[9 * FarPlaces::kNear] = ',';
    FarPlaces far(text.data(), text.data() + text.size());
    EXPECT_EQ(far.FindComma(text.data(), 0), &text[9 * FarPlaces::kNear]);
    EXPECT_EQ(far.FindComma(text.data() + 2, 0), &text[5 * FarPlaces::kNear]);
    EXPECT_EQ(far.FindComma(text.data() + 2, 1), &text[9 * FarPlaces::kNear]);
    EXPECT_EQ(far.FindComma(text.data() + 2, 2), nullptr);
    EXPECT_EQ(far.FindComma(text.data() + text.size(), -1), nullptr);
}

TEST(FarPlaces, FindWhatIsWrittenIntoTheText) {
    constexpr std::size_t kNear = FarPlaces::kNear;
    std::string text(10 * kNear, ' ');
    text[1] = '(';
    text[3 * kNear] = ')';
    text[5 * kNear] = ',';
    text[7 * kNear] = ')';
    text[8 * kNear] = ',';
    FarPlaces far(text.data(), text.data() + text.size());
    EXPECT_EQ(far.Find(text.data(), '#'), nullptr);
    EXPECT_EQ(far.FindComma(text.data(), 0), &text[5 * kNear]);
    text[3 * kNear] = '#';
    far.NoteWritten(&text[3 * kNear]);
    EXPECT_EQ(far.Find(text.data(), '#'), &text[3 * kNear]);
    EXPECT_EQ(far.Find(text.data() + 4 * kNear, '#'), nullptr);
    EXPECT_EQ(far.FindComma(text.data(), 0), &text[8 * kNear]);
    text[6 * kNear] = '#';
    far.NoteWritten(&text[6 * kNear]);
    EXPECT_EQ(far.Find(text.data(), '#'), &text[3 * kNear]);
    EXPECT_EQ(far.Find(text.data() + 4 * kNear, '#'), &text[6 * kNear]);
}

TEST(FarPlaces, HaveNothingInAnEmptyText) {
    const char* const nowhere = "";
    EXPECT_EQ(FarPlaces(nowhere, nowhere).Find(nowhere, ','), nullptr);
    EXPECT_EQ(FarPlaces(nowhere, nowhere).FindComma(nowhere, 0), nullptr);
}

} // namespace
} // namespace tarnwick::test
