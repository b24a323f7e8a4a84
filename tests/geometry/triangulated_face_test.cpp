#include "geometry/face_outcome.h"
#include "platform/fail_fast.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kSquare = "#10=COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.),(0.,1.,0.)));";
const std::string kCoordsEnd = "<E> StepFaceB::TraiteCoords: Fin de fichier\n";
const std::string kTriangleEnd = "<E> StepFaceB::TraiteTriangle: Fin de fichier\n";
const std::string kArgumentEnd = "<E> StepFaceB::ArgumentSuivant: Fin de fichier\n";

// Reads one face, whose number is 11, on the square.
FaceOutcome Face(const std::string& line) {
    return FaceFile({kSquare, line}).Read(11);
}
FaceOutcome Complex(const std::string& strips, const std::string& fans) {
    return Face("#11=COMPLEX_TRIANGULATED_FACE('',#10,$,$,$,$," + strips + "," + fans + ");");
}
FaceOutcome Triangles(const std::string& triangles) {
    return Face("#11=TRIANGULATED_FACE('',#10,$,$,$,$," + triangles + ");");
}

TEST(TraiteFace, ReadsAFaceWithEverything) {
    const FaceOutcome face =
        Face("#11=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),#5,(1,2,3,4),((1,2,3),(1,3,4)));");
    EXPECT_EQ(face.result, 0);
    EXPECT_EQ(face.faceId, 11);
    EXPECT_EQ(face.exactFaceId, 5);
    EXPECT_EQ(face.pnmax, 4);
    EXPECT_EQ(face.vertexCount, 4);
    EXPECT_EQ(face.normalCount, 4);
    EXPECT_EQ(face.triangleCount, 2);
    EXPECT_THAT(face.vertices, ElementsAre(0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0));
    EXPECT_THAT(face.normals, ElementsAre(0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1));
    EXPECT_THAT(face.triangles, ElementsAre(0, 1, 2, 0, 2, 3));
    EXPECT_THAT(face.pnindex, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(face.box, ElementsAre(0, 1, 0, 1, 0, 0));
    EXPECT_EQ(face.output, "");
}

TEST(TraiteFace, PicksThePointsOfItsPnindex) {
    const FaceOutcome face = Face("#11=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),#5,(3,4),((1,2,1)));");
    EXPECT_EQ(face.result, 0);
    EXPECT_THAT(face.vertices, ElementsAre(1, 1, 0, 0, 1, 0));
    EXPECT_THAT(face.triangles, ElementsAre(0, 1, 0));
    EXPECT_THAT(face.pnindex, ElementsAre(2, 3));
    EXPECT_EQ(face.normalCount, 2);
    EXPECT_THAT(face.box, ElementsAre(0, 1, 1, 1, 0, 0)) << "of its own vertices";
}

TEST(TraiteFace, TakesAllPointsWithoutPnindex) {
    for (const std::string& line :
         std::vector<std::string>{"#11=TRIANGULATED_FACE('',#10,$,$,$,$,((1,2,3)));",
                                  "#11=TRIANGULATED_FACE('',#10,$,$,$,(),((1,2,3)));",
                                  "#11=TRIANGULATED_FACE('',#10,$,(),$,( ),((1,2,3)));",
                                  "#11=TRIANGULATED_FACE('',#10,$,$,$,($),((1,2,3)));"}) {
        const FaceOutcome face = Face(line);
        EXPECT_EQ(face.result, 0) << line;
        EXPECT_EQ(face.vertexCount, 4) << line;
        EXPECT_EQ(face.normalCount, 0) << line;
        EXPECT_THAT(face.normals, IsEmpty()) << line;
        EXPECT_THAT(face.pnindex, IsEmpty()) << line;
        EXPECT_THAT(face.triangles, ElementsAre(0, 1, 2)) << line;
        EXPECT_EQ(face.exactFaceId, 0) << line;
        EXPECT_EQ(face.pnmax, 0) << line;
    }
}

TEST(TraiteFace, TurnsEveryOtherTriangleOfAStrip) {
    EXPECT_THAT(Complex("((1,2,3,4))", "$").triangles, ElementsAre(0, 1, 2, 3, 2, 1));
    EXPECT_THAT(Complex("((1,2,3,4,1))", "$").triangles, ElementsAre(0, 1, 2, 3, 2, 1, 2, 3, 0));
}

TEST(TraiteFace, StartsEachStripOnAPositiveTurn) {
    EXPECT_THAT(Complex("((1,2,3,4),(1,2,3))", "$").triangles, ElementsAre(0, 1, 2, 3, 2, 1, 0, 1, 2));
}

TEST(TraiteFace, SpreadsAFanFromItsFirstPoint) {
    EXPECT_THAT(Complex("$", "((1,2,3,4))").triangles, ElementsAre(0, 1, 2, 0, 2, 3));
}

TEST(TraiteFace, PutsAllStripsAheadOfAllFans) {
    EXPECT_THAT(Complex("((1,2,3))", "((4,3,2))").triangles, ElementsAre(0, 1, 2, 3, 2, 1));
}

TEST(TraiteFace, HasNoTrianglesWithoutStripsAndFans) {
    for (const std::string& strips : std::vector<std::string>{"$", "()", "( )"}) {
        for (const std::string& fans : std::vector<std::string>{"$", "()"}) {
            const FaceOutcome face = Complex(strips, fans);
            EXPECT_EQ(face.result, 0);
            EXPECT_EQ(face.triangleCount, 0);
            EXPECT_EQ(face.vertexCount, 4);
        }
    }
}

TEST(TraiteFace, ReadsOnBehindAStripOfTwoValues) {
    EXPECT_THAT(Complex("((1,2),(2,3,4),(1))", "((1,2),(1,3,4))").triangles, ElementsAre(1, 2, 3, 0, 2, 3));
}

TEST(TraiteFace, ReadsABlankBeforeTheNextStripAsAValueOfZero) {
    EXPECT_THAT(Complex("((1,2,3), (2,3,4))", "$").triangles, ElementsAre(0, 1, 2, 4294967295u, 2, 3))
        << "the blank, the parenthesis and the first value convert to 0";
}

TEST(TraiteFace, HasNoLinkInASurfaceSet) {
    const FaceOutcome face =
        Face("#11=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4,((0.,0.,1.)),(1,2,3),((1,2,3)),((3,2,1)));");
    EXPECT_EQ(face.result, 0);
    EXPECT_EQ(face.exactFaceId, 0);
    EXPECT_THAT(face.pnindex, ElementsAre(0, 1, 2));
    EXPECT_THAT(face.triangles, ElementsAre(0, 1, 2, 2, 1, 0));
}

TEST(TraiteFace, ReturnsOneForMoreNormalsThanVertices) {
    const FaceOutcome face =
        Face("#11=TRIANGULATED_FACE('',#10,4,((0.,0.,1.),(0.,1.,0.),(1.,0.,0.)),$,(1,2),((1,2,1)));");
    EXPECT_EQ(face.result, 1);
    EXPECT_EQ(face.output, "");
    EXPECT_EQ(face.problem, "");
    EXPECT_EQ(face.vertexCount, 2) << "the record is complete all the same";
    EXPECT_EQ(face.normalCount, 3);
    EXPECT_THAT(face.triangles, ElementsAre(0, 1, 0));
}

TEST(TraiteFace, AcceptsFewerNormalsThanVertices) {
    const FaceOutcome face =
        Face("#11=TRIANGULATED_FACE('',#10,4,((0.,0.,1.),(0.,1.,0.)),$,(1,2,3),((1,2,3)));");
    EXPECT_EQ(face.result, 0);
    EXPECT_EQ(face.normalCount, 2);
    EXPECT_THAT(face.normals, ElementsAre(0, 0, 1, 0, 1, 0));
    EXPECT_EQ(face.vertexCount, 3);
}

TEST(TraiteFace, RepeatsOneNormalForOneVertexToo) {
    const FaceOutcome face = Face("#11=TRIANGULATED_FACE('',#10,4,((0.,0.,2.)),$,(1),((1,1,1)));");
    EXPECT_EQ(face.result, 0);
    EXPECT_THAT(face.normals, ElementsAre(0, 0, 2)) << "as read, not normalised";
}

TEST(TraiteFace, SkipsBlanksInsideATriple) {
    const FaceOutcome face = FaceFile({"#10=COORDINATES_LIST('', 1, ( ( 1. , 2.,\t3. )));",
                                       "#11=TRIANGULATED_FACE('', #10, 4, $, $, $, ( ( 1, 1,1 ) ));"})
                                 .Read(11);
    EXPECT_EQ(face.result, 0);
    EXPECT_THAT(face.vertices, ElementsAre(1, 2, 3));
    EXPECT_THAT(face.triangles, ElementsAre(0, 0, 0));
}

TEST(TraiteFace, ReadsAValueBehindALineFeedAsZero) {
    const FaceOutcome face = FaceFile({"#10=COORDINATES_LIST('',2,((1.,2.,\n3.),(4.,\n5.,6.)));",
                                       "#11=TRIANGULATED_FACE('',#10,$,$,$,$,((1,2,1)));"})
                                 .Read(11);
    EXPECT_EQ(face.result, 0);
    EXPECT_EQ(face.output, "") << "the walk for the parenthesis doesn't care";
    EXPECT_THAT(face.vertices, ElementsAre(1, 2, 0, 4, 0, 6));
}

TEST(TraiteFace, ReadsAnIndexBehindALineFeedAsItIs) {
    EXPECT_THAT(Triangles("((1,2,\n3))").triangles, ElementsAre(0, 1, 2));
}

TEST(TraiteFace, SaysWhenPointsAreBrokenBetweenTriples) {
    const FaceOutcome face = FaceFile({"#10=COORDINATES_LIST('',2,((1.,2.,3.),\n(4.,5.,6.)));",
                                       "#11=TRIANGULATED_FACE('',#10,$,$,$,$,((1,2,1)));"})
                                 .Read(11);
    EXPECT_EQ(face.result, 0) << "what was read stays";
    EXPECT_EQ(face.output, kCoordsEnd);
    EXPECT_THAT(face.vertices, ElementsAre(1, 2, 3));
}

TEST(TraiteFace, SaysWhenTrianglesAreBroken) {
    const FaceOutcome face = Triangles("((1,2,3),\n(1,3,4))");
    EXPECT_EQ(face.result, 0);
    EXPECT_EQ(face.output, kTriangleEnd);
    EXPECT_THAT(face.triangles, ElementsAre(0, 1, 2));
}

TEST(TraiteFace, MarksTheLineOfABrokenList) {
    FaceFile file({kSquare, "#11=TRIANGULATED_FACE('',#10,$,$,$,$,((1,2,3),\n(1,3,4)));"});
    const std::string before = file.Text();
    file.Read(11);
    std::string expected = before;
    expected[before.find("#11=")] = '\0';
    EXPECT_EQ(file.Text(), expected);
}

TEST(TraiteFace, LeavesTheTextOfAGoodFaceAsItIs) {
    FaceFile file({kSquare, "#11=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),#5,(1,2,3,4),((1,2,3)));"});
    const std::string before = file.Text();
    file.Read(11);
    EXPECT_EQ(file.Text(), before);
}

TEST(TraiteFace, FailsWhenTheLineEndsBehindPnmax) {
    const FaceOutcome face = Face("#11=TRIANGULATED_FACE('',#10,4 \n,$,$,$,((1,2,3)));");
    EXPECT_EQ(face.result, -1);
    EXPECT_EQ(face.output, kArgumentEnd);
    EXPECT_EQ(face.problem, "") << "the message was the face reader's own";
    const FaceOutcome behindComma = Face("#11=TRIANGULATED_FACE('',#10,4,\n$,$,$,((1,2,3)));");
    EXPECT_EQ(behindComma.result, -1);
    EXPECT_EQ(behindComma.output, kArgumentEnd);
}

TEST(TraiteFace, FailsWhenTheLineEndsBeforeTheTriangles) {
    const FaceOutcome face = Face("#11=TRIANGULATED_FACE('',#10,4,$,$,$,\n((1,2,3)));");
    EXPECT_EQ(face.output, kArgumentEnd);
    EXPECT_EQ(face.result, -1) << "there is no list of triangles to read";
}

TEST(TraiteFace, FailsWhenTheLineEndsBetweenStripsAndFans) {
    const FaceOutcome face = Face("#11=COMPLEX_TRIANGULATED_FACE('',#10,4,$,$,$,((1,2,3)),\n((1,2,3)));");
    EXPECT_EQ(face.output, kArgumentEnd);
    EXPECT_EQ(face.result, -1);
}

TEST(TraiteFace, FailsWhenThePnindexIsBroken) {
    const FaceOutcome face = Face("#11=TRIANGULATED_FACE('',#10,4,$,$,(1,2,\n3),((1,2,3)));");
    EXPECT_EQ(face.output, kArgumentEnd) << "the walk goes back two places from the start of the line";
    EXPECT_EQ(face.result, -1);
}

TEST(TraiteFace, GivesUpOnAListOfStripsThatStartsOverForEver) {
    // Without a ")" ahead of the break, the walk from the line's start comes to it again and again.
    const FaceOutcome face = Face("#11=COMPLEX_TRIANGULATED_FACE('',#10,4,$,$,$,((1,2,3,\n4)),$);");
    EXPECT_EQ(face.result, -1);
    EXPECT_NE(face.problem, "");
}

TEST(TraiteFace, LooksForTheCoordinatesInANameWithAComma) {
    const FaceOutcome number = Face("#11=TRIANGULATED_FACE('a,b #10',#10,4,$,$,$,((1,2,3)));");
    EXPECT_EQ(number.vertexCount, 4) << "by the number in the name";
    const FaceOutcome none = Face("#11=TRIANGULATED_FACE('a,b',#10,4,$,$,$,((1,2,3)));");
    EXPECT_NE(none.result, 0) << "-1 instead of a number: no list";
}

TEST(TraiteFace, CountsPnmaxInTheFirstHundredCharacters) {
    // The digits of pnmax start `after` characters from the line's start.
    const auto line = [](std::size_t after) {
        std::string text = "#11=TRIANGULATED_FACE('',#10,";
        text.insert(text.find("''") + 1, after - text.size(), 'n');
        return text + "1234,$,$,$,((1,2,3)));";
    };
    EXPECT_EQ(Face(line(95)).pnmax, 1234);
    EXPECT_EQ(Face(line(96)).pnmax, 1234);
    EXPECT_EQ(Face(line(97)).pnmax, 123);
    EXPECT_EQ(Face(line(99)).pnmax, 1);
    for (const std::size_t after : {100u, 101u, 150u}) {
        const FaceOutcome face = Face(line(after));
        EXPECT_EQ(face.pnmax, 0);
        EXPECT_EQ(face.result, 0);
        EXPECT_EQ(face.vertexCount, 4) << "the same face";
        EXPECT_THAT(face.triangles, ElementsAre(0, 1, 2));
    }
}

TEST(TraiteFace, DoesNotNeedPnmaxToBeRight) {
    for (const std::string& pnmax :
         std::vector<std::string>{"0", "1", "4", "1000000000", "-3", "99999999999999"}) {
        const FaceOutcome face = Face("#11=TRIANGULATED_FACE('',#10," + pnmax +
                                      ",((0.,0.,1.),(0.,0.,1.),(0.,0.,1.),(0.,0.,1.)),$,$,((1,2,3)));");
        EXPECT_EQ(face.result, 0) << pnmax;
        EXPECT_EQ(face.vertexCount, 4) << pnmax;
        EXPECT_EQ(face.normalCount, 4) << pnmax;
    }
    EXPECT_EQ(Face("#11=TRIANGULATED_FACE('',#10,-3,$,$,$,((1,2,3)));").pnmax, 3);
    EXPECT_EQ(Face("#11=TRIANGULATED_FACE('',#10, 7,$,$,$,((1,2,3)));").pnmax, 7);
    EXPECT_EQ(Face("#11=TRIANGULATED_FACE('',#10,99999999999999,$,$,$,((1,2,3)));").pnmax, INT32_MAX);
}

TEST(TraiteFaceDeathTest, EndsTheProcessAtFifteenDigits) {
    EXPECT_EXIT(Face("#11=TRIANGULATED_FACE('',#10,000000000000004,$,$,$,((1,2,3)));"),
                testing::ExitedWithCode(kFailFastStatus), "^$");
    EXPECT_EXIT(Face("#11=TRIANGULATED_FACE('',#000000000000010,4,$,$,$,((1,2,3)));"),
                testing::ExitedWithCode(kFailFastStatus), "^$");
    EXPECT_EXIT(Face("#11=TRIANGULATED_FACE('',#10,4,$,#000000000000005,$,((1,2,3)));"),
                testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(TraiteFace, TakesFourteenDigits) {
    const FaceOutcome face =
        Face("#11=TRIANGULATED_FACE('',#00000000000010,00000000000004,$,#00000000000005,$,((1,2,3)));");
    EXPECT_EQ(face.result, 0);
    EXPECT_EQ(face.pnmax, 4);
    EXPECT_EQ(face.exactFaceId, 5);
    EXPECT_EQ(face.vertexCount, 4);
}

TEST(TraiteFace, FindsAReferenceWithinAHundredCharacters) {
    const std::string start = "#11=TRIANGULATED_FACE('',";
    const std::string rest = "#10,4,$,$,$,((1,2,3)));";
    EXPECT_EQ(Face(start + std::string(100, ' ') + rest).vertexCount, 4);
    EXPECT_NE(Face(start + std::string(101, ' ') + rest).result, 0) << "no digits where the walk stopped";
}

TEST(TraiteFace, HasNoLinkWhereNoReferenceStands) {
    EXPECT_EQ(Face("#11=TRIANGULATED_FACE('',#10,4,$, #7,$,((1,2,3)));").exactFaceId, 7);
    EXPECT_EQ(Face("#11=TRIANGULATED_FACE('',#10,4,$,#,$,((1,2,3)));").exactFaceId, 0);
    EXPECT_EQ(Face("#11=TRIANGULATED_FACE('',#10,4,$,*,$,((1,2,3)));").exactFaceId, 0);
}

TEST(TraiteFace, DoesNotTestTheIndicesOfTriangles) {
    EXPECT_THAT(Triangles("((0,5,-1))").triangles, ElementsAre(4294967295u, 4, 4294967294u));
    EXPECT_THAT(Triangles("((12345678,2147483647,99999999999))").triangles,
                ElementsAre(12345677, 2147483646, 2147483646));
}

TEST(TraiteFace, ReadsNumbersOfEveryForm) {
    const FaceOutcome face =
        FaceFile({"#10=COORDINATES_LIST('',3,((1.5E3,-0.,.5),(1.E-9,+7.,1E400),(2.E400,$,x)));",
                  "#11=TRIANGULATED_FACE('',#10,$,$,$,$,((1,2,3)));"})
            .Read(11);
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_THAT(face.vertices, ElementsAre(1500, 0, 0.5f, 0, 7, infinity, infinity, 0, 0));
    EXPECT_TRUE(std::signbit(face.vertices[1]));
}

TEST(TraiteFace, ReadsATripleOfTwoValuesIntoTheNext) {
    EXPECT_THAT(Triangles("((1,2),(3,4,5))").triangles, ElementsAre(0, 1, 4294967295u, 2, 3, 4))
        << "the second comma is that between the triples";
}

TEST(TraiteFace, FailsWithoutCoordinates) {
    for (const std::string& pnindex : std::vector<std::string>{"$", "(1,2)"}) {
        const FaceOutcome face = Face("#11=TRIANGULATED_FACE('',#99,4,$,$," + pnindex + ",((1,2,1)));");
        EXPECT_EQ(face.result, -1);
        EXPECT_NE(face.problem, "");
    }
}

TEST(TraiteFace, FailsWithoutVertices) {
    const FaceOutcome face =
        FaceFile({"#10=COORDINATES_LIST('',0,$);", "#11=TRIANGULATED_FACE('',#10,4,$,$,$,((1,2,1)));"})
            .Read(11);
    EXPECT_EQ(face.result, -1);
    EXPECT_NE(face.problem, "");
}

TEST(TraiteFace, FailsAtAPnindexOutsideTheList) {
    for (const std::string& pnindex : std::vector<std::string>{"(5)", "(0)", "(-1)", "(1,2147483647)",
                                                               "(-2147483648)", "(1,99999999999)"}) {
        const FaceOutcome face = Face("#11=TRIANGULATED_FACE('',#10,4,$,$," + pnindex + ",((1,2,1)));");
        EXPECT_EQ(face.result, -1) << pnindex;
        EXPECT_NE(face.problem, "") << pnindex;
    }
}

TEST(TraiteFace, GrowsItsArraysAsFarAsTheListGoes) {
    std::string points = "#10=COORDINATES_LIST('',5000,(";
    std::string normals = "(";
    std::string triangles = "(";
    std::string pnindex = "(";
    for (int i = 0; i < 5000; ++i) {
        const std::string comma = i > 0 ? "," : "";
        points += comma + "(" + std::to_string(i) + ".,0.,0.)";
        normals += comma + "(0.,0.," + std::to_string(i) + ".)";
        triangles += comma + "(1,2," + std::to_string(i + 1) + ")";
        pnindex += comma + std::to_string(5000 - i);
    }
    FaceFile file({points + "));", "#11=TRIANGULATED_FACE('',#10,3," + normals + "),$," + pnindex + ")," +
                                       triangles + "));"});
    const FaceOutcome face = file.Read(11);
    EXPECT_EQ(face.result, 0);
    ASSERT_EQ(face.vertexCount, 5000);
    ASSERT_EQ(face.normalCount, 5000);
    ASSERT_EQ(face.triangleCount, 5000);
    EXPECT_EQ(face.vertices[0], 4999);
    EXPECT_EQ(face.vertices[3 * 4999], 0);
    EXPECT_EQ(face.normals[3 * 4999 + 2], 4999);
    EXPECT_EQ(face.triangles[3 * 4999 + 2], 4999u);
}

// The list of points that several faces share.

const std::string kOther = "#9=COORDINATES_LIST('',2,((7.,7.,7.),(8.,8.,8.)));";

std::string Indexed(int id, int list) {
    return "#" + std::to_string(id) + "=TRIANGULATED_FACE('',#" + std::to_string(list) +
           ",4,$,$,(2,1),((1,2,1)));";
}
std::string Whole(int id, int list) {
    return "#" + std::to_string(id) + "=TRIANGULATED_FACE('',#" + std::to_string(list) +
           ",4,$,$,$,((1,2,1)));";
}

TEST(CoordCache, ServesFacesOfOneListAndOfAlternatingLists) {
    FaceFile file({kSquare, kOther, Indexed(11, 10), Indexed(12, 10), Indexed(13, 9), Indexed(14, 10),
                   Whole(15, 10), Whole(16, 9), Indexed(17, 10)});
    for (const int id : {11, 12, 14, 17}) {
        EXPECT_THAT(file.Read(id).vertices, ElementsAre(1, 0, 0, 0, 0, 0)) << id;
    }
    EXPECT_THAT(file.Read(13).vertices, ElementsAre(8, 8, 8, 7, 7, 7));
    EXPECT_EQ(file.Read(15).vertexCount, 4);
    EXPECT_THAT(file.Read(16).vertices, ElementsAre(7, 7, 7, 8, 8, 8));
    EXPECT_THAT(file.Read(13).vertices, ElementsAre(8, 8, 8, 7, 7, 7));
    EXPECT_THAT(file.Read(17).vertices, ElementsAre(1, 0, 0, 0, 0, 0));
}

TEST(CoordCache, DoesNotTakeTheListOfNumberZeroForOneThatIsHeld) {
    FaceFile file({"#0=COORDINATES_LIST('',2,((7.,7.,7.),(8.,8.,8.)));", Whole(11, 0), Whole(12, 0)});
    EXPECT_THAT(file.Read(11).vertices, ElementsAre(7, 7, 7, 8, 8, 8));
    EXPECT_THAT(file.Read(12).vertices, ElementsAre(7, 7, 7, 8, 8, 8));
}

const std::string kBroken = "#8=COORDINATES_LIST('',3,((1.,1.,1.),(2.,2.,2.),\n(3.,3.,3.)));";

TEST(CoordCache, SaysOnceThatAListIsBrokenToFacesThatPickFromIt) {
    FaceFile file({kBroken, Indexed(11, 8), Indexed(12, 8)});
    EXPECT_EQ(file.Read(11).output, kCoordsEnd);
    EXPECT_EQ(file.Read(12).output, "");
    EXPECT_THAT(file.Read(12).vertices, ElementsAre(2, 2, 2, 1, 1, 1));
}

TEST(CoordCache, LetsEachFaceWithoutPnindexReadABrokenListAgain) {
    FaceFile file({kBroken, Whole(11, 8), Whole(12, 8)});
    EXPECT_EQ(file.Read(11).output, kCoordsEnd);
    EXPECT_EQ(file.Read(12).output, kCoordsEnd);
}

TEST(CoordCache, IsNotFilledByAFaceWithoutPnindex) {
    FaceFile file({kBroken, Whole(11, 8), Indexed(12, 8)});
    EXPECT_EQ(file.Read(11).output, kCoordsEnd);
    EXPECT_EQ(file.Read(12).output, kCoordsEnd) << "the first face that picks reads the list itself";
}

TEST(CoordCache, IsKeptOverAFaceWithoutPnindex) {
    FaceFile file({kBroken, kSquare, Indexed(11, 8), Whole(12, 10), Indexed(13, 8)});
    EXPECT_EQ(file.Read(11).output, kCoordsEnd);
    EXPECT_EQ(file.Read(12).output, "");
    EXPECT_EQ(file.Read(13).output, "") << "the list is still held";
}

TEST(CoordCache, ReadsABrokenListAgainAfterAnother) {
    FaceFile file({kBroken, kSquare, Indexed(11, 8), Indexed(12, 10), Indexed(13, 8)});
    EXPECT_EQ(file.Read(11).output, kCoordsEnd);
    EXPECT_EQ(file.Read(12).output, "");
    EXPECT_EQ(file.Read(13).output, kCoordsEnd);
}

TEST(CoordCache, SaysAgainThatAListIsBrokenThatItHasKept) {
    FaceFile file({kBroken, kSquare, Indexed(11, 8), Indexed(12, 10)});
    for (int turn = 0; turn < 4; ++turn) {
        const FaceOutcome broken = file.Read(11);
        EXPECT_EQ(broken.output, kCoordsEnd) << turn;
        EXPECT_THAT(broken.vertices, ElementsAre(2, 2, 2, 1, 1, 1));
        EXPECT_EQ(file.Read(12).output, "");
    }
}

TEST(CoordCache, KeepsNoListThatLeavesItsLine) {
    FaceFile file(
        {"#8=COORDINATES_LIST('',2,((1.,1.,\n1.),(2.,2.,2.)));", kSquare, Indexed(11, 8), Indexed(12, 10)});
    for (int turn = 0; turn < 4; ++turn) {
        EXPECT_THAT(file.Read(11).vertices, ElementsAre(2, 2, 2, 1, 1, 0)) << turn;
        EXPECT_EQ(file.Read(12).result, 0);
    }
}

} // namespace
} // namespace tarnwick::test
