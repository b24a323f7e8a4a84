// What a click selects, says and draws.

#include "test_view.h"

#include <gmock/gmock.h>

namespace tarnwick {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class PickingTest : public ViewTest {
protected:
    StepFaceB* FaceOf(std::int32_t id, std::int32_t type) {
        StepFaceB* const face = NewFace(id);
        face->exactFaceId = id + 1000;
        face->containerId = type == 0 ? 0 : 500;
        face->exactContainerId = type == 0 ? 0 : 600;
        face->containerType = type;
        return face;
    }

    // Clicks on a pixel that spells the index; returns what the console got.
    std::string Click(std::int32_t index) {
        gl_recorder::SetPixel(static_cast<unsigned char>(index >> 16), static_cast<unsigned char>(index >> 8),
                              static_cast<unsigned char>(index));
        return ClickPixel();
    }
    std::string ClickBackground() {
        gl_recorder::SetPixel(255, 255, 255, 255);
        return ClickPixel();
    }
    std::string ClickPixel() {
        dialog.pickTexts.clear();
        Forget();
        ::testing::internal::CaptureStderr();
        view.PickAt({30, 40});
        return ::testing::internal::GetCapturedStderr();
    }

    void ShowContainers(std::vector<FaceContainer> records) {
        containers_ = std::move(records);
        pointers_.clear();
        for (FaceContainer& container : containers_) { pointers_.push_back(&container); }
        view.loaded.containers = pointers_.data();
        view.loaded.containerCount = static_cast<std::int32_t>(pointers_.size());
    }

private:
    std::vector<FaceContainer> containers_;
    std::vector<FaceContainer*> pointers_;
};

TEST_F(PickingTest, AnEmptySceneAndAFiniteElementMeshCannotBePicked) {
    EXPECT_EQ(Click(0), "");
    EXPECT_THAT(TakeCalls(), IsEmpty());
    ResultMesh mesh{};
    view.loaded.resultMesh = &mesh;
    view.loaded.drawnTriangles = 1;
    EXPECT_EQ(Click(0), "");
    EXPECT_THAT(TakeCalls(), IsEmpty());
    EXPECT_EQ(view.selectedIndex, -1);
}

TEST_F(PickingTest, AFaceOfASolidIsToldWithItsIds) {
    Show({NewItem({FaceOf(11, 1), FaceOf(12, 1)})}, 1);
    EXPECT_EQ(Click(1), "Selected face: #12  Exact Face: #1012 solid: #500  exact solid: #600\n");
    EXPECT_EQ(view.selectedIndex, 1);
    EXPECT_EQ(view.selectedText, "#12");
    EXPECT_EQ(view.selectedFaceId, 12);
    EXPECT_EQ(view.selectedExactFaceId, 1012);
    EXPECT_EQ(view.selectedContainerId, 500);
    EXPECT_EQ(view.selectedExactContainerId, 600);
    EXPECT_EQ(view.selectedContainerType, 1);
}

TEST_F(PickingTest, AFaceOfAShellIsToldAsSuch) {
    Show({NewItem({FaceOf(11, 2)})}, 1);
    EXPECT_EQ(Click(0), "Selected face: #11  Exact Face: #1011 shell: #500  exact shell: #600\n");
}

TEST_F(PickingTest, ASurfaceSetIsToldWithItsContainerType) {
    Show({NewItem({FaceOf(11, 0)})}, 1);
    EXPECT_EQ(
        Click(0),
        "Selected face: #11  Exact Face: #1011 Container: #0  Exact container: #0  Container type: 0\n");
}

TEST_F(PickingTest, TheMaterialOfTheContainerIsToldAndShown) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    ShowContainers({{1, "copper", nullptr, 499, 0}, {1, "steel", nullptr, 500, 0}});
    EXPECT_EQ(Click(0), "Selected face: #11  Exact Face: #1011 solid: #500  exact solid: #600\n"
                        "Material: steel\n");
    EXPECT_THAT(dialog.pickTexts, ElementsAre("Material: steel  "));
    view.dialog = nullptr;
    EXPECT_EQ(Click(0), "Selected face: #11  Exact Face: #1011 solid: #500  exact solid: #600\n"
                        "Material: steel\n");
}

TEST_F(PickingTest, EachContainerWithTheFacesNumberIsToldInOrder) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    ShowContainers({{1, "steel", nullptr, 500, 0}, {1, nullptr, nullptr, 500, 0}});
    Click(0);
    EXPECT_THAT(dialog.pickTexts, ElementsAre("Material: steel  ", " "));
}

TEST_F(PickingTest, AContainerWithoutMaterialBlanksTheTextAndNoContainerLeavesIt) {
    Show({NewItem({FaceOf(11, 1), FaceOf(12, 0)})}, 1);
    ShowContainers({{1, nullptr, nullptr, 500, 0}});
    Click(0);
    EXPECT_THAT(dialog.pickTexts, ElementsAre(" "));
    Click(1);
    EXPECT_THAT(dialog.pickTexts, IsEmpty());
}

TEST_F(PickingTest, TheBackgroundClearsTheSelectionAndTheTextButNotTheContainerType) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    Click(0);
    EXPECT_EQ(ClickBackground(), "");
    EXPECT_EQ(view.selectedIndex, -1);
    EXPECT_EQ(view.selectedFaceId, 0);
    EXPECT_EQ(view.selectedExactFaceId, 0);
    EXPECT_EQ(view.selectedContainerId, 0);
    EXPECT_EQ(view.selectedExactContainerId, 0);
    EXPECT_EQ(view.selectedContainerType, 1);
    EXPECT_THAT(dialog.pickTexts, ElementsAre(" "));
    EXPECT_THAT(TakeCalls(), Contains("swap"));
}

TEST_F(PickingTest, TheBackgroundWithNothingSelectedDrawsNothingAnew) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    ClickBackground();
    EXPECT_THAT(TakeCalls(), Not(Contains("swap")));
    EXPECT_THAT(dialog.pickTexts, ElementsAre(" "));
}

TEST_F(PickingTest, TheSelectedFaceIsToldAgainButNotDrawnAgain) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    Click(0);
    EXPECT_THAT(TakeCalls(), Contains("swap"));
    EXPECT_NE(Click(0), "");
    EXPECT_THAT(TakeCalls(), Not(Contains("swap")));
}

TEST_F(PickingTest, TheLightsGoBackBeforeTheSelectionIsDrawn) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    Click(0);
    const Calls calls = TakeCalls();
    const auto back = std::find(calls.begin(), calls.end(), "glDisable(GL_LIGHT3)");
    ASSERT_NE(back, calls.end());
    EXPECT_EQ(*(back - 2), "glEnable(GL_LIGHT1)");
    EXPECT_EQ(*(back - 1), "glEnable(GL_LIGHT2)");
    EXPECT_NE(std::find(back, calls.end(), "glColor4f(1, 0, 1, 1)"), calls.end());
}

TEST_F(PickingTest, APlacedPartIsToldByItsProductAndLeavesTheFaceIds) {
    ProductNode bolt{};
    bolt.name = "BOLT M6";
    bolt.fileName = "bolt.stp";
    view.selectedFaceId = 77;
    view.selectedContainerType = 2;
    Show({NewItem({FaceOf(11, 1)}, &bolt), NewItem({FaceOf(12, 1)}, &bolt)}, 2);
    EXPECT_EQ(Click(1), "Product selected: BOLT M6   File: bolt.stp\n");
    EXPECT_EQ(view.selectedIndex, 1);
    EXPECT_EQ(view.selectedText, "BOLT M6");
    EXPECT_EQ(view.selectedFaceId, 77);
    EXPECT_EQ(view.selectedContainerType, 2);
    // The other copy: another index, the same name.
    EXPECT_EQ(Click(0), "Product selected: BOLT M6   File: bolt.stp\n");
    EXPECT_EQ(view.selectedIndex, 0);
    EXPECT_THAT(dialog.pickTexts, IsEmpty());
}

TEST_F(PickingTest, AProductWithoutAFileIsToldAsSuch) {
    ProductNode plate{};
    plate.name = "plate";
    Show({NewItem({FaceOf(11, 1)}, &plate), NewItem({FaceOf(12, 1)}, nullptr)}, 2);
    EXPECT_EQ(Click(0), "Product selected: plate   File: (null)\n");
    EXPECT_EQ(Click(1), "");
}

TEST_F(PickingTest, ABoxIsToldByItsProduct) {
    ProductNode frame{};
    frame.name = "frame";
    frame.fileName = nullptr;
    ShowBoxes({NewBox(1), NewBox(2, &frame)});
    EXPECT_EQ(Click(1), "Product selected: frame   File: (null)\n");
    EXPECT_EQ(view.selectedIndex, 1);
    EXPECT_EQ(view.selectedText, "frame");
    EXPECT_EQ(Click(0), "");
    EXPECT_EQ(Click(7), "");
    ClickBackground();
    EXPECT_EQ(view.selectedIndex, -1);
}

TEST_F(PickingTest, AFaceNumberBeyondTheItemsOfAnAssemblyIsLeftAtThat) {
    // One item in an assembly is coded by its faces, but looked up among the items.
    ProductNode part{};
    part.name = "part";
    part.fileName = "part.stp";
    Show({NewItem({FaceOf(11, 1), FaceOf(12, 1)}, &part)}, 2);
    EXPECT_EQ(Click(0), "Product selected: part   File: part.stp\n");
    EXPECT_EQ(Click(1), "");
    EXPECT_EQ(view.selectedIndex, 1);
    EXPECT_THAT(TakeCalls(), Contains("glColor4f(1, 0, 1, 1)"));
}

TEST_F(PickingTest, ACodeBeyondTheFacesIsLeftAtThat) {
    Show({NewItem({FaceOf(11, 1), nullptr})}, 1);
    EXPECT_EQ(Click(1), "");
    EXPECT_EQ(Click(2), "");
    EXPECT_EQ(Click(0x010203), "");
    EXPECT_EQ(view.selectedIndex, 0x010203);
    EXPECT_EQ(view.selectedFaceId, 0);
}

TEST_F(PickingTest, AListWithoutItemsHasNothingToTell) {
    Show({}, 1);
    EXPECT_EQ(Click(0), "");
    EXPECT_EQ(ClickBackground(), "");
    EXPECT_THAT(dialog.pickTexts, IsEmpty());
}

TEST_F(PickingTest, APixelOutsideThePictureIsTheBackground) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    Click(0);
    gl_recorder::WritePixel(false);
    view.PickAt({30, 0}); // the top row asks for y 600 of 600
    EXPECT_EQ(view.selectedIndex, -1);
}

TEST_F(PickingTest, AWhitePixelWithAnotherAlphaIsACode) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    gl_recorder::SetPixel(255, 255, 255, 254);
    ClickPixel();
    EXPECT_EQ(view.selectedIndex, 16777215);
}

TEST_F(PickingTest, AClickReadsThePixelCountedFromBelowWithoutOneLess) {
    Show({NewItem({FaceOf(11, 1)})}, 1);
    ClickBackground();
    EXPECT_THAT(TakeCalls(), Contains("glReadPixels(30, 560, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE)"));
}

TEST_F(PickingTest, AProductNameOfAnyLengthIsKeptWhole) {
    const std::string name(511, 'x');
    ProductNode part{};
    part.name = name.c_str();
    ShowBoxes({NewBox(1, &part)});
    Click(0);
    EXPECT_EQ(view.selectedText, name);
}

} // namespace
} // namespace tarnwick
