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

} // namespace
} // namespace tarnwick::test
