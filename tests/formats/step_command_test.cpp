#include "support/loaded_view.h"
#include "support/p21_text.h"
#include "support/packed.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(LoadStepFile, ShowsAPart) {
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("part.stp", SmallPartText()));
    EXPECT_EQ(view.console, "Start TraiteSTEPFile\n");
    EXPECT_EQ(view.loaded.drawnTriangles, 8);
    ASSERT_EQ(view.Faces().size(), 4u);
    EXPECT_EQ(view.Faces()[3]->faceId, 22);
    EXPECT_EQ(view.loaded.pickMode, 1);
    EXPECT_EQ(view.loaded.rootName, "P1");
    EXPECT_TRUE(view.loaded.hasRootName);
    ASSERT_EQ(view.loaded.containerCount, 2);
    EXPECT_STREQ(view.loaded.containers[0]->materialName, "steel");
    EXPECT_EQ(view.loaded.containers[1]->materialName, nullptr);
    EXPECT_THAT(view.loaded.box, ElementsAre(0, 1, 0, 15, -2.25f, 0));
    EXPECT_THAT(view.centre, ElementsAre(0.5f, 7.5f, -1.125f));
    EXPECT_EQ(view.modelSize, 18.25f);
    EXPECT_EQ(view.loaded.resultMesh, nullptr);
    EXPECT_EQ(view.redraws, 1);
    EXPECT_GT(view.loadSeconds, 0);
    EXPECT_EQ(view.loaded.readSeconds, 0) << "sums of many files, which a load of one file has not";
    EXPECT_EQ(view.loaded.inflateSeconds, 0);
    EXPECT_EQ(view.loaded.partSeconds, 0);
    EXPECT_EQ(view.selectedIndex, -1);
    EXPECT_TRUE(view.loaded.unreadFiles.empty());
}

TEST(LoadStepFile, ShowsTheSameOfACompressedPart) {
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("part.stpz", ZlibPacked(SmallPartText())));
    EXPECT_EQ(view.loaded.drawnTriangles, 8);
    EXPECT_THAT(view.output, HasSubstr("total uncompress size = "));
}

TEST(LoadStepFile, KeepsNothingThatPointsIntoTheText) {
    // The names and arrays are read after the model and its text have gone, and another file was read.
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("part.stp", SmallPartText()));
    const CountingView* const first = &view;
    CountingView other;
    other.Load(folder.Write("other.stp", P21Text({"#1=PRODUCT('Q','','',());"})));
    EXPECT_STREQ(first->loaded.root->name, "P1");
    EXPECT_STREQ(first->loaded.containers[0]->materialName, "steel");
    EXPECT_EQ(first->Faces()[0]->vertices[3], 1.0f);
}

TEST(LoadStepFile, ReplacesWhatTheViewHeld) {
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("part.stp", SmallPartText()));
    view.selectedIndex = 3;
    view.Load(folder.Write("other.stp", P21Text({"#1=PRODUCT('Q','','',());"})));
    EXPECT_EQ(view.loaded.rootName, "Q");
    EXPECT_EQ(view.loaded.drawnTriangles, 0);
    EXPECT_TRUE(view.Faces().empty());
    ASSERT_NE(view.loaded.drawList, nullptr);
    EXPECT_EQ(view.loaded.drawList->count, 1) << "an empty item is still made";
    EXPECT_EQ(view.loaded.containerCount, 0);
    EXPECT_EQ(view.selectedIndex, -1);
    EXPECT_EQ(view.modelSize, 10);
    EXPECT_THAT(view.eye, ElementsAre(0, 20, 20));
    EXPECT_EQ(view.redraws, 2);
}

TEST(LoadStepFile, LeavesTheFormerCountsAfterAFailure) {
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("part.stp", SmallPartText()));
    const double seconds = view.loadSeconds;
    for (const std::string& path : {folder.Path("missing.stp"), folder.Write("bad.stp", "no such file\n")}) {
        view.Load(path);
        EXPECT_EQ(view.loaded.drawList, nullptr);
        EXPECT_EQ(view.loaded.containers, nullptr);
        EXPECT_EQ(view.loaded.containerCount, 0);
        EXPECT_EQ(view.loaded.drawnTriangles, 8);
        EXPECT_EQ(view.loadSeconds, seconds);
        EXPECT_EQ(view.redraws, 1) << "no frame";
        ASSERT_EQ(view.loaded.unreadFiles.size(), 1u);
        EXPECT_EQ(view.loaded.unreadFiles[0].path, path);
    }
}

TEST(LoadStepFile, LeavesAFreshViewInItsFirstStateAfterAFailure) {
    CountingView view;
    view.Load("/nowhere/missing.stp");
    EXPECT_EQ(view.console, "Start TraiteSTEPFile\n");
    EXPECT_EQ(view.output, "");
    EXPECT_EQ(view.modelSize, 120);
    EXPECT_EQ(view.loaded.pickMode, 0);
    EXPECT_EQ(view.loaded.drawnTriangles, 0);
    EXPECT_EQ(view.loadSeconds, 0);
    EXPECT_FALSE(view.loaded.hasRootName);
}

TEST(LoadStepFile, ShowsNothingOfAPartThatIsGivenUp) {
    const TempFolder folder;
    CountingView view;
    std::string text = SmallPartText();
    text.replace(text.find("((0.,0.,1.)),#92"), 16,
                 "((0.,0.,1.),(0.,0.,1.),(0.,0.,1.),(0.,0.,1.),(0.,0.,1.)),#92");
    view.Load(folder.Write("part.stp", text));
    EXPECT_EQ(view.loaded.drawList, nullptr);
    EXPECT_EQ(view.loaded.drawnTriangles, 0);
    EXPECT_EQ(view.loaded.pickMode, 1);
    EXPECT_EQ(view.loaded.rootName, "P1");
    EXPECT_EQ(view.loaded.containerCount, 1) << "what the reader left";
    EXPECT_EQ(view.redraws, 1) << "the load itself went well";
    EXPECT_EQ(view.modelSize, 10);
}

TEST(LoadStepFile, SurvivesAFileWithoutProduct) {
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("part.stp", P21Text({})));
    EXPECT_EQ(view.loaded.drawList, nullptr);
    EXPECT_FALSE(view.loaded.hasRootName);
    EXPECT_EQ(view.loaded.root, nullptr);
    EXPECT_EQ(view.loaded.pickMode, 1);
}

TEST(LoadStepFile, CanBeRepeatedAllDay) {
    const TempFolder folder;
    const std::string path = folder.Write("part.stp", SmallPartText());
    CountingView view;
    for (int i = 0; i < 200; ++i) {
        view.Load(path);
        ASSERT_EQ(view.loaded.drawnTriangles, 8);
    }
}

TEST(ResetScene, DropsTheScene) {
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("part.stp", SmallPartText()));
    view.selectedIndex = 2;
    ResetScene(view, PartRecords::kDropped);
    EXPECT_EQ(view.loaded.drawList, nullptr);
    EXPECT_EQ(view.loaded.resultMesh, nullptr);
    EXPECT_EQ(view.selectedIndex, -1);
    EXPECT_EQ(view.loaded.drawnTriangles, 8) << "the counts stay";
}

} // namespace
} // namespace tarnwick::test
