#include "support/loaded_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;

// A view that is set up for a box.
struct ViewOf : SceneView {
    explicit ViewOf(const std::array<float, 6>& values) {
        std::copy(values.begin(), values.end(), loaded.box);
        SetUpView(*this);
    }
};

TEST(SetUpView, TakesAnEmptyBoxForOneOfSizeTen) {
    const ViewOf view({0, 0, 0, 0, 0, 0});
    EXPECT_EQ(view.modelSize, 10);
    EXPECT_THAT(view.centre, ElementsAre(0, 0, 0));
    EXPECT_THAT(view.eye, ElementsAre(0, 20, 20));
}

TEST(SetUpView, TakesABoxOfOnePointForOneAroundTheOrigin) {
    const ViewOf view({5, 5, 6, 6, 7, 7});
    EXPECT_EQ(view.modelSize, 10);
    EXPECT_THAT(view.centre, ElementsAre(0, 0, 0));
    EXPECT_THAT(view.eye, ElementsAre(0, 20, 20));
}

TEST(SetUpView, AcceptsAFlatBox) {
    const ViewOf view({0, 4, 0, 2, 3, 3});
    EXPECT_EQ(view.modelSize, 6);
    EXPECT_THAT(view.centre, ElementsAre(2, 1, 3));
    EXPECT_THAT(view.eye, ElementsAre(2, 13, 15));
}

TEST(SetUpView, AcceptsABoxThatIsALine) {
    const ViewOf view({-1, 1, 0, 0, 0, 0});
    EXPECT_EQ(view.modelSize, 2);
    EXPECT_THAT(view.centre, ElementsAre(0, 0, 0));
    EXPECT_THAT(view.eye, ElementsAre(0, 4, 4));
}

TEST(SetUpView, SumsTheExtentsAndDoesNotTakeTheDiagonal) {
    EXPECT_EQ(ViewOf({0, 3, 0, 4, 0, 12}).modelSize, 19);
}

TEST(SetUpView, CalculatesIn32BitsFromLeftToRight) {
    const std::array<float, 6> box{-16777216.0f, 1.0f, -0.1f, 0.3f, 0.7f, 33554432.0f};
    const ViewOf view(box);
    volatile float size = box[1] - box[0];
    size = size + box[3];
    size = size - box[2];
    size = size + box[5];
    size = size - box[4];
    EXPECT_EQ(view.modelSize, size);
    volatile float sum = box[0] + box[1];
    EXPECT_EQ(view.centre[0], sum * 0.5f);
    sum = box[2] + box[3];
    EXPECT_EQ(view.centre[1], sum * 0.5f);
    EXPECT_EQ(view.eye[1], view.centre[1] + 2 * view.modelSize);
}

TEST(SceneView, StartsEmpty) {
    const SceneView view;
    EXPECT_EQ(view.modelSize, 120);
    EXPECT_THAT(view.centre, ElementsAre(0, 0, 0));
    EXPECT_THAT(view.eye, ElementsAre(0, 0, 0));
    EXPECT_EQ(view.loaded.drawnTriangles, 0);
    EXPECT_EQ(view.loaded.pickMode, 0);
    EXPECT_EQ(view.loaded.maxDepth, 0);
    EXPECT_EQ(view.selectedIndex, -1);
    EXPECT_EQ(view.loaded.drawList, nullptr);
    EXPECT_EQ(view.loaded.resultMesh, nullptr);
    EXPECT_EQ(view.loaded.containers, nullptr);
}

} // namespace
} // namespace tarnwick::test
