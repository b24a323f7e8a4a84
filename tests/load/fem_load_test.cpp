// The load of a finite element file by the driver.

#include "formats/load_commands.h"
#include "load/view_setup.h"
#include "support/loaded_file.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;

constexpr std::string_view kAnalysis = "AP209_MULTIDISCIPLINARY_ANALYSIS_AND_DESIGN_MIM_LF";

// Four nodes and one element over the nodes of this list.
Lines Shell(const std::string& nodes) {
    return {"#1=PRODUCT('shell','','',(#90));",
            "#2=CARTESIAN_POINT('',(0.,0.,0.));",
            "#3=CARTESIAN_POINT('',(4.,0.,0.));",
            "#4=CARTESIAN_POINT('',(4.,2.,0.));",
            "#5=CARTESIAN_POINT('',(0.,2.,-1.));",
            "#6=NODE('',(#2),#90);",
            "#7=NODE('',(#3),#90);",
            "#8=NODE('',(#4),#90);",
            "#9=NODE('',(#5),#90);",
            "#10=SURFACE_3D_ELEMENT_REPRESENTATION('',(#90),#91," + nodes + ",#92,#93,#94,#95);"};
}

TEST(FemLoad, LeavesAMeshAndNoDrawList) {
    const TempFolder folder;
    const std::string path = folder.Write("shell.stp", P21Text(Shell("(#6,#7,#8,#9)"), kAnalysis));
    const LoadedFile load(path, 1);
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n");
    EXPECT_EQ(load.session.isAssembly, 0);
    EXPECT_EQ(load.session.partCount, 1);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 2);
    EXPECT_EQ(load.session.loaded.rootName, "shell");
    EXPECT_EQ(load.session.loaded.drawList, nullptr);
    EXPECT_EQ(load.session.loaded.containers, nullptr);
    EXPECT_THAT(load.session.loaded.box, ElementsAre(0, 4, 0, 2, -1, 0));
    EXPECT_THAT(load.session.loaded.root->box, ElementsAre(0, 4, 0, 2, -1, 0));
    EXPECT_EQ(load.session.loaded.root->definitionId, 0);
    ASSERT_NE(load.session.loaded.resultMesh, nullptr);
    EXPECT_EQ(load.session.loaded.resultMesh->quadCount, 1);
}

TEST(FemLoad, WithoutAQuadDrawsNothingButHasABox) {
    const TempFolder folder;
    const LoadedFile load(folder.Write("shell.stp", P21Text(Shell("(#6,#7,#8)"), kAnalysis)));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    EXPECT_EQ(load.session.loaded.root->hasBox, 0);
    EXPECT_EQ(load.session.loaded.hasBox, 1);
    EXPECT_THAT(load.session.loaded.box, ElementsAre(0, 4, 0, 2, -1, 0));
    EXPECT_EQ(load.session.loaded.resultMesh->nodeCount, 4);
}

TEST(FemLoad, IsChosenByTheSchemaNumberAlone) {
    const TempFolder folder;
    const LoadedFile load(folder.Write("shell.stp", P21Text(Shell("(#6,#7,#8,#9)"))));
    EXPECT_EQ(load.session.loaded.resultMesh, nullptr);
    EXPECT_NE(load.session.loaded.drawList, nullptr);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    // Tessellated geometry in a file of schema 209 isn't looked at.
    std::string part = SmallPartText();
    part.replace(part.find("AP242"), 5, "AP209");
    const LoadedFile other(folder.Write("part.stp", part));
    EXPECT_EQ(other.session.loaded.drawnTriangles, 0);
    EXPECT_NE(other.session.loaded.resultMesh, nullptr);
}

TEST(FemLoad, OfAFileThatIsGivenUpStillHasItsBoxAndName) {
    const TempFolder folder;
    Lines lines = Shell("(#6,#7,#8,#9)");
    lines[8] = "#9=NODE('',(#99),#90);";
    const std::string path = folder.Write("shell.stp", P21Text(lines, kAnalysis));
    const LoadedFile load(path);
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.console,
              "Start TraiteSTEPFile\n<E> " + path + ": given up, #9 names a point that isn't there\n");
    EXPECT_EQ(load.session.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(load.session.loaded.resultMesh, nullptr);
    EXPECT_EQ(load.session.loaded.rootName, "shell");
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    // In a table of 8 buckets #8 comes before #9, and the others after.
    EXPECT_THAT(load.session.loaded.box, ElementsAre(4, 4, 2, 2, 0, 0));
}

TEST(FemLoad, OfAFileWithoutAProductHasNoRoot) {
    const TempFolder folder;
    Lines lines = Shell("(#6,#7,#8,#9)");
    lines.erase(lines.begin());
    const std::string path = folder.Write("shell.stp", P21Text(lines, kAnalysis));
    const LoadedFile load(path);
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n<E> " + path + ": given up, it has no PRODUCT\n");
    EXPECT_EQ(load.session.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(load.session.loaded.root, nullptr);
    EXPECT_FALSE(load.session.loaded.hasRootName);
    EXPECT_EQ(load.session.loaded.resultMesh, nullptr);
}

TEST(FemLoad, IsDroppedByTheNextLoad) {
    const TempFolder folder;
    const std::string path = folder.Write("shell.stp", P21Text(Shell("(#6,#7,#8,#9)"), kAnalysis));
    const std::string part = folder.Write("part.stp", SmallPartText());
    SceneView view;
    LoadStepFile(view, path.c_str(), 1);
    ASSERT_NE(view.loaded.resultMesh, nullptr);
    EXPECT_EQ(view.loaded.drawnTriangles, 2);
    EXPECT_EQ(view.loaded.pickMode, 1);
    LoadStepFile(view, part.c_str(), 1);
    EXPECT_EQ(view.loaded.resultMesh, nullptr);
    EXPECT_NE(view.loaded.drawList, nullptr);
}

} // namespace
} // namespace tarnwick::test
