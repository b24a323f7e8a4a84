#include "check/checked.h"

#include "support/p21_text.h"

namespace tarnwick::test {
namespace {

TEST(CheckPart, TellsOfExactShapeAlone) {
    const std::string faces =
        P21Text({"#1=PRODUCT('P','','',());", "#2=ADVANCED_FACE();", "#3=ADVANCED_FACE();"});
    EXPECT_THAT(Findings(faces), ElementsAre("exact-only 9 #2"));
    EXPECT_THAT(Texts(faces), ElementsAre("2 exact faces, in no solid or surface, without tessellation"));
    const std::string solid =
        P21Text({"#1=PRODUCT('P','','',());", "#2=MANIFOLD_SOLID_BREP('',#3);", "#3=CLOSED_SHELL('',());"});
    EXPECT_THAT(Findings(solid), ElementsAre("exact-only 9 #2"));
    EXPECT_THAT(Texts(solid), ElementsAre("1 exact solid isn't drawn, since it has no tessellation"));
}

TEST(CheckPart, TellsOfExactShapeThatNoTessellationStandsFor) {
    const std::string linked =
        EditedIn(Edited("(#30,#31),$)", "(#30,#31),#7)"),
                 "#9=", "#6=CLOSED_SHELL('',());\n#7=MANIFOLD_SOLID_BREP('',#6);\n#9=");
    EXPECT_THAT(Findings(linked), IsEmpty());
    const std::string more = EditedIn(linked, "#9=", "#8=MANIFOLD_SOLID_BREP('',#6);\n#9=");
    EXPECT_THAT(Findings(more), ElementsAre("exact-only 12 #8"));
    EXPECT_THAT(Texts(more), ElementsAre("1 exact solid has no tessellation that stands for it"));
    EXPECT_THAT(Findings(EditedIn(more, "(#30,#31),#7)", "(#30,#31),$)")), IsEmpty())
        << "what a solid without link stands for isn't known";
}

TEST(CheckPart, TellsOfAFileWithoutShapes) {
    EXPECT_THAT(Findings(P21Text({"#1=PRODUCT('P','','',());"})), ElementsAre("no-shape"));
}

TEST(CheckPart, TellsOfAFileWithoutProduct) {
    EXPECT_THAT(Findings(Edited("#1=PRODUCT(", "#1=PRODUKT(")), ElementsAre("no-product"));
}

TEST(CheckPart, TellsOfRepresentationsThatDontCount) {
    EXPECT_THAT(Findings(Edited("#9=", "#3=TESSELLATED_SHAPE_REPRESENTATION('',(#22),#9);\n#9=")),
                ElementsAre("several-representations 9 #2"));
    EXPECT_THAT(Findings(Edited("#9=", "#3=TESSELLATED_SHAPE_REPRESENTATION('',(#20,#22),#9);\n#9=")),
                IsEmpty())
        << "nothing is lost with it";
    EXPECT_THAT(Findings(Edited("#2=TESS", "#3=TESSELLATED_SHAPE_REPRESENTATION('',(#10),#9);\n#2=TESS")),
                IsEmpty())
        << "points alone are no shape";
}

TEST(CheckPart, TellsOfATriangulatedSurfaceSet) {
    EXPECT_THAT(Findings(Edited("COMPLEX_TRIANGULATED_SURFACE_SET", "TRIANGULATED_SURFACE_SET")),
                ElementsAre("not-drawn 13 #22"));
}

TEST(CheckPart, TellsOfAFaceDirectlyUnderTheRepresentation) {
    const std::string text = EditedIn(Edited("(#20,#22)", "(#20,#22,#31)"), "(#30,#31)", "(#30)");
    EXPECT_THAT(Findings(text), ElementsAre("not-drawn 15 #31"));
    EXPECT_THAT(Texts(text),
                ElementsAre("COMPLEX_TRIANGULATED_FACE directly under the representation isn't drawn"));
}

TEST(CheckPart, TellsOfOtherItems) {
    EXPECT_THAT(Findings(EditedIn(Edited("(#20,#22)", "(#20,#22,#8)"), "#9=", "#8=TESSELLATED_WIRE();\n#9=")),
                ElementsAre("not-drawn 10 #8"));
    EXPECT_THAT(
        Findings(EditedIn(Edited("(#20,#22)", "(#20,#22,#8)"), "#9=", "#8=AXIS2_PLACEMENT_3D();\n#9=")),
        IsEmpty())
        << "a placement is no shape";
}

TEST(CheckPart, TellsOfASetInAContainer) {
    EXPECT_THAT(Findings(EditedIn(Edited("(#20,#22)", "(#20)"), "(#30,#31)", "(#30,#31,#22)")),
                ElementsAre("not-drawn 13 #22"));
}

TEST(CheckPart, TellsOfShapesThatNothingLists) {
    EXPECT_THAT(Findings(Edited("(#20,#22)", "(#20)")), ElementsAre("not-listed 13 #22"));
    EXPECT_THAT(Findings(Edited("(#20,#22)", "(#22)")), ElementsAre("not-listed 12 #20"))
        << "its faces aren't told one by one";
    EXPECT_THAT(Findings(Edited("(#30,#31)", "(#30)")), ElementsAre("not-listed 15 #31"));
}

TEST(CheckPart, TellsOfListsBrokenOverLines) {
    EXPECT_THAT(Findings(Edited("(#20,#22)", "(#20,\n#22)")), ElementsAre("broken-list 9 #2"));
    EXPECT_THAT(Findings(Edited("(#30,#31)", "(\r\n#30,#31)")), ElementsAre("broken-list 12 #20"));
    EXPECT_THAT(Findings(Edited("(1.,0.,0.)", "\n(1.,0.,0.)")), ElementsAre("broken-list 11 #10"));
    EXPECT_THAT(Findings(Edited("((1,2,3),(1,3,4))", "((1,2,3),\n(1,3,4))")),
                ElementsAre("broken-list 14 #30"));
    EXPECT_THAT(Findings(Edited("(1,2,3,4),((1,2,3),", "\n(1,2,3,4),\n((1,2,3),")),
                ElementsAre("broken-list 14 #30"))
        << "the first break is named";
    EXPECT_THAT(Findings(Edited("(1,2,3,4),(1,2,3)", "(1,2,3,4),(1,\n2,3)")),
                ElementsAre("broken-list 13 #22"));
}

TEST(CheckPart, LeavesBreaksAloneThatDoNoHarm) {
    EXPECT_THAT(Findings(Edited("(#20,#22)", "\n(#20,#22\n)\n")), IsEmpty());
    EXPECT_THAT(Findings(Edited("COORDINATES_LIST('',4,", "COORDINATES_LIST('',\n4,\n")), IsEmpty());
    EXPECT_THAT(Findings(Edited("TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),$",
                                "TRIANGULATED_FACE(\n'',#10,4,((0.,0.,1.)),$")),
                IsEmpty());
}

TEST(CheckPart, TellsOfNamesWithCommas) {
    EXPECT_THAT(Findings(Edited("#30=TRIANGULATED_FACE('',", "#30=TRIANGULATED_FACE('a,b',")),
                ElementsAre("name 14 #30"));
    EXPECT_THAT(Findings(Edited("#30=TRIANGULATED_FACE('',", "#30=TRIANGULATED_FACE('a b',")), IsEmpty());
    EXPECT_THAT(Findings(Edited("COORDINATES_LIST('',", "COORDINATES_LIST('a,b,(c)',")),
                ElementsAre("name 11 #10"));
    EXPECT_THAT(Findings(Edited("COORDINATES_LIST('',", "COORDINATES_LIST('a,b,c',")), IsEmpty())
        << "the list is found all the same";
}

TEST(CheckPart, TellsOfAParenthesisThatIsTakenForTheList) {
    EXPECT_THAT(Findings(Edited("TESSELLATED_SOLID('',", "TESSELLATED_SOLID('a,(b)',")),
                ElementsAre("name 12 #20", "not-listed 14 #30", "not-listed 15 #31"));
    EXPECT_THAT(Findings(Edited("TESSELLATED_SOLID('',", "TESSELLATED_SOLID('(a) b',")), IsEmpty());
}

TEST(CheckPart, TellsOfBlanksBetweenStrips) {
    EXPECT_THAT(Findings(Edited("(1,2,3,4),(1,2,3)", "(1,2,3,4), (1,2,3)")), ElementsAre("blank 13 #22"));
    EXPECT_THAT(Findings(Edited("((1,2,3),(1,3,4))", "((1,2,3), (1,3,4))")), IsEmpty())
        << "triangles may have blanks between them";
}

TEST(CheckPart, TellsOfFacesWithoutNormals) {
    for (const char* const none : {"$", "()"}) {
        EXPECT_THAT(Findings(Edited("4,((0.,0.,1.)),$", std::string("4,") + none + ",$")),
                    ElementsAre("no-normals 14 #30"))
            << none;
    }
    EXPECT_THAT(Findings(Edited("((0.,0.,1.),(0.,1.,0.),(0.,0.,1.),(0.,0.,1.))", "((0.,0.,1.),(0.,1.,0.))")),
                ElementsAre("no-normals 15 #31"))
        << "fewer than points";
    EXPECT_THAT(Findings(Edited("((0.,0.,1.),(0.,1.,0.),(0.,0.,1.),(0.,0.,1.))", "((0.,0.,1.))")), IsEmpty());
}

TEST(CheckPart, TellsOfMoreNormalsThanPoints) {
    EXPECT_THAT(Findings(Edited("(0.,1.,0.),(0.,0.,1.),", "(0.,1.,0.),(0.,0.,1.),(0.,0.,1.),")),
                ElementsAre("too-many-normals 15 #31"));
    EXPECT_THAT(Findings(Edited("$,$,((1,2,3)),((1,3,4))", "$,(1,2,3),((1,2,3)),((1,2,3))")),
                ElementsAre("too-many-normals 15 #31"))
        << "the points are those that the face picks";
}

TEST(CheckPart, TellsOfPointsThatArentThere) {
    EXPECT_THAT(Findings(Edited("(1,2,3,4),((1,2,3),", "(1,2,3,5),((1,2,3),")),
                ElementsAre("damaged 14 #30"));
    EXPECT_THAT(Texts(Edited("(1,2,3,4),((1,2,3),", "(0,2,3,4),((1,2,3),")),
                ElementsAre("names point 0, but #10 has 4"));
    EXPECT_THAT(Findings(Edited("(1,2,3),(1,3,4)", "(1,2,3),(1,3,5)")), ElementsAre("not-drawn 14 #30"));
}

TEST(CheckPart, TellsOfFacesThatCantBeRead) {
    EXPECT_THAT(Findings(Edited("#30=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),$,",
                                "#30=TRIANGULATED_FACE('',#10,4,$,")),
                ElementsAre("damaged 14 #30"));
    EXPECT_THAT(Findings(Edited("(1,2,3),(1,3,4)", "(1,2,3),(1,3)")), ElementsAre("damaged 14 #30"));
    EXPECT_THAT(Findings(Edited("(1.,0.,0.)", "(1.,0.)")), ElementsAre("damaged 11 #10"));
}

TEST(CheckPart, TellsOfAFaceWithoutTriangles) {
    EXPECT_THAT(Findings(Edited("((1,2,3),(1,3,4))", "()")), ElementsAre("not-drawn 14 #30"));
}

TEST(CheckPart, LeavesAnnotationsAlone) {
    const std::string text =
        EditedIn(Edited("#22=COMPLEX", "#23=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4,((0.,0."
                                       ",1.)),(),((1,2,3)),$);\n#22=COMPLEX"),
                 "#9=", "#8=TESSELLATED_ANNOTATION_OCCURRENCE('',(),#23);\n#9=");
    EXPECT_THAT(Findings(text), IsEmpty());
    EXPECT_THAT(Findings(EditedIn(text, "TESSELLATED_ANNOTATION_OCCURRENCE", "SOMETHING_ELSE")),
                ElementsAre("not-listed 14 #23"));
}

TEST(CheckPart, TellsOfListsOfPointsBrokenInsideAPoint) {
    const std::string moved = Edited("(1.,1.,0.)", "(1.,\n1.,0.)");
    EXPECT_THAT(Findings(moved), ElementsAre("broken-list 11 #10"));
    EXPECT_THAT(Texts(moved), ElementsAre("the number after this line end reads as 0: a point is moved"));
    const std::string ended = Edited(",(1.,1.,0.)", ",\n(1.,1.,0.)");
    EXPECT_THAT(Texts(ended), ElementsAre("its list ends here: 2 of 4 points are read"));
    EXPECT_THAT(Texts(Edited("((1,2,3),(1,3,4))", "((1,2,3),\n(1,3,4))")),
                ElementsAre("its list ends here: 1 of 2 triangles are drawn"));
}

} // namespace
} // namespace tarnwick::test
