#include "offscreen/drawn_reach.h"

#include "offscreen/drawn_scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace tarnwick::test {
namespace {

using testing::DoubleEq;
using testing::ElementsAre;

const std::vector<Direction> kAxes{{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};

TEST(DrawnReach, IsOfTheVerticesThatTrianglesUse) {
    DrawnScene scene;
    scene.AddPart({0, 0, 0, 2, 0, 0, 2, 3, 4, 900, -900, 900}, {0, 1, 2});
    EXPECT_THAT(*DrawnReach(scene.view, kAxes), ElementsAre(2, 0, 3, 0, 4, 0));
}

TEST(DrawnReach, PassesOverATriangleWithAVertexThatIsNotThere) {
    DrawnScene scene;
    scene.AddPart({0, 0, 0, 2, 0, 0, 2, 3, 4, 9, 9, 9}, {0, 1, 2, 0, 3, 4});
    EXPECT_THAT(*DrawnReach(scene.view, kAxes), ElementsAre(2, 0, 3, 0, 4, 0));
}

TEST(DrawnReach, PassesOverAVertexThatIsNotFinite) {
    DrawnScene scene;
    const float infinite = std::numeric_limits<float>::infinity();
    scene.AddPart({0, 0, 0, 2, 0, 0, infinite, 3, 4, 2, 2, -1}, {0, 1, 2, 0, 1, 3});
    EXPECT_THAT(*DrawnReach(scene.view, kAxes), ElementsAre(2, 0, 2, 0, 0, 1));
}

TEST(DrawnReach, IsOfPartsWhereTheyArePlaced) {
    DrawnScene scene;
    // A quarter about z, then 10 along x: x, y, z goes to 10 - y, x, z.
    const float matrix[16] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 0, 0, 1};
    scene.AddPart({0, 0, 0, 2, 0, 0, 2, 3, 4}, {0, 1, 2}, matrix);
    scene.AddPart({0, 0, 0, 1, 0, 0, 1, 1, 1}, {0, 1, 2});
    EXPECT_THAT(*DrawnReach(scene.view, kAxes), ElementsAre(10, 0, 2, 0, 4, 0));
    EXPECT_THAT(*DrawnReach(scene.view, {{1, 1, 0}}), ElementsAre(DoubleEq(12))); // 10 - 0 + 2
}

TEST(DrawnReach, IsOfTheQuadsOfAFiniteElementMesh) {
    float nodes[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 7, 7, 7};
    std::uint32_t quads[] = {0, 1, 2, 3, 0, 1, 2, 9};
    ResultMesh mesh{nodes, nullptr, quads, 2, 5};
    SceneView view;
    view.loaded.resultMesh = &mesh;
    EXPECT_THAT(*DrawnReach(view, kAxes), ElementsAre(1, 0, 1, 0, 0, 0));
}

TEST(DrawnReach, IsNothingWhereNothingIsDrawn) {
    EXPECT_FALSE(DrawnReach(SceneView(), kAxes));
    DrawnScene scene;
    scene.AddPart({0, 0, 0, 2, 0, 0, 2, 3, 4}, {0, 1, 3});
    EXPECT_FALSE(DrawnReach(scene.view, kAxes));
}

} // namespace
} // namespace tarnwick::test
