#include "geometry/part_file.h"
#include "platform/fail_fast.h"
#include "support/capture.h"
#include "support/p21_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace tarnwick::test {
namespace {

struct Resolved {
    int result;
    std::int32_t colourId;
    float alpha;
};

// What style #1 leads to.
Resolved Resolve(const Lines& lines) {
    const TempFolder folder;
    ReaderWorkspace workspace;
    StepModel model(workspace, folder.Write("part.stp", P21Text(lines)));
    {
        LogCapture log;
        if (model.Read() != StepModel::kRead) { std::abort(); }
    }
    Resolved resolved{-1, -1, -7};
    resolved.result = ResolveStyle(model, 1, &resolved.colourId, &resolved.alpha);
    return resolved;
}

const std::string kStyle = "#1=PRESENTATION_STYLE_ASSIGNMENT((#2));";
const std::string kUsage = "#2=SURFACE_STYLE_USAGE(.BOTH.,#3);";
const std::string kFillSide = "#3=SURFACE_SIDE_STYLE('',(#4));";
const std::string kFillArea = "#4=SURFACE_STYLE_FILL_AREA(#5);";
const std::string kArea = "#5=FILL_AREA_STYLE('',(#6));";
const std::string kAreaColour = "#6=FILL_AREA_STYLE_COLOUR('',#7);";
const std::string kRendering = "#8=SURFACE_STYLE_RENDERING_WITH_PROPERTIES(.NORMAL.,#9,(#10));";
const std::string kTransparent = "#10=SURFACE_STYLE_TRANSPARENT(0.25);";

void ExpectFill(const Lines& lines) {
    const Resolved resolved = Resolve(lines);
    EXPECT_EQ(resolved.result, 0);
    EXPECT_EQ(resolved.colourId, 7);
    EXPECT_EQ(resolved.alpha, 1.0f);
}
void ExpectRendering(const Lines& lines) {
    const Resolved resolved = Resolve(lines);
    EXPECT_EQ(resolved.result, 0);
    EXPECT_EQ(resolved.colourId, 9);
    EXPECT_EQ(resolved.alpha, 0.25f);
}

TEST(ResolveStyle, FollowsAFillArea) {
    ExpectFill({kStyle, kUsage, kFillSide, kFillArea, kArea, kAreaColour});
}

TEST(ResolveStyle, FollowsARendering) {
    ExpectRendering({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#8));", kRendering, kTransparent});
}

TEST(ResolveStyle, PrefersTheRenderingOfTwo) {
    const Lines rest{kFillArea, kArea, kAreaColour, kRendering, kTransparent};
    for (const char* const list : {"(#4,#8)", "(#8,#4)", "( #4 ,#8)", "(#4 , #8)", "(#4,#8,#99)"}) {
        Lines lines{kStyle, kUsage, std::string("#3=SURFACE_SIDE_STYLE('',") + list + ");"};
        lines.insert(lines.end(), rest.begin(), rest.end());
        ExpectRendering(lines);
    }
}

TEST(ResolveStyle, LooksAtTheFirstTwoStylesOnly) {
    ExpectFill({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#4,#5,#8));", kFillArea, kArea, kAreaColour,
                kRendering, kTransparent});
}

TEST(ResolveStyle, KeepsTheFirstWhenTheSecondIsNoRendering) {
    ExpectFill({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#4,#11));", kFillArea, kArea, kAreaColour,
                "#11=SURFACE_STYLE_BOUNDARY(#12);"});
}

TEST(ResolveStyle, SkipsBlanksAndLineFeeds) {
    ExpectFill({"#1=PRESENTATION_STYLE_ASSIGNMENT( \n ( #2 ));", "#2=SURFACE_STYLE_USAGE( .BOTH. , \n #3);",
                "#3=SURFACE_SIDE_STYLE( '' , \n ( #4 ));", "#4=SURFACE_STYLE_FILL_AREA( \n #5);",
                "#5=FILL_AREA_STYLE( '', ( #6));", "#6=FILL_AREA_STYLE_COLOUR( '' ,\n #7);"});
}

TEST(ResolveStyle, SkipsAFirstArgumentInParentheses) {
    ExpectFill({kStyle, "#2=SURFACE_STYLE_USAGE(X(1,(2,3)),#3);", kFillSide, kFillArea, kArea, kAreaColour});
    ExpectFill({kStyle, "#2=SURFACE_STYLE_USAGE(,#3);", kFillSide, kFillArea, kArea, kAreaColour});
}

TEST(ResolveStyle, GivesUpAChainOfAnotherShape) {
    EXPECT_EQ(Resolve({"#1=PRESENTATION_STYLE_ASSIGNMENT(#2);", kUsage, kFillSide}).result, 1);
    EXPECT_EQ(Resolve({kStyle, "#2=CURVE_STYLE('',(#3),$,$);"}).result, 1);
    EXPECT_EQ(Resolve({kStyle, "#2=SURFACE_STYLE_USAGE(.BOTH.,$);"}).result, 1);
    EXPECT_EQ(Resolve({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',#4);"}).result, 1);
}

TEST(ResolveStyle, GivesUpAChainThatEndsNowhere) {
    EXPECT_EQ(Resolve({}).result, 1);
    EXPECT_EQ(Resolve({kStyle}).result, 1);
    EXPECT_EQ(Resolve({kStyle, kUsage}).result, 1);
    EXPECT_EQ(Resolve({kStyle, kUsage, kFillSide}).result, 1);
    EXPECT_EQ(Resolve({kStyle, kUsage, kFillSide, kFillArea}).result, 1);
    EXPECT_EQ(Resolve({kStyle, kUsage, kFillSide, kFillArea, kArea}).result, 1);
    EXPECT_EQ(Resolve({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#8));"}).result, 1);
    EXPECT_EQ(Resolve({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#8));", kRendering}).result, 1);
}

TEST(ResolveStyle, DoesNotAskWhetherTheColourIsThere) {
    EXPECT_EQ(Resolve({kStyle, kUsage, kFillSide, kFillArea, kArea, kAreaColour}).colourId, 7);
}

TEST(ResolveStyle, TakesTheFirstNumberOfAnyFirstProperty) {
    const Resolved resolved = Resolve({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#8));", kRendering,
                                       "#10=SURFACE_STYLE_REFLECTANCE_AMBIENT( \n 0.75,0.5);"});
    EXPECT_EQ(resolved.result, 0);
    EXPECT_EQ(resolved.alpha, 0.75f);
}

TEST(ResolveStyle, TakesTheFirstOfSeveralProperties) {
    ExpectRendering({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#8));",
                     "#8=SURFACE_STYLE_RENDERING_WITH_PROPERTIES(.NORMAL.,#9, ( #10,#11));", kTransparent,
                     "#11=SURFACE_STYLE_TRANSPARENT(0.75);"});
}

TEST(ResolveStyle, RunsOnToTheNextCommaBehindARenderingWithoutProperties) {
    ExpectRendering({kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#8));",
                     "#8=SURFACE_STYLE_RENDERING(.NORMAL.,#9);", "#20=X('',#10);", kTransparent});
}

TEST(ResolveStyle, TakesAnyOtherStyleForARendering) {
    ExpectRendering(
        {kStyle, kUsage, "#3=SURFACE_SIDE_STYLE('',(#8));", "#8=X(.NORMAL.,#9,(#10));", kTransparent});
}

TEST(ResolveStyle, TakesReferencesOfFourteenDigits) {
    ExpectFill({"#1=PRESENTATION_STYLE_ASSIGNMENT((#00000000000002));", kUsage, kFillSide, kFillArea, kArea,
                kAreaColour});
}

TEST(ResolveStyleDeathTest, EndsTheProcessAtAReferenceOfFifteenDigits) {
    EXPECT_EXIT(Resolve({"#1=PRESENTATION_STYLE_ASSIGNMENT((#000000000000002));", kUsage}),
                testing::ExitedWithCode(kFailFastStatus), "^$");
    EXPECT_EXIT(Resolve({kStyle, kUsage, kFillSide, kFillArea, kArea,
                         "#6=FILL_AREA_STYLE_COLOUR('',#000000000000007);"}),
                testing::ExitedWithCode(kFailFastStatus), "^$");
}

} // namespace
} // namespace tarnwick::test
