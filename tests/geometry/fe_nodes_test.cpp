// Nodes of a finite element file, and the box around them.

#include "geometry/fe_model.h"
#include "support/table_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::int32_t> NodeIds(const FeModel& run) {
    std::vector<std::int32_t> ids;
    for (const FeNode& node : run.reader->nodes) { ids.push_back(node.id); }
    return ids;
}

TEST(FeNodes, AreReadInTheOrderOfTheTable) {
    FeText text;
    std::vector<int> ids;
    for (int i = 0; i < 40; ++i) { ids.push_back(text.Node(i, 0, 0)); }
    const std::vector<int> expected = TableOrder(ids, text.EntityCount());
    const FeModel run(text.Text());
    EXPECT_EQ(NodeIds(run), expected);
    EXPECT_NE(expected, ids);
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(run.Node(ids[i])->x, static_cast<double>(i));
        EXPECT_EQ(*run.reader->nodeMap.Find(expected[i]), static_cast<std::int32_t>(i));
    }
}

TEST(FeNodes, StartWithoutAValue) {
    FeText text;
    const int id = text.Node(1.5, -2.5, 3);
    const FeModel run(text.Text());
    const FeNode& node = *run.Node(id);
    EXPECT_EQ(node.x, 1.5);
    EXPECT_EQ(node.y, -2.5);
    EXPECT_EQ(node.z, 3);
    EXPECT_EQ(node.value, -1.0);
    EXPECT_EQ(node.used, 0);
}

TEST(FeNodes, ThatNoElementNamesAreInTheMeshAndBlack) {
    FeText text;
    text.Node(7, 8, 9);
    text.Quad({1, 2, 3, 4});
    const FeModel run(text.Text());
    const ResultMesh& mesh = *run.reader->resultMesh;
    EXPECT_EQ(mesh.nodeCount, 5);
    bool found = false;
    for (std::int32_t i = 0; i < 5; ++i) {
        if (mesh.vertices[3 * i] != 7) { continue; }
        found = true;
        EXPECT_THAT(std::vector<int>(mesh.colours + 4 * i, mesh.colours + 4 * i + 4),
                    ElementsAre(0, 0, 0, 255));
        EXPECT_EQ(run.reader->nodes[static_cast<std::size_t>(i)].used, 0);
    }
    EXPECT_TRUE(found);
}

TEST(FeNodes, TakeTheFirstPointOfTheirList) {
    FeText text;
    const int a = text.Line("CARTESIAN_POINT('',(1.,2.,3.))");
    const int b = text.Line("CARTESIAN_POINT('',(4.,5.,6.))");
    const int node = text.Line("NODE('',(#" + std::to_string(b) + ",#" + std::to_string(a) + "),#9)");
    EXPECT_EQ(FeModel(text.Text()).Node(node)->x, 4);
}

TEST(FeNodes, MayHaveEmptyAttributesBlanksAndLineFeedsBeforeTheirList) {
    FeText text;
    const std::string point = std::to_string(text.Line("CARTESIAN_POINT(  'a b',  (1.,2.,3.))"));
    const std::string bare = std::to_string(text.Line("CARTESIAN_POINT(,(4.,5.,6.))"));
    const int a = text.Line("NODE(,(#" + point + "),#9)");
    const int b = text.Line("NODE('', \n  (#" + bare + "),#9)");
    const int c = text.Line("NODE(('x,y',(1,2),3), (#" + point + "),#9)");
    const FeModel run(text.Text());
    EXPECT_EQ(run.Node(a)->z, 3);
    EXPECT_EQ(run.Node(b)->z, 6);
    EXPECT_EQ(run.Node(c)->z, 3);
}

TEST(FeNodes, MustHaveTheParenthesisRightBehindTheKeyword) {
    FeText text;
    const std::string point = std::to_string(text.Line("CARTESIAN_POINT('',(1.,2.,3.))"));
    text.Line("NODE ('',(#" + point + "),#9)");
    const FeModel run(text.Text());
    EXPECT_THAT(run.reader->nodes, IsEmpty());
    EXPECT_EQ(run.reader->resultMesh->nodeCount, 0);
}

TEST(FeNodes, EndAtTheFirstOneWithoutAList) {
    // In a table of 16 the lines come in their order.
    FeText text;
    const int a = text.Node(1, 0, 0); // #3
    text.Line("NODE('',#2,#9)");      // #4
    text.Node(9, 0, 0);               // #6
    const int section = text.Section(5);
    for (int i = text.EntityCount(); i < 14; ++i) { text.Line("X()"); }
    const FeModel run(text.Text());
    EXPECT_THAT(NodeIds(run), ElementsAre(a));
    EXPECT_THAT(run.reader->part.box, ElementsAre(1, 1, 0, 0, 0, 0));
    // What comes after them is read all the same.
    EXPECT_EQ(run.reader->sectionValues.size(), 1u);
    EXPECT_NE(run.reader->sectionMap.Find(section), nullptr);
    ASSERT_NE(run.reader->resultMesh, nullptr);
    EXPECT_EQ(run.reader->resultMesh->nodeCount, 1);
    EXPECT_EQ(run.console, "");
}

TEST(FeNodes, ThatNameAMissingPointGiveTheFileUp) {
    FeText text;
    text.Node(1, 2, 3);                             // #3
    const int bad = text.Line("NODE('',(#99),#9)"); // #4
    text.Node(9, 0, 0);
    for (int i = text.EntityCount(); i < 14; ++i) { text.Line("X()"); }
    const FeModel run(text.Text());
    EXPECT_EQ(run.console, "<E> " + run.path + ": given up, #" + std::to_string(bad) +
                               " names a point that isn't there\n");
    EXPECT_EQ(run.reader->resultMesh, nullptr);
    EXPECT_EQ(run.reader->part.triangleSum, 0u);
    // What it has met before stays in the box.
    EXPECT_THAT(run.reader->part.box, ElementsAre(1, 1, 2, 2, 3, 3));
    EXPECT_STREQ(run.reader->part.product->name, "model");
    EXPECT_EQ(run.reader->part.product->hasBox, 0);
}

TEST(FeNodes, WithAnEmptyListGiveTheFileUp) {
    FeText text;
    text.Line("NODE('',(),#9)");
    const FeModel run(text.Text());
    EXPECT_EQ(run.reader->resultMesh, nullptr);
    EXPECT_THAT(run.console, ::testing::StartsWith("<E> "));
}

TEST(FeNodes, ThatRunPastTheEndGiveTheFileUp) {
    for (const std::string line : {"NODE('')", "NODE('',(#2", "NODE('a(b',(#2),#9)"}) {
        FeText text;
        text.Line("CARTESIAN_POINT('',(1.,2.,3.))");
        const int bad = text.Line(line);
        const FeModel run(text.Text());
        EXPECT_EQ(run.console, "<E> " + run.path + ": given up, #" + std::to_string(bad) +
                                   " runs past the end of the file\n")
            << line;
        EXPECT_EQ(run.reader->resultMesh, nullptr);
    }
}

TEST(FeNodes, WithAPointThatRunsPastTheEndGiveTheFileUp) {
    FeText text;
    text.Line("NODE('',(#3),#9)");
    const int bad = text.Line("CARTESIAN_POINT('',(1.,2.)");
    const FeModel run(text.Text());
    EXPECT_EQ(run.console,
              "<E> " + run.path + ": given up, #" + std::to_string(bad) + " runs past the end of the file\n");
    EXPECT_EQ(run.reader->resultMesh, nullptr);
    EXPECT_THAT(run.reader->part.box, ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST(FeNodes, SpanABoxInF32) {
    FeText text;
    text.Node(0.1, 5, -3);
    text.Node(16777217, -5, -3.5);
    text.Node(-0.1, 5.5, -2.5);
    const FeModel run(text.Text());
    EXPECT_THAT(run.reader->part.box, ElementsAre(-0.1f, 16777216.0f, -5, 5.5f, -3.5f, -2.5f));
}

TEST(FeNodes, StartTheirBoxAtTheFirstOfThem) {
    FeText text;
    text.Node(5, 6, -7);
    EXPECT_THAT(FeModel(text.Text()).reader->part.box, ElementsAre(5, 5, 6, 6, -7, -7));
}

TEST(FeModelProduct, IsNamedByTheFirstStringOfTheLastProduct) {
    FeText text;
    text.Line("PRODUCT('other','name',$,$)");
    text.Node(0, 0, 0);
    const FeModel run(text.Text());
    const ProductNode& product = *run.reader->part.product;
    EXPECT_STREQ(product.name, "other");
    EXPECT_EQ(product.isRoot, 1);
    EXPECT_EQ(product.drawList, nullptr);
}

TEST(FeModelProduct, MissingGivesTheFileUp) {
    const FeModel run(P21Text({"#1=CARTESIAN_POINT('',(1.,2.,3.));", "#2=NODE('',(#1),#9);"}, kAnalysis));
    EXPECT_EQ(run.console, "<E> " + run.path + ": given up, it has no PRODUCT\n");
    EXPECT_EQ(run.reader->part.product, nullptr);
    EXPECT_EQ(run.reader->resultMesh, nullptr);
}

TEST(FeModelProduct, MayHaveANameOf299Characters) {
    const std::string name(299, 'n');
    const FeModel run(P21Text({"#1=PRODUCT('" + name + "');"}, kAnalysis));
    EXPECT_EQ(run.reader->part.product->name, name);
}

TEST(FeModelDeathTest, ANameOf300CharactersEndsTheProcess) {
    ExpectEndOfProcess(P21Text({"#1=PRODUCT('" + std::string(300, 'n') + "');"}, kAnalysis));
}

} // namespace
} // namespace tarnwick::test
