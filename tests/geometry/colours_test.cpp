#include "geometry/part_file.h"
#include "platform/fail_fast.h"
#include "support/p21_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

// Two solids, #20 with #30 and #31, and #21 with #32, a surface set #22 after them, and the styled items
// #41 on, as (style, item) pairs in the presentation's order.
struct Scene {
    Lines lines{kSquare,
                "#20=TESSELLATED_SOLID('',(#30,#31),$);",
                "#21=TESSELLATED_SOLID('',(#32),$);",
                "#22=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4,$,$,((1,2,3)),$);",
                FaceLine(30),
                FaceLine(31),
                FaceLine(32)};
    std::string items = "(#20,#21,#22)";
    int styledItems = 0;
    std::string styledList;

    Scene& Line(const std::string& line) {
        lines.push_back(line);
        return *this;
    }
    Scene& Styled(int style, int item) {
        return StyledBy("STYLED_ITEM('',(#" + std::to_string(style) + "),#" + std::to_string(item) + ");");
    }
    // A styled item whose text after the number is given.
    Scene& StyledBy(const std::string& text) {
        const std::string id = "#" + std::to_string(1000 + styledItems++);
        styledList += (styledList.empty() ? "" : ",") + id;
        return Line(id + "=" + text);
    }
    // A style, by a chain of its own, with a colour and a fill area.
    Scene& Fill(int style, int colour) {
        const auto id = [style](int i) { return "#" + std::to_string(style * 100 + i); };
        return Line("#" + std::to_string(style) + "=PRESENTATION_STYLE_ASSIGNMENT((" + id(1) + "));")
            .Line(id(1) + "=SURFACE_STYLE_USAGE(.BOTH.," + id(2) + ");")
            .Line(id(2) + "=SURFACE_SIDE_STYLE(''," + "(" + id(3) + "));")
            .Line(id(3) + "=SURFACE_STYLE_FILL_AREA(" + id(4) + ");")
            .Line(id(4) + "=FILL_AREA_STYLE('',(" + id(5) + "));")
            .Line(id(5) + "=FILL_AREA_STYLE_COLOUR('',#" + std::to_string(colour) + ");");
    }
    // The same with a rendering and its transparency.
    Scene& Rendered(int style, int colour, const std::string& alpha) {
        const auto id = [style](int i) { return "#" + std::to_string(style * 100 + i); };
        return Line("#" + std::to_string(style) + "=PRESENTATION_STYLE_ASSIGNMENT((" + id(1) + "));")
            .Line(id(1) + "=SURFACE_STYLE_USAGE(.BOTH.," + id(2) + ");")
            .Line(id(2) + "=SURFACE_SIDE_STYLE(''," + "(" + id(3) + "));")
            .Line(id(3) + "=SURFACE_STYLE_RENDERING_WITH_PROPERTIES(.NORMAL.,#" + std::to_string(colour) +
                  ",(" + id(4) + "));")
            .Line(id(4) + "=SURFACE_STYLE_TRANSPARENT(" + alpha + ");");
    }
    std::string Text() const {
        Lines all = lines;
        all.push_back("#900=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(" + styledList +
                      "),#9);");
        return PartText(items, all);
    }
};

const std::string kBlue = "#59=COLOUR_RGB('',0.125,0.25,0.5);";
const char* const kBlueFace = "0.125 0.25 0.5 1";

std::string FaceColour(const Scene& scene, int face = 30) {
    return ColourOf(PartFile(scene.Text()).FaceOf(face));
}

TEST(Colours, AreDefaultGreyWithoutPresentation) {
    const PartFile part(PartText("(#20)", {kSquare, kBlue, "#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30),
                                           "#50=STYLED_ITEM('',(#51),#20);"}));
    EXPECT_EQ(ColourOf(part.Face(0)), kDefaultColour);
    EXPECT_TRUE(part.scratch.colours.empty()) << "no row is made";
}

TEST(Colours, OfASolidAreThoseOfItsFaces) {
    const PartFile part(Scene().Line(kBlue).Fill(50, 59).Styled(50, 20).Text());
    EXPECT_EQ(ColourOf(part.FaceOf(30)), kBlueFace);
    EXPECT_EQ(ColourOf(part.FaceOf(31)), kBlueFace);
    EXPECT_EQ(ColourOf(part.FaceOf(32)), kDefaultColour) << "reset for each solid";
}

TEST(Colours, OfAFaceReplaceThoseOfItsSolid) {
    const PartFile part(Scene()
                            .Line(kBlue)
                            .Line("#60=DRAUGHTING_PRE_DEFINED_COLOUR('red');")
                            .Fill(50, 59)
                            .Fill(51, 60)
                            .Styled(50, 20)
                            .Styled(51, 30)
                            .Text());
    EXPECT_EQ(ColourOf(part.FaceOf(30)), "1 0 0 1");
    EXPECT_EQ(ColourOf(part.FaceOf(31)), kBlueFace) << "for this face only";
}

TEST(Colours, AreLeftOverFromTheLastSolidForASurfaceSet) {
    Scene scene;
    scene.Line(kBlue).Fill(50, 59).Styled(50, 21);
    EXPECT_EQ(FaceColour(scene, 22), kBlueFace);
    scene.items = "(#20,#21,#5,#22)";
    EXPECT_EQ(FaceColour(scene, 22), kBlueFace) << "other items between them change nothing";
    scene.items = "(#21,#20,#22)";
    EXPECT_EQ(FaceColour(scene, 22), kDefaultColour) << "the last solid has none";
    scene.items = "(#22,#21)";
    EXPECT_EQ(FaceColour(scene, 22), kDefaultColour) << "a set in first place has nothing to take";
}

TEST(Colours, OfASurfaceSetItselfComeFirst) {
    Scene scene;
    scene.Line(kBlue).Line("#60=DRAUGHTING_PRE_DEFINED_COLOUR('red');").Fill(50, 59).Fill(51, 60);
    scene.Styled(50, 21).Styled(51, 22);
    EXPECT_EQ(FaceColour(scene, 22), "1 0 0 1");
    scene.Line("#23=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4,$,$,((1,2,3)),$);");
    scene.items = "(#21,#22,#23)";
    EXPECT_EQ(FaceColour(scene, 23), kBlueFace) << "what is left over is the solid's, not the set's";
}

TEST(Colours, OfAFaceAreNotLeftOver) {
    Scene scene;
    scene.Line(kBlue).Fill(50, 59).Styled(50, 32);
    EXPECT_EQ(FaceColour(scene, 22), kDefaultColour);
}

TEST(Colours, AreKnownByThreeLettersOfTheirName) {
    for (const auto& [name, colour] : {std::pair{"black", "0 0 0 1"},
                                       {"white", "1 1 1 1"},
                                       {"red", "1 0 0 1"},
                                       {"green", "0 1 0 1"},
                                       {"yellow", "1 1 0 1"},
                                       {"blue", "0 0 1 1"},
                                       {"cyan", "0 1 1 1"},
                                       {"magenta", "1 0 1 1"},
                                       {"grey", "0 1 0 1"},
                                       {"blumenkohl", "0 0 1 1"},
                                       {"magnolia", "1 0 1 1"},
                                       {"Black", kDefaultColour},
                                       {"RED", kDefaultColour},
                                       {"orange", kDefaultColour},
                                       {"bl", kDefaultColour},
                                       {" red", kDefaultColour},
                                       {"", kDefaultColour}}) {
        Scene scene;
        scene.Line(std::string("#60=DRAUGHTING_PRE_DEFINED_COLOUR('") + name + "');")
            .Fill(50, 60)
            .Styled(50, 20);
        EXPECT_EQ(FaceColour(scene), colour) << name;
    }
}

TEST(Colours, WithAnUnknownNameDoNotEndTheTable) {
    Scene scene;
    scene.Line("#60=DRAUGHTING_PRE_DEFINED_COLOUR('orange');").Line(kBlue).Fill(50, 59).Styled(50, 20);
    EXPECT_EQ(FaceColour(scene), kBlueFace);
}

TEST(Colours, OfANumberThatSomethingElseHasFirstAreNone) {
    Scene scene;
    scene.Line("#59=X();").Line(kBlue).Fill(50, 59).Styled(50, 20);
    EXPECT_EQ(FaceColour(scene), kDefaultColour);
}

TEST(Colours, AreReadLikeAllNumbers) {
    Scene scene;
    scene.Line("#59=COLOUR_RGB('', 1.E-9,\t-2.5 , 3x);").Fill(50, 59).Styled(50, 20);
    EXPECT_EQ(FaceColour(scene), "0 -2.5 3 1") << "nothing clamps them";
    Scene comma;
    comma.Line("#59=COLOUR_RGB('a,0.75',0.25,0.5,0.125);").Fill(50, 59).Styled(50, 20);
    EXPECT_EQ(FaceColour(comma), "0.75 0.25 0.5 1") << "after the first comma, also in the name";
}

TEST(Colours, LeaveTheTextAsItIs) {
    const std::string text = Scene().Line(kBlue).Fill(50, 59).Styled(50, 20).Text();
    const PartFile part(text);
    std::string expected = text;
    for (std::size_t i; (i = expected.find("),$);\n")) != std::string::npos && expected[i + 2] == '$' &&
                        expected.rfind("TESSELLATED_SOLID", i) > expected.rfind('\n', i);) {
        expected[i + 2] = '#';
    }
    EXPECT_EQ(std::string(part.model.text, part.model.textEnd), expected);
}

TEST(Alpha, IsOneForAFillAreaAlone) {
    EXPECT_EQ(FaceColour(Scene().Line(kBlue).Fill(50, 59).Styled(50, 20)), kBlueFace);
}

TEST(Alpha, IsTheTransparencyAsItStands) {
    for (const auto& [number, colour] : {std::pair{"0.3", "0.125 0.25 0.5 0.3"},
                                         {"0.", "0.125 0.25 0.5 0"},
                                         {"1.", kBlueFace},
                                         {"7.5", "0.125 0.25 0.5 7.5"}}) {
        EXPECT_EQ(FaceColour(Scene().Line(kBlue).Rendered(50, 59, number).Styled(50, 20)), colour);
    }
}

TEST(Alpha, MakesARowOfItsOwnForEachValue) {
    Scene scene;
    scene.Line(kBlue).Fill(50, 59).Rendered(51, 59, "0.5").Fill(52, 59).Rendered(53, 59, "0.5");
    scene.Styled(50, 30).Styled(51, 31).Styled(52, 32).Styled(53, 22);
    const PartFile part(scene.Text());
    EXPECT_EQ(ColourOf(part.FaceOf(30)), kBlueFace);
    EXPECT_EQ(ColourOf(part.FaceOf(31)), "0.125 0.25 0.5 0.5");
    EXPECT_EQ(ColourOf(part.FaceOf(32)), kBlueFace);
    EXPECT_EQ(ColourOf(part.FaceOf(22)), "0.125 0.25 0.5 0.5");
    EXPECT_EQ(part.scratch.colours.size(), 2u) << "a third and a fourth style find the rows";
    EXPECT_EQ(part.scratch.colours[1].colourId, 59);
}

TEST(Alpha, TakesAnUnusedRowBeforeOneOfTheSameAlphaBehindIt) {
    // Two rows of one colour, since its number stands twice in the file: the first style takes the first row,
    // another alpha the second, and the next style with the first alpha finds the first row again.
    Scene scene;
    scene.Line(kBlue).Line(kBlue).Fill(50, 59).Rendered(51, 59, "0.5").Fill(52, 59);
    scene.Styled(50, 30).Styled(51, 31).Styled(52, 32);
    const PartFile part(scene.Text());
    ASSERT_EQ(part.scratch.colours.size(), 2u);
    EXPECT_EQ(part.scratch.colours[0].alpha, 1.0f);
    EXPECT_EQ(part.scratch.colours[1].alpha, 0.5f);
    EXPECT_EQ(ColourOf(part.FaceOf(32)), kBlueFace);
}

TEST(Alpha, OfMinusOneLeavesTheRowUnused) {
    Scene scene;
    scene.Line(kBlue).Rendered(50, 59, "-1.").Fill(51, 59).Styled(50, 20).Styled(51, 21);
    const PartFile part(scene.Text());
    EXPECT_EQ(part.scratch.colours.size(), 1u);
    EXPECT_EQ(ColourOf(part.FaceOf(30)), kBlueFace) << "the row that both share has the later alpha";
    EXPECT_EQ(ColourOf(part.FaceOf(32)), kBlueFace);
}

TEST(Alpha, OfANewRowKeepsTheColourOfTheLastCandidate) {
    // Neither row is free nor has the alpha: the copy comes from the last row of that number.
    Scene scene;
    scene.Line(kBlue).Line("#59=COLOUR_RGB('',1.,1.,1.);");
    scene.Fill(50, 59).Rendered(51, 59, "0.5").Rendered(52, 59, "0.25");
    scene.Styled(50, 30).Styled(51, 31).Styled(52, 32);
    const PartFile part(scene.Text());
    EXPECT_EQ(part.scratch.colours.size(), 3u);
    EXPECT_EQ(ColourOf(part.FaceOf(32)), "0.125 0.25 0.5 0.25")
        << "a look-up finds the first line of a doubled number";
}

TEST(Rows, AreKeptBeyondAHundred) {
    for (const int count : {99, 100, 101, 250}) {
        Scene scene;
        Lines colours;
        for (int i = 0; i < count; ++i) {
            scene.Line("#" + std::to_string(10000 + i) + "=COLOUR_RGB(''," + std::to_string(i) + ".,0.,0.);");
        }
        const int last = 10000 + count - 1;
        scene.Fill(50, 10000)
            .Fill(51, last)
            .Rendered(52, last, "0.5")
            .Styled(50, 30)
            .Styled(51, 31)
            .Styled(52, 32);
        const PartFile part(scene.Text());
        EXPECT_EQ(ColourOf(part.FaceOf(30)), "0 0 0 1");
        EXPECT_EQ(ColourOf(part.FaceOf(31)), std::to_string(count - 1) + " 0 0 1");
        EXPECT_EQ(ColourOf(part.FaceOf(32)), std::to_string(count - 1) + " 0 0 0.5");
        EXPECT_EQ(part.scratch.colours.size(), static_cast<std::size_t>(count) + 1);
    }
}

TEST(StyledItem, IsReadInItsUsualForm) {
    EXPECT_EQ(FaceColour(Scene().Line(kBlue).Fill(5, 59).StyledBy("STYLED_ITEM('',(#5),#20);")), kBlueFace);
}

TEST(StyledItem, IsLostWithABlankBeforeItsItem) {
    EXPECT_EQ(FaceColour(Scene().Line(kBlue).Fill(5, 59).StyledBy("STYLED_ITEM('',(#5), #20);")),
              kDefaultColour);
}

TEST(StyledItem, MayHaveBlanksElsewhere) {
    EXPECT_EQ(FaceColour(Scene().Line(kBlue).Fill(5, 59).StyledBy(" STYLED_ITEM ( '' , ( #5 ) ,#20 ) ;")),
              kBlueFace);
}

TEST(StyledItem, IsReadByPositionWhateverItsKeyword) {
    EXPECT_EQ(
        FaceColour(Scene().Line(kBlue).Fill(5, 59).StyledBy("OVER_RIDING_STYLED_ITEM('',(#5),#20,#999);")),
        kBlueFace);
    EXPECT_EQ(FaceColour(Scene().Line(kBlue).Fill(5, 59).StyledBy("ANYTHING(#5,#20);")), kBlueFace);
}

TEST(StyledItem, FollowsItsFirstStyleOnly) {
    // The item is looked for after the comma between the styles.
    Scene scene;
    scene.Line(kBlue).Fill(5, 59).Fill(6, 59).StyledBy("STYLED_ITEM('',(#5,#6),#20);");
    EXPECT_EQ(FaceColour(scene), kDefaultColour);
}

TEST(StyledItem, CountsFirstWhenAnItemHasTwo) {
    Scene scene;
    scene.Line(kBlue).Line("#60=DRAUGHTING_PRE_DEFINED_COLOUR('red');").Fill(50, 59).Fill(51, 60);
    scene.Styled(50, 20).Styled(51, 20);
    EXPECT_EQ(FaceColour(scene), kBlueFace);
}

TEST(StyledItem, ThatCannotBeResolvedIsSkipped) {
    Scene scene;
    scene.Line(kBlue).Fill(50, 59).Styled(77, 20).Styled(50, 20);
    EXPECT_EQ(FaceColour(scene), kBlueFace);
    EXPECT_EQ(PartFile(scene.Text()).console, "");
}

TEST(StyledItem, OfAColourThatIsNotThereIsSkipped) {
    EXPECT_EQ(FaceColour(Scene().Line(kBlue).Fill(50, 99).Styled(50, 20)), kDefaultColour);
}

TEST(StyledItem, ThatIsMissingEndsTheWalk) {
    Scene scene;
    scene.Line(kBlue).Fill(50, 59).Styled(50, 20);
    scene.styledList += ",#9999";
    scene.Styled(50, 21);
    const PartFile part(scene.Text());
    EXPECT_EQ(ColourOf(part.FaceOf(30)), kBlueFace);
    EXPECT_EQ(ColourOf(part.FaceOf(32)), kDefaultColour);
}

TEST(Presentation, CountsWhenItIsTheFirst) {
    Scene scene;
    scene.Line("#800=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(),#9);");
    scene.Line(kBlue).Fill(50, 59).Styled(50, 20);
    EXPECT_EQ(FaceColour(scene), kDefaultColour);
}

} // namespace
} // namespace tarnwick::test
