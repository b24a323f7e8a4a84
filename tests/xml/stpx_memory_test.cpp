// A document, or its boxes, for which memory ends.

#include "support/address_space.h"
#include "support/formats.h"
#include "support/helpers_first.h"
#include "support/sanitized.h"
#include "xml/stpx_boxes.h"
#include "xml/stpx_driver.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick {
namespace {

using namespace test;

constexpr std::size_t kChunk = std::size_t{64} << 10; // the first of an arena

class StpxMemory : public testing::Test {
protected:
    void SetUp() override {
        if (kSanitized) { GTEST_SKIP() << "a sanitizer takes memory of its own"; }
    }
};

// A document that is read into tables whose arena has so many bytes left, while the process gets no more, or
// so many.
struct TightRead {
    TightRead(const std::string& text, std::size_t bytes, std::size_t more = 0, Helpers* helpers = nullptr) {
        document.helpers = helpers;
        document.pieceBytes = 100;
        document.text = block.Get(text.size());
        text.copy(document.text, text.size());
        document.size = text.size();
        tables.arena.Allocate(kChunk - bytes);
        const AddressSpaceLimit limit(more);
        problem = ReadStpxDocument(document, 0, tables.assemblies, tables.parts, tables.arena);
    }
    Tables tables;
    TextBlock block;
    StpxDocument document;
    const char* problem;
};

TEST_F(StpxMemory, EndsADocumentWhichThenLeavesNothing) {
    const std::string parts = Part("a", Use("x") + Assigned("f"));
    const std::string others = Part("b", Assigned("g"));
    const std::string partFile = File("f", "a.stp");
    const std::string document = File("g", "b.stpx");
    // The files right after their parts, and ahead of them.
    for (const std::string& text :
         {Document(parts + partFile + others + document), Document(partFile + document + parts + others)}) {
        std::size_t bytes = 0;
        for (;; bytes += 8) {
            ASSERT_LT(bytes, kChunk);
            TightRead read(text, bytes);
            if (read.problem == nullptr) {
                EXPECT_EQ(read.document.products.size(), 2u);
                EXPECT_EQ(read.tables.parts.Count(), 1);
                EXPECT_EQ(read.tables.assemblies.Count(), 1);
                break;
            }
            ASSERT_STREQ(read.problem, "no memory") << bytes;
            ASSERT_TRUE(read.document.products.empty()) << bytes;
            ASSERT_EQ(read.document.root, nullptr) << bytes;
            ASSERT_EQ(read.tables.parts.Count(), 0) << bytes;
            ASSERT_EQ(read.tables.assemblies.Count(), 0) << bytes;
        }
        EXPECT_GT(bytes, 2 * sizeof(ProductNode)) << "else nothing was tight";
    }
}

// Memory that a helper lacks is no loss: the document reads what isn't there by itself.
TEST_F(StpxMemory, EndsADocumentWithHelpersOrLeavesNothingOut) {
    std::string view;
    for (int i = 0; i < 40; ++i) {
        view += "<Occurrence uid=\"o\" xsi:type=\"n0:O\"></Occurrence>"
                "<ViewOccurrenceRelationship uid=\"u\" xsi:type=\"n0:U\"><Related uidRef=\"o\"/><Placement>"
                "<RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix><TranslationVector>1 2 3"
                "</TranslationVector></Placement></ViewOccurrenceRelationship>";
    }
    const std::string text = Document(Part("a", view));
    HelpersFirst helpers;
    int ended = 0;
    int whole = 0;
    for (std::size_t bytes = 0; bytes < 16 * kChunk; bytes += kChunk / 4) {
        const TightRead read(text, kChunk / 2, bytes, &helpers);
        if (read.problem == nullptr) {
            ASSERT_EQ(read.document.products.size(), 1u) << bytes;
            ASSERT_EQ(read.document.products[0]->occurrenceCount, 40) << bytes;
            ++whole;
        } else {
            ASSERT_STREQ(read.problem, "no memory") << bytes;
            ASSERT_TRUE(read.document.products.empty()) << bytes;
            ++ended;
        }
    }
    EXPECT_GT(ended, 0);
    EXPECT_GT(whole, 0);
}

TEST_F(StpxMemory, EndsADocumentAtItsFirstUse) {
    const TightRead read(Document(Part("a", UsedAs("x"))), kChunk / 2);
    EXPECT_STREQ(read.problem, "no memory") << "uids have an arena of their own";
    EXPECT_TRUE(read.document.products.empty());
}

// The boxes of a root with one child, which has a box.
struct TightBoxes {
    explicit TightBoxes(bool hasMain) : session(loaded) {
        session.root = read.document.root;
        if (hasMain) { loaded.scene->Main().Allocate(1); }
        const AddressSpaceLimit limit(0);
        BuildBoxList(session, "a\n.stpx");
    }
    Tables tables;
    ReadDocument read{
        tables,
        Document(Part("top", Use("o")) +
                 Part("leaf", UsedAs("o") + "<ShapeDependentProperty xsi:type=\"n0:BoundingBox\">"
                                            "<PointMin uidRef=\"1\"/><PointMax uidRef=\"2\"/>"
                                            "</ShapeDependentProperty>") +
                 "<RepresentationContext><RepresentationItem uid=\"1\"><C>0 0 0</C>"
                 "</RepresentationItem><RepresentationItem uid=\"2\"><C>1 1 1</C>"
                 "</RepresentationItem></RepresentationContext>"),
        1};
    LoadedScene loaded = NewScene();
    StpxSession session;
    ConsoleText console;
};

TEST_F(StpxMemory, EndsTheListOfTheBoxes) {
    const TightBoxes boxes(false);
    EXPECT_EQ(boxes.console.Text(), "<E> a?.stpx: given up, no memory\n");
    EXPECT_EQ(boxes.loaded.boxList, nullptr);
    ASSERT_EQ(boxes.loaded.unreadFiles.size(), 1u);
    EXPECT_STREQ(boxes.loaded.unreadFiles[0].reason, "needs more memory than there is");
}

TEST_F(StpxMemory, EndsABox) {
    const TightBoxes boxes(true);
    EXPECT_EQ(boxes.console.Text(), "<E> a?.stpx: no memory for all of its boxes\n");
    ASSERT_NE(boxes.loaded.boxList, nullptr);
    EXPECT_EQ(boxes.loaded.boxList->count, 0);
}

} // namespace
} // namespace tarnwick
