#include "check/checked.h"

#include "support/assembly_text.h"
#include "support/p21_text.h"

namespace tarnwick::test {
namespace {

// A folder with top.stp, which uses the product wheel, and wheel.stp. In top.stp #n stands on line 7 + n:
// #3 and #6 are the definitions of top and wheel, #11 to #14 the target's point, directions and placement,
// #15 the transformation, #16 the use, #18 the relationship, #19 what ties them together, #20 the document.
class CheckAssembly : public testing::Test {
protected:
    static std::string Top() {
        AssemblyText text;
        const int top = text.Product("top");
        const int wheel = text.Product("wheel");
        text.Use(top, wheel, At(1, 2, 3));
        text.File(wheel, "wheel.stp");
        Lines lines = text.DataLines();
        for (const char* const line : {"#999997=A();", "#999998=B();", "#999999=C();"}) {
            lines.emplace_back(line);
        }
        return P21Text(lines);
    }

    std::vector<std::string> FindingsIn(std::string_view top) {
        return Brief(Checked(folder_.Write("top.stp", top)));
    }
    std::vector<std::string> After(std::string_view from, std::string_view to) {
        return FindingsIn(EditedIn(Top(), from, to));
    }

    TempFolder folder_;
    std::string wheel_ = folder_.Write("wheel.stp", GoodPart());
};

TEST_F(CheckAssembly, FindsNothingInAGoodOne) {
    EXPECT_THAT(FindingsIn(Top()), IsEmpty());
}

TEST_F(CheckAssembly, ChecksTheFilesOfItsParts) {
    folder_.Write("wheel.stp", Edited("(1,2,3,4),(1,2,3)", "(1,2,3,4), (1,2,3)"));
    const CheckReport report = Checked(folder_.Write("top.stp", Top()));
    EXPECT_THAT(Brief(report), ElementsAre("wheel.stp blank 13 #22"));
    EXPECT_EQ(report.counts.at("TESSELLATED_SOLID"), 1);
    EXPECT_EQ(report.counts.at("DOCUMENT_FILE"), 1) << "counts are those of all files";
    EXPECT_EQ(report.counts.at("PRODUCT"), 3);
}

TEST_F(CheckAssembly, TellsOfAFileThatIsNotThere) {
    const CheckReport report = Checked(folder_.Write("top.stp", EditedIn(Top(), "wheel.stp", "w/other.stp")));
    EXPECT_THAT(Brief(report), ElementsAre("other.stp unread-file"));
    EXPECT_EQ(report.findings[0].text, "the file of product 'wheel' can't be opened");
    EXPECT_EQ(report.files[1], folder_.Path("w/other.stp"));
}

TEST_F(CheckAssembly, FindsAFileThatTheReaderFinds) {
    EXPECT_THAT(After("wheel.stp", "..\\\\" +
                                       folder_.Path("").substr(
                                           folder_.Path("").rfind('/', folder_.Path("").size() - 2) + 1) +
                                       "wheel.cgr"),
                IsEmpty());
}

TEST_F(CheckAssembly, TellsOfAFileThatIsNoP21) {
    folder_.Write("wheel.stp", "no STEP");
    EXPECT_THAT(FindingsIn(Top()), ElementsAre("wheel.stp header"));
}

TEST_F(CheckAssembly, TellsOfFileNamesWithDots) {
    EXPECT_THAT(After("wheel.stp", "whe...el.stp"), ElementsAre("dots-in-name 27 #20"));
}

TEST_F(CheckAssembly, TellsOfAProductWithoutFileAndShape) {
    const CheckReport report =
        Checked(folder_.Write("top.stp", EditedIn(Top(), "APPLIED_DOCUMENT_REFERENCE", "NO_REFERENCE")));
    EXPECT_THAT(Brief(report), ElementsAre("no-shape 13 #6"));
    EXPECT_EQ(report.findings[0].text, "product 'wheel' has neither a file nor a shape");
}

TEST_F(CheckAssembly, LetsAnotherFileNameTheFileOfAProduct) {
    AssemblyText text;
    const int axle = text.Product("axle");
    const int wheel = text.Product("wheel");
    text.Use(axle, wheel);
    Lines lines = text.DataLines();
    for (const char* const line : {"#999997=A();", "#999998=B();", "#999999=C();"}) {
        lines.emplace_back(line);
    }
    folder_.Write("axle.stp", P21Text(lines));
    AssemblyText upper;
    const int top = upper.Product("top");
    const int upperAxle = upper.Product("axle");
    upper.Use(top, upperAxle);
    upper.File(upperAxle, "axle.stp");
    const int upperWheel = upper.Product("wheel");
    Lines upperLines = upper.DataLines();
    for (const char* const line : {"#999997=A();", "#999998=B();", "#999999=C();"}) {
        upperLines.emplace_back(line);
    }
    EXPECT_THAT(FindingsIn(P21Text(upperLines)), ElementsAre("axle.stp no-shape 13 #6"));
    upper.File(upperWheel, "wheel.stp");
    upperLines = upper.DataLines();
    for (const char* const line : {"#999997=A();", "#999998=B();", "#999999=C();"}) {
        upperLines.emplace_back(line);
    }
    EXPECT_THAT(FindingsIn(P21Text(upperLines)), IsEmpty());
}

TEST_F(CheckAssembly, TellsOfABlankBeforeThePointOfAPlacement) {
    EXPECT_THAT(After("CARTESIAN_POINT('',(1.", "CARTESIAN_POINT('', (1."),
                ElementsAre("top.stp blank 18 #11"));
    EXPECT_THAT(After("#999997=A();", "#999997=CARTESIAN_POINT('', (1.,2.,3.));"), IsEmpty())
        << "points elsewhere aren't read";
}

TEST_F(CheckAssembly, TellsOfAPointWithACommaInItsName) {
    EXPECT_THAT(After("CARTESIAN_POINT('',(1.", "CARTESIAN_POINT('a,b',(1."),
                ElementsAre("top.stp name 18 #11"));
}

TEST_F(CheckAssembly, TellsOfAPlacementWithoutDirections) {
    EXPECT_THAT(After("#14=AXIS2_PLACEMENT_3D('',#11,#12,#13)", "#14=AXIS2_PLACEMENT_3D('',#11,$,$)"),
                ElementsAre("top.stp use 21 #14"));
}

TEST_F(CheckAssembly, TellsOfAUseThatNothingPlaces) {
    EXPECT_THAT(After("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION", "ANOTHER"),
                ElementsAre("top.stp use 23 #16"));
}

TEST_F(CheckAssembly, TellsOfARelationshipOfAnotherForm) {
    EXPECT_THAT(After("(REPRESENTATION_RELATIONSHIP('','',#999998,#999997)REPRESENTATION_RELATIONSHIP_WITH_"
                      "TRANSFORMATION(#15)",
                      "(REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(#15)REPRESENTATION_RELATIONSHIP('',''"
                      ",#999998,#999997)"),
                ElementsAre("top.stp use 26 #19"));
}

TEST_F(CheckAssembly, TellsOfNamesThatLeadTheReaderAstray) {
    EXPECT_THAT(After("'u','name','d',#3", "'u','name','part #6',#3"), ElementsAre("top.stp name 23 #16"));
    EXPECT_THAT(After("'u','name','d',#3", "'u','a,b,c','d',#3"), IsEmpty())
        << "the reference is found all the same";
}

TEST_F(CheckAssembly, TellsOfATreeWithoutRoot) {
    AssemblyText text;
    const int a = text.Product("a");
    const int b = text.Product("b");
    text.Use(a, b);
    text.Use(b, a);
    Lines lines = text.DataLines();
    for (const char* const line : {"#999997=A();", "#999998=B();", "#999999=C();"}) {
        lines.emplace_back(line);
    }
    EXPECT_THAT(FindingsIn(P21Text(lines)), ElementsAre("use"));
}

} // namespace
} // namespace tarnwick::test
