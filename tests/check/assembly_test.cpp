#include "check/checked.h"

#include "support/assembly_text.h"
#include "support/p21_text.h"

#include <algorithm>

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

TEST_F(CheckAssembly, SaysHowManyPartsAreShown) {
    const CheckReport all = Checked(folder_.Write("top.stp", Top()));
    EXPECT_EQ(SummaryOf(all), "Shows all of its 7 triangles");
    EXPECT_EQ(all.totals.parts, 1);
    AssemblyText text;
    const int top = text.Product("top");
    const int wheel = text.Product("wheel");
    const int axle = text.Product("axle");
    text.Use(top, wheel);
    text.Use(top, wheel, At(1, 2, 3));
    text.Use(top, axle);
    text.File(wheel, "wheel.stp");
    text.File(axle, "axle.stp");
    EXPECT_EQ(SummaryOf(Checked(folder_.Write("top.stp", text.Text()))), "Shows 2 of 3 parts, 14 triangles");
}

TEST_F(CheckAssembly, TellsOfEachProductWhoseFileHasNoName) {
    AssemblyText text;
    const int top = text.Product("top");
    std::vector<std::string> wanted;
    for (const char* const name : {"a", "b", "c"}) {
        const int part = text.Product(name);
        text.Use(top, part);
        text.File(part, "");
    }
    const CheckReport report = Checked(folder_.Write("top.stp", text.Text()));
    const auto told =
        std::count_if(report.findings.begin(), report.findings.end(),
                      [](const Finding& finding) { return finding.kind == FindingKind::kNoFileName; });
    EXPECT_EQ(told, 3);
}

TEST_F(CheckAssembly, TellsWhereTheNameOfAFileIsRead) {
    const CheckReport report =
        Checked(folder_.Write("top.stp", EditedIn(Top(), "DOCUMENT_FILE('wheel.stp','second text'",
                                                  "DOCUMENT_FILE('#6','wheel.stp'")));
    EXPECT_THAT(Brief(report), ElementsAre("top.stp no-file-name 27 #20"));
    EXPECT_EQ(report.findings[0].text,
              "the file of product 'wheel' is looked for under the name '#6', the first argument of its "
              "DOCUMENT_FILE; what lies there is 'wheel.stp'");
}

TEST_F(CheckAssembly, TellsOfAFileThatHidesComponents) {
    AssemblyText text;
    const int top = text.Product("top");
    const int group = text.Product("group");
    const int wheel = text.Product("wheel");
    text.Use(top, group);
    text.Use(group, wheel);
    text.File(wheel, "wheel.stp");
    text.File(group, "group.stp");
    Lines lines = text.DataLines();
    for (const char* const line : {"#999997=A();", "#999998=B();", "#999999=C();"}) {
        lines.emplace_back(line);
    }
    const std::string assembly = P21Text(lines);
    folder_.Write("group.stp", P21Text({"#1=PRODUCT('group','','',());"}));
    const CheckReport report = Checked(folder_.Write("top.stp", assembly));
    EXPECT_THAT(Brief(report), ElementsAre("group.stp no-shape", "group.stp hidden-components"));
    EXPECT_EQ(report.outcome.triangles, 0);
    EXPECT_EQ(report.findings[1].text,
              "product 'group' shows this file alone, of which nothing is drawn, and none of the components "
              "that hang under it in the tree");
}

// An assembly of one use in one file, whose part has these items, listed by a representation of this keyword.
std::string OneFile(const std::string& keyword, const std::string& items, Lines shape) {
    AssemblyText text(1000);
    const int top = text.Product("top");
    const int wheel = text.Product("wheel");
    text.Use(top, wheel);
    Lines lines = text.DataLines();
    for (const char* const line : {"#999997=A();", "#999998=B();", "#999999=C();"}) {
        lines.emplace_back(line);
    }
    lines.push_back("#80=PRODUCT_DEFINITION_SHAPE('','',#" + std::to_string(wheel) + ");");
    lines.push_back("#81=SHAPE_DEFINITION_REPRESENTATION(#80,#82);");
    lines.push_back("#82=" + keyword + "('',(" + items + "),#90);");
    lines.emplace_back("#90=GEOMETRIC_REPRESENTATION_CONTEXT('','',3);");
    Append(lines, shape);
    return P21Text(lines);
}

const Lines kShell{
    "#84=TESSELLATED_SHELL('',(#85),$);",
    "#85=TRIANGULATED_FACE('',#86,3,((0.,0.,1.)),$,(),((1,2,3)));",
    "#86=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)));",
};

TEST_F(CheckAssembly, TellsEachReasonForShapesInItsOwnFile) {
    const std::string shape = OneFile("TESSELLATED_SHAPE_REPRESENTATION", "#84", kShell);
    const CheckReport report = Checked(folder_.Write("top.stp", shape));
    ASSERT_EQ(report.findings.size(), 1U);
    EXPECT_EQ(report.findings[0].text,
              "product 'wheel' has no file: its shape in the file of the assembly isn't drawn");
    EXPECT_EQ(SummaryOf(report), "Shows none of its tessellated shape");
    const auto kinds = [this](const std::string& text) {
        std::vector<std::string> names;
        for (const Finding& finding : Checked(folder_.Write("top.stp", text)).findings) {
            names.emplace_back(TextOf(finding.kind).name);
        }
        return names;
    };
    EXPECT_THAT(kinds(EditedIn(shape, "),((1,2,3))", "),\n((1,2,3))")),
                ElementsAre("own-geometry", "broken-list"));
    EXPECT_THAT(kinds(OneFile("TESSELLATED_SHAPE_REPRESENTATION", "#85", kShell)),
                ElementsAre("own-geometry", "not-drawn"));
    EXPECT_THAT(kinds(OneFile("SHAPE_REPRESENTATION", "#84", kShell)),
                ElementsAre("own-geometry", "not-drawn"));
    const Lines exact{"#84=MANIFOLD_SOLID_BREP('',#85);", "#85=CLOSED_SHELL('',());"};
    EXPECT_THAT(kinds(OneFile("SHAPE_REPRESENTATION", "#84", exact)),
                ElementsAre("exact-only", "own-geometry"));
    EXPECT_EQ(SummaryOf(Checked(folder_.Path("top.stp"))), "No tessellated shape: 1 exact solid in one file");
}

TEST_F(CheckAssembly, TellsOfSeveralRepresentationsOfAProduct) {
    Lines more = kShell;
    Append(more, {"#91=SHAPE_REPRESENTATION_RELATIONSHIP('','',#82,#92);",
                  "#92=TESSELLATED_SHAPE_REPRESENTATION('',(#94),#90);", "#94=TESSELLATED_SHELL('',(#95),$);",
                  "#95=TRIANGULATED_FACE('',#86,3,((0.,0.,1.)),$,(),((1,2,3)));"});
    const CheckReport report =
        Checked(folder_.Write("top.stp", OneFile("TESSELLATED_SHAPE_REPRESENTATION", "#84", more)));
    ASSERT_EQ(report.findings.size(), 2U);
    EXPECT_EQ(report.findings[1].kind, FindingKind::kSeveralRepresentations);
}

} // namespace
} // namespace tarnwick::test
