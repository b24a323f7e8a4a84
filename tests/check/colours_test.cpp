#include "check/checked.h"

namespace tarnwick::test {
namespace {

TEST(CheckColours, TellOfAFileWithoutPresentation) {
    EXPECT_THAT(Findings(Edited("#40=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION", "#40=ANY")),
                ElementsAre("colour 17 #41", "colour 18 #42"));
}

TEST(CheckColours, TellOfStyledItemsOutsideOfTheFirstPresentation) {
    const std::string text =
        EditedIn(Edited("(#41,#42)", "(#42)"),
                 "#41=", "#43=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(#41),#9);\n#41=");
    EXPECT_THAT(Findings(text), ElementsAre("colour 18 #41"));
    EXPECT_THAT(Texts(text),
                ElementsAre("isn't listed by the first presentation, #40: #20 doesn't get its colour"));
}

TEST(CheckColours, TellOfABlankBeforeTheItem) {
    EXPECT_THAT(Findings(Edited("(#50),#20", "(#50), #20")), ElementsAre("blank 17 #41"));
}

TEST(CheckColours, TellOfAnItemWithTwoStyles) {
    EXPECT_THAT(Findings(Edited("(#50),#20", "(#50,#51),#20")), ElementsAre("colour 17 #41"));
}

TEST(CheckColours, TellOfAChainOfAnotherShape) {
    EXPECT_THAT(Findings(Edited("STYLE_ASSIGNMENT((#52))", "STYLE_ASSIGNMENT(#52)")),
                ElementsAre("colour 17 #41"));
    EXPECT_THAT(Findings(Edited("SIDE_STYLE('',(#56))", "SIDE_STYLE('',#56)")), ElementsAre("colour 17 #41"));
}

TEST(CheckColours, TellOfAColourOfAnUnknownName) {
    EXPECT_THAT(Findings(Edited("'red'", "'Red'")), ElementsAre("colour 18 #42"));
    EXPECT_THAT(Findings(Edited("'red'", "'green'")), IsEmpty());
    EXPECT_THAT(Findings(Edited("DRAUGHTING_PRE_DEFINED_COLOUR('red')", "MY_COLOUR('red')")),
                ElementsAre("colour 18 #42"));
}

TEST(CheckColours, TellOfAColourWithACommaInItsName) {
    EXPECT_THAT(Findings(Edited("COLOUR_RGB(''", "COLOUR_RGB('a,b'")), ElementsAre("name 28 #59"));
}

TEST(CheckColours, TellOfTheOpacity0) {
    EXPECT_THAT(Findings(Edited("TRANSPARENT(0.5)", "TRANSPARENT(0.)")), ElementsAre("transparent 18 #42"));
    EXPECT_THAT(Findings(Edited("TRANSPARENT(0.5)", "TRANSPARENT(1.)")), IsEmpty());
}

TEST(CheckColours, TellOfAListThatIsBroken) {
    EXPECT_THAT(Findings(Edited("(#41,#42)", "(#41,\n#42)")), ElementsAre("broken-list 16 #40"));
}

TEST(CheckColours, TellOfAListWithAGap) {
    EXPECT_THAT(Findings(Edited("(#41,#42)", "(#41,#77,#42)")),
                ElementsAre("missing-entity 16 #40", "colour 16 #40", "colour 18 #42"));
}

TEST(CheckColours, TellOfStylesOnExactShapesAlone) {
    const std::string text = EditedIn(EditedIn(Edited("(#50),#20", "(#50),#8"), "(#51),#22", "(#51),#8"),
                                      "#9=", "#8=SOMETHING_ELSE();\n#9=");
    EXPECT_THAT(Findings(text), ElementsAre("colour 18 #41"));
}

} // namespace
} // namespace tarnwick::test
