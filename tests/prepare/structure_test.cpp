#include "prepare/exchange_text.h"
#include "prepare/prepared_scene.h"

#include <gmock/gmock.h>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr const char* kTriangle = "0 0 0, 1 0 0, 0 1 0";

// An assembly of one part, whose use is the caller's.
struct Pair {
    ExchangeText text;
    std::string context = text.Context();
    std::string parent = text.Product("top");
    std::string child = text.Product("part");
    std::string origin = text.Axes("(0.,0.,0.)");
    std::string childShape = text.Shape(child, origin + "," + text.Triangle(), context);

    std::string ParentShape(const std::string& items) { return text.Shape(parent, items, context); }
};

TEST(Structure, AUseStandsAtItsTargetBackFromItsSource) {
    Pair pair;
    const std::string source = pair.text.Axes("(1.,0.,0.)");
    const std::string target = pair.text.Axes("(10.,0.,0.)", "(0.,0.,1.)", "(0.,1.,0.)");
    const std::string shape = pair.ParentShape(target);
    pair.text.Use(pair.parent, pair.child, shape, pair.childShape, source, target);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, pair.text.Text());
    EXPECT_THAT(scene.Corners(), ElementsAre("10 -1 0, 10 0 0, 9 -1 0"));
    EXPECT_THAT(scene.products, ElementsAre("top", "part"));
    EXPECT_THAT(scene.Losses(), ElementsAre());
    EXPECT_EQ(scene.result.placedParts, 1u);
}

TEST(Structure, AnAxisThatIsntOfUnitLengthTurnsAndDoesntScale) {
    Pair pair;
    const std::string target = pair.text.Axes("(0.,0.,0.)", "(0.,0.,0.03937)", "(0.03937,0.,0.01)");
    const std::string shape = pair.ParentShape(target);
    pair.text.Use(pair.parent, pair.child, shape, pair.childShape, pair.origin, target);
    const TempFolder folder;
    EXPECT_THAT(PrepareText(folder, pair.text.Text()).Corners(), ElementsAre(kTriangle));
}

TEST(Structure, ARelationshipMayLeadFromTheParentToTheChild) {
    Pair pair;
    const std::string target = pair.text.Axes("(10.,0.,0.)");
    const std::string shape = pair.ParentShape(target);
    // Both representations and both items are the other way round.
    pair.text.Use(pair.parent, pair.child, pair.childShape, shape, target, pair.origin);
    const TempFolder folder;
    EXPECT_THAT(PrepareText(folder, pair.text.Text()).Corners(), ElementsAre("10 0 0, 11 0 0, 10 1 0"));
}

TEST(Structure, AUseWithoutPlacementStandsAtTheOriginAndIsNoted) {
    Pair pair;
    pair.ParentShape(pair.origin);
    pair.text.Add("NEXT_ASSEMBLY_USAGE_OCCURRENCE('1','',''," + pair.parent + "," + pair.child + ",$)");
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, pair.text.Text());
    EXPECT_THAT(scene.Corners(), ElementsAre(kTriangle));
    EXPECT_THAT(scene.Losses(),
                ElementsAre("top: the use has no placement, so that it stands at the origin"));
    EXPECT_FALSE(scene.result.LacksShape());
}

TEST(Structure, AMappedItemPlacesTheOccurrenceThatLacksAPlace) {
    Pair pair;
    const std::string map = pair.text.Add("REPRESENTATION_MAP(" + pair.origin + "," + pair.childShape + ")");
    const std::string first =
        pair.text.Add("MAPPED_ITEM(''," + map + "," + pair.text.Axes("(5.,0.,0.)") + ")");
    const std::string second =
        pair.text.Add("MAPPED_ITEM(''," + map + "," + pair.text.Axes("(7.,0.,0.)") + ")");
    pair.ParentShape(first + "," + second);
    for (int i = 0; i < 2; ++i) {
        pair.text.Add("NEXT_ASSEMBLY_USAGE_OCCURRENCE('1','',''," + pair.parent + "," + pair.child + ",$)");
    }
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, pair.text.Text());
    EXPECT_THAT(scene.Corners(), ElementsAre("5 0 0, 6 0 0, 5 1 0", "7 0 0, 8 0 0, 7 1 0"));
    EXPECT_THAT(scene.Losses(), ElementsAre());
}

TEST(Structure, AMappedItemAndAnOccurrenceWithItsPlaceAreOneUse) {
    Pair pair;
    const std::string target = pair.text.Axes("(5.,0.,0.)");
    const std::string map = pair.text.Add("REPRESENTATION_MAP(" + pair.origin + "," + pair.childShape + ")");
    const std::string item = pair.text.Add("MAPPED_ITEM(''," + map + "," + target + ")");
    const std::string shape = pair.ParentShape(item);
    pair.text.Use(pair.parent, pair.child, shape, pair.childShape, pair.origin, target);
    const TempFolder folder;
    EXPECT_THAT(PrepareText(folder, pair.text.Text()).Corners(), ElementsAre("5 0 0, 6 0 0, 5 1 0"));
}

TEST(Structure, WhatIsMappedOftenAndHasNoProductBecomesOne) {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string origin = text.Axes("(0.,0.,0.)");
    const std::string shape =
        text.Add("SHAPE_REPRESENTATION('tooth',(" + text.Triangle() + ")," + context + ")");
    const std::string map = text.Add("REPRESENTATION_MAP(" + origin + "," + shape + ")");
    std::string items;
    for (const char* const at : {"(0.,0.,0.)", "(2.,0.,0.)", "(4.,0.,0.)"}) {
        items += (items.empty() ? "" : ",") + text.Add("MAPPED_ITEM(''," + map + "," + text.Axes(at) + ")");
    }
    text.Shape(text.Product("comb"), items, context);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, text.Text());
    EXPECT_THAT(scene.Corners(), ElementsAre(kTriangle, "2 0 0, 3 0 0, 2 1 0", "4 0 0, 5 0 0, 4 1 0"));
    EXPECT_THAT(scene.products, ElementsAre("comb", "tooth"));
    EXPECT_EQ(scene.result.parts, 1u);
    EXPECT_EQ(scene.result.placedParts, 3u);
}

TEST(Structure, WhatIsMappedAndIsntThereIsNamed) {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string origin = text.Axes("(0.,0.,0.)");
    const std::string map = text.Add("REPRESENTATION_MAP(" + origin + ",#999)");
    const std::string first = text.Add("MAPPED_ITEM(''," + map + "," + origin + ")");
    const std::string second = text.Add("MAPPED_ITEM(''," + map + "," + origin + ")");
    text.Shape(text.Product("part"), text.Triangle() + "," + first + "," + second, context);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, text.Text());
    EXPECT_THAT(scene.Corners(), ElementsAre(kTriangle));
    EXPECT_THAT(scene.Losses(),
                ElementsAre("part: what it maps isn't in the file", "part: what it maps isn't in the file"));
}

TEST(Structure, AMirroredPlaceIsBakedIntoAPartOfItsOwn) {
    Pair pair;
    const std::string map = pair.text.Add("REPRESENTATION_MAP(" + pair.origin + "," + pair.childShape + ")");
    const std::string mirror = pair.text.Add(
        "CARTESIAN_TRANSFORMATION_OPERATOR_3D('','',''," + pair.text.Add("DIRECTION('',(1.,0.,0.))") + "," +
        pair.text.Add("DIRECTION('',(0.,-1.,0.))") + "," + pair.text.Add("CARTESIAN_POINT('',(0.,0.,0.))") +
        ",2.," + pair.text.Add("DIRECTION('',(0.,0.,1.))") + ")");
    const std::string item = pair.text.Add("MAPPED_ITEM(''," + map + "," + mirror + ")");
    const std::string plain =
        pair.text.Add("MAPPED_ITEM(''," + map + "," + pair.text.Axes("(5.,0.,0.)") + ")");
    pair.ParentShape(item + "," + plain);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, pair.text.Text());
    // Twice as large, y turned round, and the triangle the other way about, so that it still faces up.
    EXPECT_THAT(scene.Corners(), ElementsAre("0 0 0, 0 -2 0, 2 0 0", "5 0 0, 6 0 0, 5 1 0"));
    EXPECT_THAT(scene.products, ElementsAre("top", "part mirrored", "part"));
    EXPECT_EQ(scene.result.parts, 2u);
}

TEST(Structure, UnitsOfAllContextsBecomeThatOfTheTop) {
    ExchangeText text;
    const std::string inch = text.InchContext();
    const std::string metre = text.Context("$");
    const std::string parent = text.Product("top");
    const std::string child = text.Product("part");
    const std::string source = text.Axes("(0.,0.,0.)");
    const std::string childShape = text.Shape(child, source + "," + text.Triangle(), metre);
    const std::string target = text.Axes("(10.,0.,0.)");
    const std::string shape = text.Shape(parent, target, inch);
    text.Use(parent, child, shape, childShape, source, target);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, text.Text());
    EXPECT_THAT(scene.Corners(), ElementsAre("10 0 0, 49.37 0 0, 10 39.37 0"));
    EXPECT_THAT(ReadWholeFile(scene.result.output), HasSubstr("CONVERSION_BASED_UNIT('INCH',"));
}

TEST(Structure, AProductWithShapeAndComponentsShowsBoth) {
    Pair pair;
    const std::string target = pair.text.Axes("(10.,0.,0.)");
    const std::string shape = pair.ParentShape(target + "," + pair.text.Triangle("7."));
    pair.text.Use(pair.parent, pair.child, shape, pair.childShape, pair.origin, target);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, pair.text.Text());
    EXPECT_THAT(scene.Corners(), ElementsAre("0 0 7, 1 0 7, 0 1 7", "10 0 0, 11 0 0, 10 1 0"));
}

TEST(Structure, NamesBecomeWhatTheViewerTakesAndUnique) {
    ExchangeText text;
    const std::string context = text.Context();
    for (const char* const name : {"a, b ''c''", "a_ b c", "a_ b c", ""}) {
        text.Shape(text.Product(name), text.Triangle(), context);
    }
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, text.Text());
    EXPECT_EQ(scene.triangles.size(), 4u);
    EXPECT_THAT(scene.products, ElementsAre("top", "a_ b c", "a_ b c (2)", "a_ b c (3)", "name of it"));
}

TEST(Structure, AProductThatUsesItselfComesToAnEnd) {
    Pair pair;
    const std::string target = pair.text.Axes("(10.,0.,0.)");
    const std::string shape = pair.ParentShape(target);
    pair.text.Use(pair.parent, pair.child, shape, pair.childShape, pair.origin, target);
    pair.text.Use(pair.child, pair.parent, pair.childShape, shape, target, pair.origin);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, pair.text.Text());
    EXPECT_EQ(scene.triangles.size(), 1u);
    EXPECT_THAT(scene.Losses(), ElementsAre(HasSubstr("uses itself; that use is left out")));
}

TEST(Structure, ACircleBesideTheRootIsShownToo) {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string origin = text.Axes("(0.,0.,0.)");
    text.Shape(text.Product("root"), text.Triangle("0."), context);
    const std::string a = text.Product("a");
    const std::string b = text.Product("b");
    const std::string aShape = text.Shape(a, origin + "," + text.Triangle("1."), context);
    const std::string bShape = text.Shape(b, origin + "," + text.Triangle("2."), context);
    text.Use(a, b, aShape, bShape, origin, origin);
    text.Use(b, a, bShape, aShape, origin, origin);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, text.Text());
    EXPECT_THAT(scene.Corners(),
                ElementsAre("0 0 0, 1 0 0, 0 1 0", "0 0 1, 1 0 1, 0 1 1", "0 0 2, 1 0 2, 0 1 2"));
    EXPECT_THAT(scene.Losses(), ElementsAre("b: it uses itself; that use is left out"));
}

TEST(Structure, ADeepTreeIsNoFurtherThanAFlatOne) {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string origin = text.Axes("(0.,0.,0.)");
    const std::string target = text.Axes("(1.,0.,0.)");
    std::string child = text.Product("p0");
    std::string childShape = text.Shape(child, origin + "," + text.Triangle(), context);
    for (int i = 1; i < 300; ++i) {
        const std::string parent = text.Product("p" + std::to_string(i));
        const std::string shape = text.Shape(parent, target, context);
        text.Use(parent, child, shape, childShape, origin, target);
        child = parent;
        childShape = shape;
    }
    const TempFolder folder;
    EXPECT_THAT(PrepareText(folder, text.Text()).Corners(), ElementsAre("299 0 0, 300 0 0, 299 1 0"));
}

TEST(Structure, ColoursHangAtFacesItemsAndWhatThoseLinkTo) {
    ExchangeText text;
    const std::string context = text.Context();
    text.Add("COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.)))");
    const std::string exactFace = text.Add("ADVANCED_FACE('',(),$,.T.)");
    const std::string linked = text.Add("TRIANGULATED_FACE('',#" + std::to_string(4) + ",3,((0.,0.,1.))," +
                                        exactFace + ",(),((1,2,3)))");
    const std::string own = text.Triangle("1.");
    const std::string plain = text.Triangle("2.");
    const std::string solid = text.Add("TESSELLATED_SOLID('',(" + linked + "," + own + "," + plain + "),$)");
    const std::string below = text.Styled(solid, "0.,0.,1.");
    text.Styled(exactFace, "0.,1.,0.");
    text.Styled(own, "1.,0.,0.");
    text.Shape(text.Product("part"), solid, context);
    const TempFolder folder;
    EXPECT_THAT(PrepareText(folder, text.Text()).Colours(), ElementsAre("0 1 0 1", "1 0 0 1", "0 0 1 1"));
}

// Three uses of one product by mapped items; the first two are styled in the same colour.
TEST(Structure, AMappedItemColoursWhatHasNoColourOfItsOwn) {
    for (const bool isOwned : {false, true}) {
        ExchangeText text;
        const std::string context = text.Context();
        const std::string origin = text.Axes("(0.,0.,0.)");
        const std::string own = text.Triangle("1.");
        text.Styled(own, "0.,1.,0.");
        const std::string items = text.Triangle() + "," + own;
        const std::string inner =
            isOwned ? text.Shape(text.Product("part"), items, context)
                    : text.Add("SHAPE_REPRESENTATION('inner',(" + items + ")," + context + ")");
        const std::string map = text.Add("REPRESENTATION_MAP(" + origin + "," + inner + ")");
        std::string maps;
        for (const char* const at : {"(0.,0.,0.)", "(10.,0.,0.)", "(20.,0.,0.)"}) {
            const std::string item = text.Add("MAPPED_ITEM(''," + map + "," + text.Axes(at) + ")");
            if (at != std::string_view("(20.,0.,0.)")) { text.Styled(item, "1.,0.,0."); }
            maps += (maps.empty() ? "" : ",") + item;
        }
        text.Shape(text.Product("top"), maps, context);
        const TempFolder folder;
        const PreparedScene scene = PrepareText(folder, text.Text());
        EXPECT_THAT(scene.Colours(), ElementsAre("1 0 0 1", "0 1 0 1", "1 0 0 1", "0 1 0 1",
                                                 testing::Not("1 0 0 1"), "0 1 0 1"))
            << isOwned;
        EXPECT_EQ(scene.result.parts, 2u) << isOwned;
        EXPECT_EQ(scene.result.placedParts, 3u) << isOwned;
    }
}

TEST(Structure, OfThousandsOfColoursOfUsesTheFirstAreKept) {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string origin = text.Axes("(0.,0.,0.)");
    const std::string inner = text.Shape(text.Product("part"), text.Triangle(), context);
    const std::string map = text.Add("REPRESENTATION_MAP(" + origin + "," + inner + ")");
    std::string maps;
    for (int i = 0; i < 1010; ++i) {
        const std::string item = text.Add("MAPPED_ITEM(''," + map + "," + origin + ")");
        text.Styled(item, "0." + std::to_string(1000 + i) + ",0.,0.");
        maps += (maps.empty() ? "" : ",") + item;
    }
    text.Shape(text.Product("top"), maps, context);
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, text.Text());
    EXPECT_EQ(scene.result.parts, 1001u);
    EXPECT_EQ(scene.result.placedParts, 1010u);
    EXPECT_THAT(scene.Losses(), ElementsAre(HasSubstr("than can be kept apart")));
}

TEST(Structure, AStyleInTheContextOfAUseColoursThatUseAlone) {
    Pair pair;
    const std::string near = pair.text.Axes("(0.,0.,0.)");
    const std::string far = pair.text.Axes("(10.,0.,0.)");
    const std::string shape = pair.ParentShape(near + "," + far);
    const std::string face = "#" + std::to_string(std::stoi(pair.childShape.substr(1)) - 1);
    const std::string plain = pair.text.Styled(face, "0.,0.,1.");
    pair.text.Use(pair.parent, pair.child, shape, pair.childShape, pair.origin, near);
    pair.text.Use(pair.parent, pair.child, shape, pair.childShape, pair.origin, far);
    const std::string use = "#" + std::to_string(std::stoi(pair.text.Next().substr(1)) - 1);
    const std::string red = pair.text.Styled("$", "1.,0.,0.");
    const std::string usage = "#" + std::to_string(std::stoi(red.substr(1)) - 2);
    const std::string inUse = pair.text.Add("PRESENTATION_STYLE_BY_CONTEXT((" + usage + ")," + use + ")");
    pair.text.Add("OVER_RIDING_STYLED_ITEM('',(" + inUse + ")," + face + "," + plain + ")");
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, pair.text.Text());
    EXPECT_THAT(scene.Corners(), ElementsAre("0 0 0, 1 0 0, 0 1 0", "10 0 0, 11 0 0, 10 1 0"));
    EXPECT_THAT(scene.Colours(), ElementsAre("0 0 1 1", "1 0 0 1"));
    EXPECT_THAT(scene.products, ElementsAre("top", "part", "part (2)"));
}

// The "(" leads the reader on to the end of what is there.
TEST(Structure, AComplexStyleWhoseListHasNoEndIsNoStyle) {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string face = text.Triangle();
    text.Shape(text.Product("part"), face, context);
    text.Add("(REPRESENTATION_ITEM('')STYLED_ITEM((#1,(((,((" + face + ")OVER_RIDING_STYLED_ITEM($))");
    const TempFolder folder;
    EXPECT_THAT(PrepareText(folder, text.Text()).Corners(), ElementsAre(kTriangle));
}

TEST(Structure, TransparencyBecomesTheOpacityThatTheViewerReads) {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string face = text.Triangle();
    const std::string colour = text.Add("DRAUGHTING_PRE_DEFINED_COLOUR('cyan')");
    const std::string transparent = text.Add("SURFACE_STYLE_TRANSPARENT(0.75)");
    const std::string rendering = text.Add("SURFACE_STYLE_RENDERING_WITH_PROPERTIES(.NORMAL_SHADING.," +
                                           colour + ",(" + transparent + "))");
    const std::string side = text.Add("SURFACE_SIDE_STYLE('',(" + rendering + "))");
    const std::string usage = text.Add("SURFACE_STYLE_USAGE(.BOTH.," + side + ")");
    text.Add("STYLED_ITEM('',(" + usage + ")," + face + ")");
    text.Shape(text.Product("part"), face, context);
    const TempFolder folder;
    EXPECT_THAT(PrepareText(folder, text.Text()).Colours(), ElementsAre("0 1 1 0.25"));
}

} // namespace
} // namespace tarnwick::test
