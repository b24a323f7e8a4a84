#include "check/checked.h"

#include "support/p21_text.h"

namespace tarnwick::test {
namespace {

// A quad, #30, on four nodes; #n0 stands on line 7 + n + ... as counted in the tests.
std::string Mesh() {
    return P21Text({"#1=PRODUCT('P','','',());", "#2=CARTESIAN_POINT('',(0.,0.,0.));", "#3=X();",
                    "#11=NODE('1',(#2),#3);", "#12=NODE('2',(#2),#3);", "#13=NODE('3',(#2),#3);",
                    "#14=NODE('4',(#2),#3);",
                    "#30=SURFACE_3D_ELEMENT_REPRESENTATION('1',(),#3,(#11,#12,#13,#14),#3,#3,#3);"},
                   "AP209_MULTIDISCIPLINARY_ANALYSIS_AND_DESIGN_MIM_LF");
}

TEST(CheckFiniteElements, FindNothingInAGoodMesh) {
    EXPECT_THAT(Findings(Mesh()), IsEmpty());
}

TEST(CheckFiniteElements, TellOfElementsWithoutFourNodes) {
    EXPECT_THAT(Findings(EditedIn(Mesh(), "#13,#14)", "#13)")), ElementsAre("element 15 #30"));
}

TEST(CheckFiniteElements, TellOfOtherElements) {
    EXPECT_THAT(Findings(EditedIn(Mesh(), "#30=", "#29=VOLUME_3D_ELEMENT_REPRESENTATION();\n#30=")),
                ElementsAre("element 15 #29"));
}

TEST(CheckFiniteElements, TellOfBrokenLists) {
    EXPECT_THAT(Findings(EditedIn(Mesh(), "#13,#14)", "\n#13,#14)")), ElementsAre("broken-list 15 #30"));
}

TEST(CheckFiniteElements, TellOfABlankBehindNode) {
    EXPECT_THAT(Findings(EditedIn(Mesh(), "NODE('4'", "NODE ('4'")), ElementsAre("blank 14 #14"));
}

TEST(CheckFiniteElements, CountElementsByKind) {
    const std::string text =
        EditedIn(Mesh(), "#30=",
                 "#27=VOLUME_3D_ELEMENT_REPRESENTATION();\n#28=CURVE_3D_ELEMENT_REPRESENTATION();\n"
                 "#29=VOLUME_3D_ELEMENT_REPRESENTATION();\n#30=");
    EXPECT_THAT(Texts(text),
                ElementsAre("2 VOLUME_3D_ELEMENT_REPRESENTATION aren't drawn, of which this is the "
                            "first",
                            "1 CURVE_3D_ELEMENT_REPRESENTATION isn't drawn"));
    const TempFolder folder;
    EXPECT_EQ(SummaryOf(Checked(folder.Write("mesh.stp", text))), "Shows 1 of 4 elements");
    EXPECT_EQ(SummaryOf(Checked(folder.Write("mesh.stp", Mesh()))), "Shows all of its 1 element");
}

TEST(CheckFiniteElements, TellWhyAllIsBlack) {
    const std::string text =
        EditedIn(Mesh(), "#3,#3,#3);",
                 "#3,#3,#40);\n#40=SURFACE_ELEMENT_PROPERTY('','',#41);\n"
                 "#41=SURFACE_SECTION_FIELD_CONSTANT(#42);\n#42=UNIFORM_SURFACE_SECTION($,$,$,2.,$,$);");
    EXPECT_THAT(Findings(text), ElementsAre("black-mesh 17 #41"));
}

TEST(CheckFiniteElements, TellOfProductsWithLongNamesOrNone) {
    EXPECT_THAT(Findings(EditedIn(Mesh(), "'P'", "'" + std::string(300, 'n') + "'")),
                ElementsAre("too-long 8 #1"));
    EXPECT_THAT(Findings(EditedIn(Mesh(), "#1=PRODUCT(", "#1=PRODUKT(")), ElementsAre("no-product"));
}

} // namespace
} // namespace tarnwick::test
