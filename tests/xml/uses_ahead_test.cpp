// Uses that are read ahead: which ones, and what of them.

#include "xml/uses_ahead.h"

#include "platform/text_block.h"
#include "support/formats.h"
#include "xml/stpx_scan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tarnwick {
namespace {

using namespace test;

constexpr std::size_t kPiece = 50; // less than an element
constexpr const char* kAfterName = " >";

std::string Occurrence(const std::string& uid) {
    return "<Occurrence uid=\"" + uid + "\" xsi:type=\"n0:SingleOccurrence\"><Id id=\"1\"/></Occurrence>\n";
}

std::string Relation(const std::string& uid, const std::string& rotation = "1 0 0 0 1 0 0 0 1",
                     const std::string& translation = "1.5 -2 3") {
    return "<ViewOccurrenceRelationship uid=\"u\" xsi:type=\"n0:Usage\"><Related uidRef=\"" + uid +
           "\"/><Placement><RotationMatrix>" + rotation + "</RotationMatrix><TranslationVector>" +
           translation + "</TranslationVector></Placement></ViewOccurrenceRelationship>\n";
}

// A text, and what was read of it ahead.
class Text {
public:
    explicit Text(const std::string& text, std::size_t pieceBytes = kPiece) : text_(block_.Get(text.size())) {
        text.copy(text_, text.size());
        end_ = text_ + text.size();
        PrepareText(text_, text.size());
        ahead_.emplace(text_, end_, pieceBytes);
    }
    UsesAhead& Ahead() { return *ahead_; }
    const char* Start() const { return text_; }

    // A line for each tag that has a use: what it is, and the tag after it.
    std::string Taken() {
        std::string lines;
        for (std::string_view left(text_, end_); left.find('<') != left.npos; left.remove_prefix(1)) {
            left.remove_prefix(left.find('<'));
            const UsesAhead::Use* const use = ahead_->Take(left.data());
            if (use == nullptr) { continue; }
            lines += use->occurrence == nullptr ? "use " + std::string(use->uid, use->length)
                                                : "of " + std::string(use->occurrence->relatedUid);
            const char* const next = ahead_->NextTag(*use);
            lines += " then ";
            lines += next < end_
                         ? std::string(next, std::find_first_of(next, end_, kAfterName, kAfterName + 2))
                         : "the end";
            lines += '\n';
        }
        return lines;
    }

private:
    TextBlock block_;
    char* text_;
    const char* end_;
    std::optional<UsesAhead> ahead_;
};

TEST(UsesAhead, HasEachUseThatIsWrittenAsUsual) {
    Text text(Document(Part("p", Occurrence("a") + Relation("b") + Occurrence("c") + Relation("d"))));
    text.Ahead().ReadPieces();
    EXPECT_EQ(text.Taken(), "use a then <ViewOccurrenceRelationship\n"
                            "of b then <Occurrence\n"
                            "use c then <ViewOccurrenceRelationship\n"
                            "of d then </PartView\n");
}

TEST(UsesAhead, HasTheNumbersAndNoChild) {
    Text text(Relation("b", "1 2 3 4 5 6 7 8 9.5", "-1 0.1 1e3"), 1000);
    text.Ahead().ReadPieces();
    const UsesAhead::Use* const use = text.Ahead().Take(text.Start());
    ASSERT_NE(use, nullptr);
    EXPECT_EQ(std::vector<double>(use->occurrence->rotation, use->occurrence->rotation + 9),
              (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9.5}));
    EXPECT_EQ(std::vector<double>(use->occurrence->translation, use->occurrence->translation + 3),
              (std::vector<double>{-1, 0.1, 1000}));
    EXPECT_EQ(use->occurrence->child, nullptr);
}

TEST(UsesAhead, LeavesOutWhatDependsOnThePlacementBefore) {
    Text text(Relation("few", "1 0 0") + Relation("word", "1 0 0 0 1 0 0 0 1", "x 1 2") + Relation("whole"));
    text.Ahead().ReadPieces();
    EXPECT_EQ(text.Taken(), "of whole then the end\n");
}

TEST(UsesAhead, LeavesOutWhatIsCutOff) {
    const std::string first = Relation("a");
    const std::string whole = first + Relation("b");
    for (std::size_t size = 1; size < whole.size() - 1; ++size) {
        Text text(whole.substr(0, size));
        text.Ahead().ReadPieces();
        const std::string taken = text.Taken();
        EXPECT_EQ(taken.substr(0, 9), size < first.size() - 1 ? "" : "of a then") << size;
        EXPECT_EQ(taken.find("of b"), std::string::npos) << size;
    }
}

TEST(UsesAhead, LeavesPiecesThatNobodyHasBegunToTheDocument) {
    Text text(Occurrence("a") + Occurrence("b"));
    EXPECT_EQ(text.Taken(), "");
    text.Ahead().ReadPieces(); // finds none left
    EXPECT_EQ(text.Taken(), "");
}

TEST(UsesAhead, StopsOnDemand) {
    Text text(Occurrence("a") + Occurrence("b"));
    text.Ahead().Stop();
    text.Ahead().ReadPieces();
    EXPECT_EQ(text.Taken(), "");
}

TEST(UsesAhead, GivesItsOccurrencesAway) {
    Arena arena;
    const tarnwick::Occurrence* occurrence = nullptr;
    {
        Text text(Relation("b"), 1000);
        text.Ahead().ReadPieces();
        occurrence = text.Ahead().Take(text.Start())->occurrence;
        ASSERT_TRUE(text.Ahead().HandOver(&arena));
    }
    EXPECT_STREQ(occurrence->relatedUid, "b");
    EXPECT_EQ(occurrence->translation[1], -2);
}

TEST(UsesAhead, TakesTurnsWithThreads) {
    constexpr int kUses = 20000;
    std::string content;
    for (int i = 0; i < kUses; ++i) {
        content += Occurrence("o" + std::to_string(i)) + Relation("r" + std::to_string(i));
    }
    // What the threads read before the document came to it: on a busy machine they may begin too late.
    int taken = 0;
    for (int turn = 0; turn < 1000 && taken == 0; ++turn) {
        Text text(content, 3000);
        std::string lines;
        {
            std::vector<std::jthread> threads;
            for (int i = 0; i < 2; ++i) {
                threads.emplace_back([&] { text.Ahead().ReadPieces(); });
            }
            lines = text.Taken();
        }
        std::size_t at = 0;
        const auto take = [&](const std::string& line) {
            if (lines.compare(at, line.size(), line) != 0) { return; }
            at += line.size();
            ++taken;
        };
        for (int i = 0; i < kUses; ++i) {
            take("use o" + std::to_string(i) + " then <ViewOccurrenceRelationship\n");
            take("of r" + std::to_string(i) + (i + 1 < kUses ? " then <Occurrence\n" : " then the end\n"));
        }
        ASSERT_EQ(at, lines.size());
    }
    EXPECT_GT(taken, 0);
}

} // namespace
} // namespace tarnwick
