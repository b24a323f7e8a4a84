#include "geometry/part_file.h"
#include "platform/fail_fast.h"
#include "support/p21_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A part with one container, #20, whose line is given.
std::string Text(const std::string& container, const std::string& next = FaceLine(30)) {
    return PartText("(#20)", {kSquare, container, next, FaceLine(31)});
}
std::int32_t ExactId(const std::string& container) {
    const PartFile part(Text(container));
    return part.Container(0).exactContainerId;
}

TEST(Container, TellsSolidsFromShells) {
    const PartFile part(
        PartText("(#20,#21)", {kSquare, "#20=TESSELLATED_SOLID('',(#30),#91);",
                               "#21=TESSELLATED_SHELL('',(#31),$);", FaceLine(30), FaceLine(31)}));
    ASSERT_EQ(part.reader->containerCount, 2);
    EXPECT_EQ(part.Container(0).kind, 1);
    EXPECT_EQ(part.Container(0).containerId, 20);
    EXPECT_EQ(part.Container(0).exactContainerId, 91);
    EXPECT_EQ(part.Container(0).materialName, nullptr);
    EXPECT_EQ(part.Container(0).materialComment, nullptr);
    EXPECT_EQ(part.Container(1).kind, 2);
    EXPECT_EQ(part.Container(1).containerId, 21);
    EXPECT_EQ(part.Container(1).exactContainerId, 0);
    EXPECT_EQ(part.FaceOf(30).containerId, 20);
    EXPECT_EQ(part.FaceOf(30).exactContainerId, 91);
    EXPECT_EQ(part.FaceOf(30).containerType, 1);
    EXPECT_EQ(part.FaceOf(31).containerId, 21);
    EXPECT_EQ(part.FaceOf(31).exactContainerId, 0);
    EXPECT_EQ(part.FaceOf(31).containerType, 2);
}

TEST(Container, ReadsTriangulatedFacesOnly) {
    const PartFile part(
        PartText("(#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#29,#30,#22,#23,#24,#31,#10),$);",
                           FaceLine(30), "#22=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4,$,$,((1,2,3)),$);",
                           "#23=TRIANGULATED_SURFACE_SET('',#10,4,$,$,((1,2,3)));",
                           "#24=TESSELLATED_SHELL('',(#30),$);",
                           "#29=COMPLEX_TRIANGULATED_FACE('',#10,4,$,$,$,((1,2,3)),$);", FaceLine(31)}));
    EXPECT_EQ(part.result, 0);
    EXPECT_THAT(part.FaceIds(), ElementsAre(29, 30, 31));
    EXPECT_EQ(part.console, "") << "in silence";
    EXPECT_EQ(part.reader->containerCount, 1);
}

TEST(Container, HasAnExactIdInItsThirdArgument) {
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),#91);"), 91);
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30,#31),#91);"), 91);
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30) , #91);"), 91);
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),\n#91);"), 91) << "the walk crosses lines";
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(),#91);"), 91);
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),x#91);"), 91);
}

TEST(Container, HasNoExactIdWithoutAReference) {
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),$);"), 0);
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),);"), 0);
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),#);"), 0);
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),# 91);"), 0);
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),$#91);"), 0);
}

TEST(Container, FindsTheLinkBehindTheNextCommaWhenItHasNoThirdArgument) {
    // The comma is that of the next entity, and the reference its coordinates.
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30));"), 10);
}

TEST(Container, MarksThePlaceOfItsLinkInTheText) {
    const std::string text = Text("#20=TESSELLATED_SOLID('',(#30),$);");
    const PartFile part(text);
    std::string expected = text;
    expected[text.find("$);")] = '#';
    EXPECT_EQ(std::string(part.model.text, part.model.textEnd), expected);
    const std::string closed = Text("#20=TESSELLATED_SOLID('',(#30),);");
    const PartFile other(closed);
    expected = closed;
    expected[closed.find(",);") + 1] = '#';
    EXPECT_EQ(std::string(other.model.text, other.model.textEnd), expected);
}

TEST(Container, HasAnExactIdOfUpToFourteenDigits) {
    EXPECT_EQ(ExactId("#20=TESSELLATED_SOLID('',(#30),#00000000000091);"), 91);
}

TEST(ContainerDeathTest, EndsTheProcessAtAnExactIdOfFifteenDigits) {
    const std::string text = Text("#20=TESSELLATED_SOLID('',(#30),#000000000000091);");
    EXPECT_EXIT(PartFile part(text), testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(Container, MayBeEmpty) {
    const PartFile part(Text("#20=TESSELLATED_SOLID('',(),$);"));
    EXPECT_EQ(part.result, 0);
    EXPECT_THAT(part.FaceIds(), IsEmpty());
    EXPECT_EQ(part.reader->containerCount, 1);
}

TEST(Container, LosesTheFirstFaceOfASecondLine) {
    const PartFile part(Text("#20=TESSELLATED_SOLID('',(#30,\n#31,#31),$);"));
    EXPECT_THAT(part.FaceIds(), ElementsAre(30, 31)) << "its number reads as 0";
}

TEST(SurfaceSet, HasNoContainer) {
    const PartFile part(
        PartText("(#20,#22)", {kSquare, "#20=TESSELLATED_SOLID('',(#30),#91);", FaceLine(30),
                               "#22=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4,$,$,((1,2,3)),$);"}));
    EXPECT_THAT(part.FaceIds(), ElementsAre(30, 22));
    EXPECT_EQ(part.FaceOf(22).containerId, 0);
    EXPECT_EQ(part.FaceOf(22).exactContainerId, 0);
    EXPECT_EQ(part.FaceOf(22).containerType, 0);
    EXPECT_EQ(part.FaceOf(22).exactFaceId, 0);
    EXPECT_EQ(part.reader->containerCount, 1);
}

// A solid without a third argument finds its link after the first parenthesis that follows, and marks it.
TEST(Container, LetsFacesReadAListAgainThatItHasMarked) {
    const auto face = [](int id, int list) {
        return "#" + std::to_string(id) + "=TRIANGULATED_FACE('',#" + std::to_string(list) +
               ",4,$,$,(1,2),((1,2,1)));";
    };
    const PartFile part(
        PartText("(#20,#21)",
                 {"#20=TESSELLATED_SOLID('',(#30,#31,#32,#33,#34,#35),$);", "#21=TESSELLATED_SOLID('',(#36);",
                  kSquare, "#11=COORDINATES_LIST('',2,((7.,7.,7.),(8.,8.,8.)));", face(30, 10), face(31, 11),
                  face(32, 10), face(33, 11), face(34, 10), face(35, 11), face(36, 10)}));
    EXPECT_EQ(part.result, 0);
    const auto secondPoint = [&](int id) {
        const float* const vertices = part.FaceOf(id).vertices;
        return std::vector<float>(vertices + 3, vertices + 6);
    };
    for (const int id : {30, 32, 34}) { EXPECT_EQ(secondPoint(id), (std::vector<float>{1, 0, 0})) << id; }
    EXPECT_EQ(secondPoint(36), (std::vector<float>{1, 1, 0})) << "the first two have grown together";
}

} // namespace
} // namespace tarnwick::test
