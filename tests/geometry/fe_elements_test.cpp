// Shell elements, the section values at their corners, and where their reading stops.

#include "geometry/fe_model.h"
#include "support/table_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The numbers of four new nodes.
std::vector<int> FourNodes(FeText& text) {
    std::vector<int> nodes;
    for (int i = 0; i < 4; ++i) { nodes.push_back(text.Node(i, 0, 0)); }
    return nodes;
}

std::vector<int> Sections(FeText& text, const std::vector<double>& values) {
    std::vector<int> sections;
    for (const double value : values) { sections.push_back(text.Section(value)); }
    return sections;
}

// Pads to a table in which lines come in their order.
void KeepOrder(FeText& text) {
    ASSERT_LT(text.EntityCount(), 62);
    while (text.EntityCount() < 62) { text.Line("X()"); }
}

TEST(FeElements, MakeAQuadOfFourNodes) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    text.Element({n[2], n[0], n[3], n[1]}, 9999);
    const FeModel run(text.Text());
    EXPECT_THAT(run.Quads(), ElementsAre(std::array<std::int32_t, 4>{n[2], n[0], n[3], n[1]}));
    const ResultMesh& mesh = *run.reader->resultMesh;
    EXPECT_EQ(mesh.quadCount, 1);
    EXPECT_EQ(mesh.nodeCount, 4);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(mesh.quadIndices[i], static_cast<std::uint32_t>(run.reader->quads[0].nodes[i]));
        EXPECT_EQ(run.reader->nodes[i].used, 1);
    }
    EXPECT_EQ(run.reader->part.triangleTotal, 2);
    EXPECT_EQ(run.reader->part.triangleSum, 2u);
    EXPECT_EQ(run.reader->part.product->hasBox, 1);
    EXPECT_THAT(run.reader->part.product->box, ElementsAre(0, 3, 0, 0, 0, 0));
}

TEST(FeElements, OfOtherShapesAreDropped) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    const int property = text.Property(Sections(text, {5, 5, 5}));
    text.Element({n[0], n[1], n[2]}, property);
    text.Element({n[0], n[1], n[2], n[3], n[0], n[1], n[2], n[3]}, property);
    text.Element({n[0]}, property);
    text.Element({}, property);
    text.Element({9001, 9002, 9003}, property); // nobody looks for these
    const FeModel run(text.Text());
    EXPECT_THAT(run.Quads(), IsEmpty());
    EXPECT_EQ(run.reader->part.triangleSum, 0u);
    EXPECT_EQ(run.reader->part.product->hasBox, 0);
    EXPECT_THAT(run.reader->part.box, ElementsAre(0, 3, 0, 0, 0, 0));
    ASSERT_NE(run.reader->resultMesh, nullptr);
    EXPECT_EQ(run.reader->resultMesh->quadCount, 0);
    EXPECT_EQ(run.reader->resultMesh->nodeCount, 4);
    EXPECT_EQ(run.console, "");
    for (const FeNode& node : run.reader->nodes) { EXPECT_EQ(node.used, 0); }
}

TEST(FeElements, GiveTheirNodesTheValuesOfTheirSectionsInOrder) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    const std::vector<int> s = Sections(text, {1, 2, 3, 4});
    text.Element({n[3], n[1], n[0], n[2]}, text.Property({s[0], s[1], s[2], s[3]}));
    const FeModel run(text.Text());
    EXPECT_EQ(run.Value(n[3]), 1);
    EXPECT_EQ(run.Value(n[1]), 2);
    EXPECT_EQ(run.Value(n[0]), 3);
    EXPECT_EQ(run.Value(n[2]), 4);
    EXPECT_EQ(run.reader->minValue, 1);
    EXPECT_EQ(run.reader->maxValue, 4);
}

TEST(FeElements, LeaveASharedNodeTheValueOfTheLastOfThem) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    std::vector<int> elements;
    std::map<int, double> valueOf;
    for (int i = 1; i <= 9; ++i) {
        const std::vector<int> s(4, text.Section(i));
        const int element = text.Element(n, text.Property(s));
        elements.push_back(element);
        valueOf[element] = i;
    }
    const FeModel run(text.Text());
    EXPECT_EQ(run.Value(n[0]), valueOf[TableOrder(elements, text.EntityCount()).back()]);
    EXPECT_EQ(run.reader->quads.size(), 9u);
    EXPECT_EQ(run.reader->minValue, 1);
    EXPECT_EQ(run.reader->maxValue, 9);
}

TEST(FeElements, FindMinimumAndMaximumByTheStatedRule) {
    struct Case {
        std::array<double, 4> values;
        double low, high;
    };
    const Case cases[] = {
        {{5, 5, 5, 5}, 5, 5},     {{2, 4, 6, 8}, 2, 8},      {{6, 4, 2, 8}, 2, 8},
        {{8, 6, 4, 2}, 2, 8},     {{3, 0, -2, 4}, 3, 4}, // 0 and below never lower it
        {{0, 3, 4, 5}, 0, 5},                            // but begin with it: the maximum was still 0
        {{-5, 3, 4, 5}, 0, 5},                           // so also below 0
        {{-1, -2, -3, -4}, 0, 0}, {{3, 1, 0.5, -1}, 0.5, 3},
    };
    for (const Case& c : cases) {
        FeText text;
        text.Quad(c.values);
        const FeModel run(text.Text());
        EXPECT_EQ(run.reader->minValue, c.low) << ::testing::PrintToString(c.values);
        EXPECT_EQ(run.reader->maxValue, c.high) << ::testing::PrintToString(c.values);
    }
}

TEST(FeElements, WithoutASectionFieldKeepTheirNodesBlack) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    const int uniform = text.Section(5);
    const int other = text.Line("SURFACE_ELEMENT_PROPERTY('1',#" + std::to_string(uniform) + ")");
    const int missing = text.Line("SURFACE_ELEMENT_PROPERTY('1',#9999)");
    const int three = text.Property(Sections(text, {5, 6, 7}));
    const int five = text.Property(Sections(text, {5, 6, 7, 8, 9}));
    for (const int property : {other, missing, three, five, 8888}) { text.Element(n, property); }
    const FeModel run(text.Text());
    EXPECT_EQ(run.reader->quads.size(), 5u); // and the reading goes on
    for (const int node : n) {
        EXPECT_EQ(run.Value(node), -1);
        EXPECT_THAT(run.Colour(node), ElementsAre(0, 0, 0));
    }
    EXPECT_EQ(run.reader->minValue, -1);
    EXPECT_EQ(run.reader->maxValue, 0);
}

TEST(FeElements, EndAtAMissingNodeWithWhatWasReadBefore) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    text.Element(n, 9999);
    text.Element({n[0], n[1], 9999, n[3]}, 9999);
    text.Element(n, 9999);
    KeepOrder(text);
    const FeModel run(text.Text());
    EXPECT_EQ(run.reader->quads.size(), 1u);
    EXPECT_EQ(run.reader->part.triangleSum, 2u);
    EXPECT_EQ(run.console, "");
}

TEST(FeElements, EndAtAMissingSectionWithTheQuadAndTheCornersBefore) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    const std::vector<int> s = Sections(text, {1, 2, 3});
    text.Element(n, text.Property({s[0], s[1], 9999, s[2]}));
    text.Element(n, 9999);
    KeepOrder(text);
    const FeModel run(text.Text());
    EXPECT_EQ(run.reader->quads.size(), 1u);
    EXPECT_EQ(run.Value(n[0]), 1);
    EXPECT_EQ(run.Value(n[1]), 2);
    EXPECT_EQ(run.Value(n[2]), -1);
    EXPECT_EQ(run.Value(n[3]), -1);
    EXPECT_EQ(run.reader->maxValue, 2);
    EXPECT_EQ(run.console, "");
}

TEST(FeElements, EndAtOneWithoutAListOfNodes) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    text.Element(n, 9999);
    text.Line("SURFACE_3D_ELEMENT_REPRESENTATION('e',(#9003),#9001,$,#9002,#9004,#9999,#9005)");
    text.Element(n, 9999);
    KeepOrder(text);
    EXPECT_EQ(FeModel(text.Text()).reader->quads.size(), 1u);
}

TEST(FeElements, SkipBlanksButNoLineFeedBeforeTheirList) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    text.Line("SURFACE_3D_ELEMENT_REPRESENTATION('e',(#9003),#9001,  " + ReferenceList(n) +
              ",#2,#4,  #9999,#5)");
    text.Line("SURFACE_3D_ELEMENT_REPRESENTATION('e',(#9003),#9001,\n" + ReferenceList(n) +
              ",#2,#4,#9999,#5)");
    text.Element(n, 9999);
    KeepOrder(text);
    EXPECT_EQ(FeModel(text.Text()).reader->quads.size(), 1u);
}

TEST(FeElements, StepOverNestedAndEmptyAttributes) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    const std::string property = std::to_string(text.Property(Sections(text, {1, 2, 3, 4})));
    text.Line("SURFACE_3D_ELEMENT_REPRESENTATION(,(#1,(#2,#3)),('a,b',#1)," + ReferenceList(n) +
              ",,(#5,(#6),#7),#" + property + ",#9005)");
    const FeModel run(text.Text());
    EXPECT_EQ(run.reader->quads.size(), 1u);
    EXPECT_EQ(run.Value(n[3]), 4);
}

TEST(FeElements, GoOnToTheNextReferenceForAPropertyThatIsNone) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    const std::string property = std::to_string(text.Property(Sections(text, {1, 2, 3, 4})));
    text.Line("SURFACE_3D_ELEMENT_REPRESENTATION('',(#1),#2," + ReferenceList(n) + ",#3,#4,$,#" + property +
              ")");
    EXPECT_EQ(FeModel(text.Text()).Value(n[0]), 1);
}

TEST(FeElements, ThatRunPastTheEndGiveTheFileUp) {
    for (const std::string line :
         {"SURFACE_3D_ELEMENT_REPRESENTATION('e')",
          "SURFACE_3D_ELEMENT_REPRESENTATION('e',(#9003),#9001,(#3,#5,#7,#9),#9002)",
          "SURFACE_3D_ELEMENT_REPRESENTATION('e',(#9003),#9001,(#3,#5,#7,#9),#9002,#9004,$,$)",
          "SURFACE_3D_ELEMENT_REPRESENTATION('e',(#9003),#9001,(#3,#5"}) {
        FeText text;
        FourNodes(text);
        text.Element({3, 5, 7, 9}, 9999);
        const int bad = text.Line(line);
        const FeModel run(text.Text());
        EXPECT_EQ(run.console, "<E> " + run.path + ": given up, #" + std::to_string(bad) +
                                   " runs past the end of the file\n")
            << line;
        EXPECT_EQ(run.reader->resultMesh, nullptr) << line;
        EXPECT_EQ(run.reader->part.triangleSum, 0u);
        EXPECT_THAT(run.reader->part.box, ElementsAre(0, 3, 0, 0, 0, 0));
    }
}

TEST(FeSections, ReadTheFourthAttribute) {
    FeText text;
    const int a = text.Line("UNIFORM_SURFACE_SECTION('x',$,(1.,2.,(3.)),  7.5E0,9.)");
    const int b = text.Line("UNIFORM_SURFACE_SECTIONS_OF_ANOTHER_KIND(,,,-2.)");
    const int c = text.Line("UNIFORM_SURFACE_SECTION('x',$,$,$)");
    const FeModel run(text.Text());
    const auto value = [&run](int id) {
        return run.reader->sectionValues[static_cast<std::size_t>(*run.reader->sectionMap.Find(id))];
    };
    EXPECT_EQ(value(a), 7.5);
    EXPECT_EQ(value(b), -2);
    EXPECT_EQ(value(c), 0);
}

TEST(FeSections, ThatRunPastTheEndGiveTheFileUp) {
    FeText text;
    const int bad = text.Line("UNIFORM_SURFACE_SECTION('x',$)");
    const FeModel run(text.Text());
    EXPECT_EQ(run.console,
              "<E> " + run.path + ": given up, #" + std::to_string(bad) + " runs past the end of the file\n");
    EXPECT_EQ(run.reader->resultMesh, nullptr);
}

TEST(FeMesh, HasTheNodesInF32AndTheirColours) {
    FeText text;
    std::vector<int> n;
    for (const double x : {0.1, 16777217.0, -1e-7, 3.0}) { n.push_back(text.Node(x, 2 * x, 4 * x)); }
    const std::vector<int> s = Sections(text, {3.9, 7.9, 8, 9});
    text.Element(n, text.Property(s));
    const FeModel run(text.Text());
    const ResultMesh& mesh = *run.reader->resultMesh;
    ASSERT_EQ(mesh.nodeCount, 4);
    for (std::size_t i = 0; i < 4; ++i) {
        const FeNode& node = run.reader->nodes[i];
        EXPECT_EQ(mesh.vertices[3 * i], static_cast<float>(node.x));
        EXPECT_EQ(mesh.vertices[3 * i + 1], static_cast<float>(node.y));
        EXPECT_EQ(mesh.vertices[3 * i + 2], static_cast<float>(node.z));
        EXPECT_THAT(std::vector<int>(mesh.colours + 4 * i, mesh.colours + 4 * i + 4),
                    ElementsAre(node.red, node.green, node.blue, 255));
    }
}

TEST(FeMesh, OfAFileWithoutAnythingIsEmpty) {
    const FeModel run(FeText().Text());
    ASSERT_NE(run.reader->resultMesh, nullptr);
    EXPECT_EQ(run.reader->resultMesh->nodeCount, 0);
    EXPECT_EQ(run.reader->resultMesh->quadCount, 0);
    EXPECT_THAT(run.reader->part.box, ElementsAre(0, 0, 0, 0, 0, 0));
    EXPECT_EQ(run.console, "");
}

TEST(FeMesh, OfTwentyThousandElementsIsReadInLinearTime) {
    FeText text;
    const int property = text.Property(Sections(text, {1, 4, 7.9, 9}));
    std::vector<int> row;
    for (int i = 0; i < 20001; ++i) { row.push_back(text.Node(i, i % 2, 0)); }
    for (std::size_t i = 0; i < 20000; ++i) {
        text.Element({row[i], row[i + 1], row[(i + 7) % 20001], row[(i + 8) % 20001]}, property);
    }
    const FeModel run(text.Text());
    EXPECT_EQ(run.reader->resultMesh->quadCount, 20000);
    EXPECT_EQ(run.reader->part.triangleSum, 40000u);
}

TEST(FeElementsDeathTest, APropertyOf15DigitsEndsTheProcess) {
    FeText text;
    const std::vector<int> n = FourNodes(text);
    // Also for an element that is dropped.
    text.Line("SURFACE_3D_ELEMENT_REPRESENTATION('',(#1),#2,(#3),#3,#4,#000000000000001,#5)");
    ExpectEndOfProcess(text.Text());
}

} // namespace
} // namespace tarnwick::test
