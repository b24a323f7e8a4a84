#include "prepare/exchange_text.h"
#include "prepare/prepared_scene.h"

#include <gmock/gmock.h>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kTriangle = "0 0 0, 1 0 0, 0 1 0";

// A part whose shape lists the items.
std::string PartOf(ExchangeText* text, const std::string& items,
                   std::string_view keyword = "TESSELLATED_SHAPE_REPRESENTATION") {
    const std::string context = text->Context();
    text->Shape(text->Product("part"), items, context, keyword);
    return text->Text();
}

std::vector<std::string> CornersOf(ExchangeText text, const std::string& items) {
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, PartOf(&text, items));
    EXPECT_THAT(scene.Losses(), ElementsAre());
    EXPECT_EQ(scene.result.triangles, scene.triangles.size());
    return scene.Corners();
}

TEST(Tessellation, FacesHangUnderAnyItemOfTheShape) {
    ExchangeText text;
    const std::string face = text.Triangle();
    ExchangeText direct = text;
    EXPECT_THAT(CornersOf(direct, face), ElementsAre(kTriangle));
    for (const char* const holder : {"TESSELLATED_SOLID('',(", "TESSELLATED_SHELL('',("}) {
        ExchangeText held = text;
        const std::string item = held.Add(holder + face + "),$)");
        EXPECT_THAT(CornersOf(held, item), ElementsAre(kTriangle));
    }
    ExchangeText set = text;
    const std::string item = set.Add("TESSELLATED_GEOMETRIC_SET('',(" + face + "))");
    EXPECT_THAT(CornersOf(set, item), ElementsAre(kTriangle));
}

TEST(Tessellation, EveryKindOfFaceAndSetIsRead) {
    for (const char* const record :
         {"TRIANGULATED_FACE('',#1,4,$,$,(),((1,2,3),(1,3,4)))",
          "TRIANGULATED_FACE('',#1,4,$,$,(4,1,2,3),((2,3,4),(2,4,1)))",
          "TRIANGULATED_SURFACE_SET('',#1,4,((0.,0.,1.)),(),((1,2,3),(1,3,4)))",
          "COMPLEX_TRIANGULATED_FACE('',#1,4,$,$,(),(),((1,2,3,4)))",
          "COMPLEX_TRIANGULATED_FACE('',#1,4,((0.,0.,1.)),$,(2,3,1,4),((3,1,2)),((3,2,4)))",
          "COMPLEX_TRIANGULATED_SURFACE_SET('',#1,4,(),(),$,((1,2,3,4)))",
          "(GEOMETRIC_REPRESENTATION_ITEM()REPRESENTATION_ITEM('')TESSELLATED_FACE(#1,4,(),$)"
          "TESSELLATED_ITEM()TRIANGULATED_FACE((),((1,2,3),(1,3,4))))"}) {
        ExchangeText text;
        text.Add("COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.),(0.,1.,0.)))");
        const std::string face = text.Add(record);
        EXPECT_THAT(CornersOf(text, face), ElementsAre("0 0 0, 1 0 0, 1 1 0", "0 0 0, 1 1 0, 0 1 0"))
            << record;
    }
}

TEST(Tessellation, AnOddTriangleOfAStripIsTurnedRound) {
    ExchangeText text;
    text.Add("COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.),(1.,1.,0.)))");
    const std::string face = text.Add("COMPLEX_TRIANGULATED_FACE('',#1,4,$,$,(),((1,2,3,4)),())");
    EXPECT_THAT(CornersOf(text, face), ElementsAre("0 0 0, 1 0 0, 0 1 0", "0 1 0, 1 0 0, 1 1 0"));
}

TEST(Tessellation, NumbersAndListsMayHaveAnyLayout) {
    ExchangeText text;
    text.Add("COORDINATES_LIST ('' , 3 ,\n( ( 0 , 0. , +0.0E0 ) , /* a comment, with (parentheses) "
             "*/\n(1.E0,0.,0.\n),(0.,.1E+1,0.)"
             " ) )");
    const std::string face =
        text.Add("TRIANGULATED_FACE('it''s; #1=(',#1,3,\n((0.,0.,\n1.)),$,( ),( ( 1 , 2 ,\n 3 ) ) )");
    EXPECT_THAT(CornersOf(text, face), ElementsAre(kTriangle));
}

TEST(Tessellation, ARepositionedItemStandsWhereItsPlacementSays) {
    ExchangeText text;
    const std::string face = text.Triangle();
    const std::string axes = text.Axes("(10.,0.,0.)", "(1.,0.,0.)", "(0.,1.,0.)");
    const std::string item =
        text.Add("(GEOMETRIC_REPRESENTATION_ITEM()REPOSITIONED_TESSELLATED_ITEM(" + axes +
                 ")REPRESENTATION_ITEM('')TESSELLATED_GEOMETRIC_SET((" + face + "))TESSELLATED_ITEM())");
    EXPECT_THAT(CornersOf(text, item), ElementsAre("10 0 0, 10 1 0, 10 0 1"));
}

TEST(Tessellation, AFaceWithoutNormalsGetsItsOwn) {
    ExchangeText text;
    // Two triangles at a right angle share an edge, whose points become two each.
    text.Add("COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.),(0.,0.,1.)))");
    const std::string face = text.Add("TRIANGULATED_FACE('',#1,4,(),$,(),((1,2,3),(1,4,2)))");
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, PartOf(&text, face));
    const std::string written = ReadWholeFile(scene.result.output);
    EXPECT_THAT(written, HasSubstr("COORDINATES_LIST('',6,"));
    EXPECT_THAT(written, HasSubstr("(0.,0.,1.)"));
    EXPECT_THAT(written, HasSubstr("(0.,1.,0.)"));
}

TEST(Tessellation, NormalsOfAPlainFaceStayToTheDigit) {
    ExchangeText text;
    text.Add("COORDINATES_LIST('',3,((0.123456789,0.,0.),(1.,0.,0.),(0.,1.,0.)))");
    const std::string face =
        text.Add("TRIANGULATED_FACE('',#1,3,((0.1,0.2,0.97),(0.,0.,1.),(0.6,0.,0.8)),$,(),((1,2,3)))");
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, PartOf(&text, face));
    const std::string written = ReadWholeFile(scene.result.output);
    EXPECT_THAT(written, HasSubstr("((0.1,0.2,0.97),(0.,0.,1.),(0.6,0.,0.8))"));
    EXPECT_THAT(written, HasSubstr("(0.123456789,0.,0.)"));
}

TEST(Tessellation, NumbersThatTheFormatDoesntAllowBecomeOnesThatItDoes) {
    ExchangeText text;
    text.Add("COORDINATES_LIST('',3,((.25,-.5,+1.),(1.E0,0,2.5E-1),(0.,1.,0.)))");
    const std::string face = text.Add("TRIANGULATED_FACE('',#1,3,((0.,0.,1.)),$,(),((1,2,3)))");
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, PartOf(&text, face));
    EXPECT_THAT(ReadWholeFile(scene.result.output), HasSubstr("((0.25,-0.5,1.),(1.,0.,0.25),(0.,1.,0.))"));
}

TEST(Tessellation, FacesThatNumberOneListDirectlyGetTheirOwnPoints) {
    ExchangeText text;
    text.Add("COORDINATES_LIST('',6,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.),(0.,0.,5.),(1.,0.,5.),(0.,1.,5.)))");
    text.Add("TRIANGULATED_FACE('',#1,6,((0.,0.,1.)),$,(),((1,2,3)))");
    text.Add("TRIANGULATED_FACE('',#1,6,((0.,0.,1.)),$,(),((4,5,6)))");
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, PartOf(&text, "#2,#3"));
    EXPECT_THAT(scene.Corners(), ElementsAre(kTriangle, "0 0 5, 1 0 5, 0 1 5"));
    EXPECT_THAT(ReadWholeFile(scene.result.output), testing::Not(HasSubstr("COORDINATES_LIST('',6")));
}

TEST(Tessellation, ABezierPatchIsDrawnThroughItsCorners) {
    ExchangeText text;
    // A flat patch with its ten control points row by row.
    text.Add("COORDINATES_LIST('',10,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.),(2.,0.,0.),(1.,1.,0.),(0.,2.,0.),(3.,"
             "0.,0.),"
             "(2.,1.,0.),(1.,2.,0.),(0.,3.,0.)))");
    const std::string face =
        text.Add("CUBIC_BEZIER_TRIANGULATED_FACE('',#1,10,(),$,((1,2,3,4,5,6,7,8,9,10)))");
    const std::vector<std::string> corners = CornersOf(text, face);
    ASSERT_EQ(corners.size(), 16u);
    EXPECT_EQ(corners.front(), "0 0 0, 0.75 0 0, 0 0.75 0");
}

TEST(Tessellation, WhatIsBrokenIsNamedAndTheRestComes) {
    ExchangeText text;
    text.Add("COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.),(1.,1.)))");
    text.Add("TRIANGULATED_FACE('',#1,3,((0.,0.,1.)),$,(),((1,2,3),(1,2,9),(1,2)))");
    text.Add("TESSELLATED_SOLID('',(#2,#77),$)");
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, PartOf(&text, "#3"));
    EXPECT_THAT(scene.Corners(), ElementsAre(kTriangle));
    EXPECT_THAT(scene.Losses(), ElementsAre("part: a face isn't in the file",
                                            "part: the list of points is broken after 3 of them",
                                            "part: 2 of its lists of triangles are broken"));
    EXPECT_TRUE(scene.result.LacksShape());
}

TEST(Tessellation, SetsThatHoldEachOtherCometoAnEnd) {
    ExchangeText text;
    const std::string face = text.Triangle();
    text.Add("TESSELLATED_GEOMETRIC_SET('',(#4," + face + "))");
    text.Add("TESSELLATED_GEOMETRIC_SET('',(#3))");
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, PartOf(&text, "#3"));
    EXPECT_EQ(scene.triangles.size(), 1u);
    EXPECT_THAT(scene.Losses(), ElementsAre("part: it is a set that holds itself"));
}

// 8 to the power of 12 ways to the face.
TEST(Tessellation, SetsThatListOneAnotherAgainAndAgainComeToAnEnd) {
    ExchangeText text;
    std::string item = text.Triangle();
    for (int level = 0; level < 12; ++level) {
        std::string list = item;
        for (int i = 1; i < 8; ++i) { list += "," + item; }
        item = text.Add("TESSELLATED_GEOMETRIC_SET('',(" + list + "))");
    }
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, PartOf(&text, item));
    EXPECT_GE(scene.triangles.size(), 1u);
    EXPECT_THAT(scene.Losses(), ElementsAre("part: sets in it list the same faces too often"));
}

TEST(Tessellation, AnnotationsAreNoShape) {
    ExchangeText text;
    const std::string face = text.Triangle();
    const std::string note = text.Triangle("5.");
    const std::string set = text.Add("TESSELLATED_GEOMETRIC_SET('note',(" + note + "))");
    text.Add("TESSELLATED_ANNOTATION_OCCURRENCE('',()," + set + ")");
    const std::string complexNote = text.Triangle("6.");
    text.Add("(ANNOTATION_OCCURRENCE()DRAUGHTING_ANNOTATION_OCCURRENCE()GEOMETRIC_REPRESENTATION_ITEM()"
             "REPRESENTATION_ITEM('')"
             "STYLED_ITEM(()," +
             complexNote + "))");
    EXPECT_THAT(CornersOf(text, face + "," + set + "," + complexNote), ElementsAre(kTriangle));
}

TEST(Tessellation, ARepresentationWithoutProductCountsOnlyWhereNothingElseDoes) {
    ExchangeText alone;
    const std::string face = alone.Triangle();
    const std::string context = alone.Context();
    alone.Add("TESSELLATED_SHAPE_REPRESENTATION('',(" + face + ")," + context + ")");
    const TempFolder folder;
    EXPECT_THAT(PrepareText(folder, alone.Text()).Corners(), ElementsAre(kTriangle));
    const std::string other = alone.Triangle("3.");
    alone.Shape(alone.Product("part"), other, context);
    EXPECT_THAT(PrepareText(folder, alone.Text()).Corners(), ElementsAre("0 0 3, 1 0 3, 0 1 3"));
}

} // namespace
} // namespace tarnwick::test
