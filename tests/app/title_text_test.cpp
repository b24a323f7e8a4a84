// The words of the title bar.

#include "app/title_text.h"

#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

TEST(TitleText, NamesTheFileAndTheProgram) {
    SceneView view;
    view.loaded.drawnTriangles = 5;
    EXPECT_EQ(TitleText("", view), "Tarnwick");
    EXPECT_EQ(TitleText("/a/b.stp", view), "b.stp - Tarnwick");
    EXPECT_EQ(TitleText("b.stp", view), "b.stp - Tarnwick");
}

TEST(TitleText, SaysWhatIsNotThere) {
    SceneView view;
    EXPECT_EQ(TitleText("/a/b.stp", view), "b.stp - Tarnwick (no tessellated geometry)");
    view.loaded.drawnTriangles = 5;
    view.loaded.unreadFiles.push_back({0, "/a/c.stp", "BOLT", "can't be opened"});
    EXPECT_EQ(TitleText("/a/b.stp", view), "b.stp - Tarnwick (1 file could not be read)");
    view.loaded.unreadFiles.push_back({1, "/a/d.stp", "NUT", "can't be opened"});
    EXPECT_EQ(TitleText("/a/b.stp", view), "b.stp - Tarnwick (2 files could not be read)");
    view.loaded.unreadFiles = {{0, "/a/b.stp", "", "can't be opened"}};
    EXPECT_EQ(TitleText("/a/b.stp", view), "b.stp - Tarnwick (it can't be opened)");
}

TEST(TitleText, SaysThatAllFacesAreTransparent) {
    StepFaceB face{};
    StepFaceB* meshes[] = {nullptr, &face};
    DrawItem item{meshes, 2, nullptr, nullptr};
    DrawItem* items[] = {&item};
    DrawList list{};
    list.items = items;
    list.count = 1;
    SceneView view;
    view.loaded.drawnTriangles = 5;
    view.loaded.drawList = &list;
    EXPECT_EQ(TitleText("b.stp", view), "b.stp - Tarnwick (all faces are fully transparent)");
    face.colour[3] = 0.01f; // the alpha test keeps what is greater
    EXPECT_EQ(TitleText("b.stp", view), "b.stp - Tarnwick (all faces are fully transparent)");
    face.colour[3] = 0.02f;
    EXPECT_EQ(TitleText("b.stp", view), "b.stp - Tarnwick");
}

TEST(TitleText, CountsTheFilesOfALoad) {
    EXPECT_EQ(ProgressTitle("/a/b.stp", 12, 500), "b.stp - Tarnwick: reading file 12 of 500");
}

} // namespace
} // namespace tarnwick::test
