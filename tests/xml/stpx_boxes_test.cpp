#include "xml/stpx_boxes.h"

#include "support/formats.h"
#include "xml/stpx_driver.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick {
namespace {

using namespace test;

std::string BoxProperty(const std::string& low, const std::string& high) {
    return "<ShapeDependentProperty xsi:type=\"n0:BoundingBox\"><PointMin uidRef=\"" + low +
           "\"/><PointMax uidRef=\"" + high + "\"/></ShapeDependentProperty>";
}
std::string CornerProperty(const std::string& point) {
    return "<ShapeDependentProperty xsi:type=\"n0:CentreOfMass\"><Id id=\"bounding box corner point\"/>"
           "<CentrePoint uidRef=\"" +
           point + "\"/></ShapeDependentProperty>";
}
std::string Item(const std::string& uid, const std::string& numbers) {
    return "<RepresentationItem uid=\"" + uid + "\"><Coordinates>" + numbers +
           "</Coordinates></RepresentationItem>";
}
std::string Context(const std::string& items) {
    return "<RepresentationContext uid=\"c\">" + items + "</RepresentationContext>";
}

std::vector<float> BoxOf(const ProductNode& product) {
    return {product.box, product.box + 6};
}

TEST(StpxBoxes, AreNotLookedAtWithoutBoxMode) {
    Tables tables;
    const ReadDocument read(
        tables, Document(Part("a", BoxProperty("1", "2") + CornerProperty("1") + CornerProperty("2")) +
                         Context(Item("1", "0 0 0") + Item("2", "1 2 3"))));
    EXPECT_EQ(read.document.root->hasBox, 0);
}

TEST(StpxBoxes, ComeFromTwoPointsFurtherDownInTheText) {
    Tables tables;
    const ReadDocument read(tables,
                            Document(Part("a", BoxProperty("1", "2")) +
                                     Part("b", CornerProperty("3") + CornerProperty("4")) +
                                     Context(Item("1", "-1 -2 -3") + Item("2", "1 2 3.5")) +
                                     Context(Item("4", "4 5 6") + Item("3", "1 2 3"))),
                            1);
    ASSERT_EQ(read.problem, nullptr);
    EXPECT_EQ(read.Product("a")->hasBox, 1);
    EXPECT_EQ(BoxOf(*read.Product("a")), (std::vector<float>{-1, 1, -2, 2, -3, 3.5}));
    EXPECT_EQ(BoxOf(*read.Product("b")), (std::vector<float>{1, 4, 2, 5, 3, 6}));
}

TEST(StpxBoxes, ComeFromNoCentreThatIsCalledOtherwiseOrHasNoPoint) {
    const auto centre = [](const std::string& content) {
        return "<ShapeDependentProperty xsi:type=\"n0:CentreOfMass\">" + content +
               "</ShapeDependentProperty>";
    };
    const std::string name = "<Id id=\"bounding box corner point\"/>";
    const std::string other = "<Id id=\"centre of mass\"/>";
    for (const std::string& first : {centre(other + "<CentrePoint uidRef=\"1\"/>"), centre(name),
                                     centre(name + "<Point uidRef=\"1\"/>")}) {
        Tables tables;
        const ReadDocument read(tables,
                                Document(Part("a", first + CornerProperty("2")) +
                                         Context(Item("1", "0 0 0") + Item("2", "1 2 3"))),
                                1);
        EXPECT_EQ(read.problem, nullptr);
        EXPECT_EQ(read.Product("a")->hasBox, 0) << "one corner alone: " << first;
    }
}

TEST(StpxBoxes, FillTheirSlotsInTheOrderOfTheText) {
    Tables tables;
    const ReadDocument read(
        tables, Document(Part("a", BoxProperty("1", "2")) + Context(Item("2", "1 2 3") + Item("1", "0 0 0"))),
        1);
    EXPECT_EQ(BoxOf(*read.Product("a")), (std::vector<float>{1, 0, 2, 0, 3, 0}));
}

TEST(StpxBoxes, NeedTwoPointsAndAViewThatIsNoUsedAssembly) {
    Tables tables;
    const std::string points = Context(Item("1", "0 0 0") + Item("2", "1 2 3"));
    const ReadDocument read(tables,
                            Document(Part("one", CornerProperty("1")) + Part("none", BoxProperty("1", "9")) +
                                     Part("used", BoxProperty("1", "2") + UsedAs("o") + Use("p")) +
                                     Part("leaf", BoxProperty("1", "2") + UsedAs("p")) +
                                     Part("top", BoxProperty("1", "2") + Use("o")) + points),
                            1);
    ASSERT_EQ(read.problem, nullptr);
    EXPECT_EQ(read.Product("one")->hasBox, 0);
    EXPECT_EQ(read.Product("none")->hasBox, 0);
    EXPECT_EQ(read.Product("used")->hasBox, 0);
    EXPECT_EQ(read.Product("leaf")->hasBox, 1);
    EXPECT_EQ(read.Product("top")->hasBox, 1);
}

TEST(StpxBoxes, HaveNoRoomForAThirdPoint) {
    Tables tables;
    const ReadDocument read(
        tables,
        Document(Part("a", CornerProperty("1") + CornerProperty("1") + CornerProperty("1")) +
                 Context(Item("1", "0 0 0"))),
        1);
    EXPECT_NE(read.problem, nullptr);
}

TEST(StpxBoxes, AreDrawnPlacedByTheOccurrencesAboveThem) {
    const TestFolder folder;
    const std::string path = folder.Write(
        "a.stpx", Document(Part("top", BoxProperty("1", "2") + Use("o1", "10 0 0", "0 1 0 -1 0 0 0 0 1")) +
                           Part("mid", UsedAs("o1") + Use("o2", "0 0 5")) +
                           Part("leaf", BoxProperty("1", "2") + UsedAs("o2")) +
                           Context(Item("1", "0 0 0") + Item("2", "1 2 3"))));
    LoadedScene loaded = NewScene();
    StpxSession session(loaded);
    EXPECT_EQ(TraiteSTEPXFileNewMT(session, path.c_str(), nullptr, 1, 0), 0);
    EXPECT_EQ(std::vector<float>(session.loaded.box, session.loaded.box + 6),
              (std::vector<float>{0, 1, 0, 2, 0, 3}));
    ASSERT_NE(session.loaded.boxList, nullptr);
    ASSERT_EQ(session.loaded.boxList->count, 1);
    const BoxItem& box = *session.loaded.boxList->boxes[0];
    EXPECT_EQ(box.product, nullptr);
    EXPECT_EQ(box.matrix, nullptr);
    // x goes to y and y to -x; then 10 along x, and 5 along z.
    const float* const corner = box.vertices + 3; // the first face's (xmax, ymax, zmax)
    EXPECT_EQ(std::vector<float>(corner, corner + 3), (std::vector<float>{10, 1, 8}));
    EXPECT_EQ(box.vertices[3 * 12], 8.0f) << "x minimum";
}

TEST(StpxBoxes, OfAUseWithoutAProductAndOfAProductWithinItselfAreLeftOut) {
    const TestFolder folder;
    const std::string path = folder.Write(
        "a.stpx", Document(Part("top", Use("missing") + Use("o1", "10 0 0")) +
                           Part("ring", BoxProperty("1", "2") + Use("o1") + Use("o2") + UsedAs("o1")) +
                           Part("leaf", BoxProperty("1", "2") + UsedAs("o2")) +
                           Context(Item("1", "0 0 0") + Item("2", "1 2 3"))));
    LoadedScene loaded = NewScene();
    StpxSession session(loaded);
    TraiteSTEPXFileNewMT(session, path.c_str(), nullptr, 1, 0);
    ASSERT_NE(loaded.boxList, nullptr);
    ASSERT_EQ(loaded.boxList->count, 1) << "the leaf's: a used assembly has no box of its own";
    EXPECT_EQ(loaded.boxList->boxes[0]->vertices[3], 11.0f) << "x maximum";
}

TEST(StpxBoxes, AreNoneWithoutARoot) {
    const TestFolder folder;
    LoadedScene loaded = NewScene();
    StpxSession session(loaded);
    const std::string path = folder.Write("a.stpx", Document(Part("a", UsedAs("o"))));
    TraiteSTEPXFileNewMT(session, path.c_str(), nullptr, 1, 0);
    EXPECT_FALSE(session.gaveUp);
    EXPECT_EQ(loaded.root, nullptr);
    ASSERT_NE(loaded.boxList, nullptr);
    EXPECT_EQ(loaded.boxList->count, 0);
}

TEST(StpxBoxes, AreLeftOutBeyond30Levels) {
    const TestFolder folder;
    std::string parts;
    for (int i = 0; i < 40; ++i) {
        parts += Part("p" + std::to_string(i),
                      (i > 0 ? UsedAs("o" + std::to_string(i)) : std::string()) +
                          (i == 39 ? BoxProperty("1", "2") : Use("o" + std::to_string(i + 1))));
    }
    const std::string path =
        folder.Write("a.stpx", Document(parts + Context(Item("1", "0 0 0") + Item("2", "1 2 3"))));
    LoadedScene loaded = NewScene();
    StpxSession session(loaded);
    const ConsoleText console;
    TraiteSTEPXFileNewMT(session, path.c_str(), nullptr, 1, 0);
    EXPECT_EQ(session.loaded.boxList->count, 0);
    EXPECT_EQ(console.Count("more than 30 levels"), 1);
}

} // namespace
} // namespace tarnwick
