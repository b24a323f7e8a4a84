#include "text/line_marks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

namespace tarnwick::test {
namespace {

constexpr std::size_t kWord = LineMarks::kWordCharacters;

// A text of lines of up to `longest` characters, with readable ones after it.
struct Text {
    Text(std::mt19937& random, std::size_t size, std::size_t longest) : characters(size, 'x') {
        for (std::size_t i = random() % longest; i < size; i += 1 + random() % longest) {
            characters[i] = random() % 20 == 0 ? '\0' : '\n';
        }
        characters.append(LineMarks::kBlock, '\0');
        length = size;
    }
    const char* Start() const { return characters.data(); }
    const char* End() const { return characters.data() + length; }

    std::string characters;
    std::size_t length;
};

// The marks of a text that is read in stretches of some words, the last of them first.
LineMarks MarksOf(const Text& text, std::size_t stretch) {
    LineMarks marks;
    marks.Make(text.length);
    for (std::size_t from = text.length / stretch * stretch + stretch; from > 0;) {
        from -= stretch;
        marks.Mark(text.Start(), from, std::min(from + stretch, text.length));
    }
    marks.MarkAt(text.length);
    return marks;
}

TEST(LineMarksTest, LeaveNoLineEndOut) {
    std::mt19937 random(1);
    for (const std::size_t longest : {std::size_t{20}, std::size_t{300}, std::size_t{5000}, kWord * 10}) {
        for (int round = 0; round < 200; ++round) {
            const Text text(random, random() % (20 * kWord), longest);
            const LineMarks marks = MarksOf(text, kWord * (1 + random() % 3));
            for (std::size_t i = 0; i <= text.length; ++i) {
                if (text.characters[i] == 'x') { continue; }
                const std::size_t block = i / LineMarks::kBlock;
                ASSERT_EQ(marks.Next(block), block) << i << " of " << text.length;
            }
        }
    }
}

TEST(LineMarksTest, PassOverBlocksWithoutLineEnds) {
    std::string text(4 * kWord + LineMarks::kBlock, 'x');
    text[70] = '\n';
    text[3 * kWord - 1] = '\0';
    LineMarks marks;
    marks.Make(4 * kWord);
    marks.Mark(text.data(), 0, 4 * kWord);
    EXPECT_EQ(marks.Next(0), 1u);
    EXPECT_EQ(marks.Next(1), 1u);
    EXPECT_EQ(marks.Next(2), 3 * LineMarks::kWordBlocks - 1);
    EXPECT_EQ(marks.Next(3 * LineMarks::kWordBlocks), marks.BlockCount()) << "there is no other";
    EXPECT_EQ(marks.Next(marks.BlockCount()), marks.BlockCount());
    EXPECT_EQ(marks.Next(marks.BlockCount() + 1), marks.BlockCount());
    EXPECT_TRUE(marks.AreFew());
}

TEST(LineMarksTest, AreFewWhereLinesAreLongOnly) {
    std::mt19937 random(2);
    EXPECT_FALSE(LineMarks().AreFew()) << "nobody has looked";
    EXPECT_FALSE(MarksOf(Text(random, 50 * kWord, 60), kWord).AreFew());
    EXPECT_FALSE(MarksOf(Text(random, 50 * kWord, 60), 50 * kWord).AreFew());
    EXPECT_TRUE(MarksOf(Text(random, 50 * kWord, 5000), 50 * kWord).AreFew());
}

TEST(LineMarksTest, LeadToTheLineFeedThatASearchFinds) {
    std::mt19937 random(3);
    const LineMarks none;
    for (const std::size_t longest : {std::size_t{20}, std::size_t{300}, std::size_t{5000}, kWord * 10}) {
        for (int round = 0; round < 100; ++round) {
            const Text text(random, 1 + random() % (20 * kWord), longest);
            const LineMarks marks = MarksOf(text, 5 * kWord);
            for (int search = 0; search < 50; ++search) {
                const std::size_t from = random() % (text.length + 1);
                const void* const found = std::memchr(text.Start() + from, '\n', text.length - from);
                const char* const end = found != nullptr ? static_cast<const char*>(found) : text.End();
                ASSERT_EQ(marks.LineEnd(text.Start(), text.Start() + from, text.End()), end);
                ASSERT_EQ(none.LineEnd(text.Start(), text.Start() + from, text.End()), end);
            }
        }
    }
}

} // namespace
} // namespace tarnwick::test
