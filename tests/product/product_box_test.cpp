#include "product/scene_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

TEST(ProductBox, OfAPartStaysAsItsReaderLeftIt) {
    SceneTree tree;
    ProductNode* const part = tree.Part("part", 1, {1, 2, 3, 4, 5, 6});
    ComputeProductBox(part);
    EXPECT_EQ(part->hasBox, 1);
    EXPECT_THAT(part->box, ElementsAre(1, 2, 3, 4, 5, 6));
    ProductNode* const bare = tree.Product("bare");
    ComputeProductBox(bare);
    EXPECT_EQ(bare->hasBox, 0);
}

TEST(ProductBox, IsAroundTheBoxesOfAllChildren) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const part = tree.Part("part", 1, {-1, 1, -2, 2, -3, 3});
    tree.Use(top, part, {10, 0, 0});
    tree.Use(top, part, {0, 20, 0});
    tree.Use(top, part, {0, 0, -30});
    ComputeProductBox(top);
    EXPECT_EQ(top->hasBox, 1);
    EXPECT_THAT(top->box, ElementsAre(-1, 11, -2, 22, -33, 3));
}

TEST(ProductBox, StartsFromTheFirstChildThatHasOne) {
    // Far from the origin, which must not get into it; the children without a box are passed over.
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    tree.Use(top, tree.Product("empty"));
    tree.Use(top, tree.Part("part", 1, {5, 6, 5, 6, -6, -5}));
    tree.Use(top, tree.Product("empty too"), {900, 900, 900});
    ComputeProductBox(top);
    EXPECT_THAT(top->box, ElementsAre(5, 6, 5, 6, -6, -5));
}

TEST(ProductBox, IsNoneWhereNoChildHasOne) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    tree.Use(top, tree.Product("empty"));
    ComputeProductBox(top);
    EXPECT_EQ(top->hasBox, 0);
    EXPECT_THAT(top->box, ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST(ProductBox, ReplacesTheOneThatAProductHad) {
    SceneTree tree;
    ProductNode* const both = tree.Part("both", 1, {0, 100, 0, 100, 0, 100});
    tree.Use(both, tree.Part("part", 1), {7, 0, 0});
    ComputeProductBox(both);
    EXPECT_THAT(both->box, ElementsAre(7, 8, 0, 1, 0, 1));
    // But not where no child has a box.
    ProductNode* const other = tree.Part("other", 1, {0, 100, 0, 100, 0, 100});
    tree.Use(other, tree.Product("empty"));
    ComputeProductBox(other);
    EXPECT_EQ(other->hasBox, 1);
    EXPECT_THAT(other->box, ElementsAre(0, 100, 0, 100, 0, 100));
}

TEST(ProductBox, OfATurnedChildLiesElsewhereThanWhatIsDrawn) {
    // A quarter turn about z: drawn, y goes to minus x; in the box it goes to x.
    const Rotation quarter{0, 1, 0, 1, 0, 0, 0, 0, 1};
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    tree.Use(top, tree.Part("part", 1, {0, 1, 0, 5, 0, 1}), {}, quarter);
    ComputeProductBox(top);
    EXPECT_THAT(top->box, ElementsAre(0, 5, 0, 1, 0, 1));
}

TEST(ProductBox, TakesTheRotationRowByRow) {
    const Rotation rotation{1, 2, 3, 10, 20, 30, 100, 200, 300};
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    tree.Use(top, tree.Part("part", 1, {1, 1, 1, 1, 1, 1}), {1000, 2000, 3000}, rotation);
    ComputeProductBox(top);
    EXPECT_THAT(top->box, ElementsAre(1111, 1111, 2222, 2222, 3333, 3333));
}

TEST(ProductBox, RoundsToF32BeforeTheTranslationAndAfterIt) {
    // 16777217 isn't an f32: it is rounded to 16777216 before the move by 1, which is then lost as well.
    const Rotation rotation{16777217, 0, 0, 0, 1, 0, 0, 0, 1};
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    tree.Use(top, tree.Part("part", 1, {1, 1, 0, 0, 0, 0}), {1, 0, 0}, rotation);
    ComputeProductBox(top);
    EXPECT_EQ(top->box[0], 16777216.0f);
    // In f64 throughout it would be 3: 16777217 minus 16777214.
    ProductNode* const other = tree.Product("other");
    tree.Use(other, tree.Part("part", 1, {1, 1, 0, 0, 0, 0}), {-16777214, 0, 0}, rotation);
    ComputeProductBox(other);
    EXPECT_EQ(other->box[0], 2.0f);
}

TEST(ProductBox, IsThatOfThePlainForm) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> value(-100, 100);
    for (int round = 0; round < 200; ++round) {
        SceneTree tree;
        ProductNode* const top = tree.Product("top");
        const int children = 1 + round % 5;
        for (int i = 0; i < children; ++i) {
            Rotation rotation;
            Translation move;
            for (double& v : rotation) { v = value(random) / 50; }
            for (double& v : move) { v = value(random); }
            std::array<float, 6> box;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                box[2 * axis] = static_cast<float>(value(random));
                box[2 * axis + 1] = box[2 * axis] + static_cast<float>(std::fabs(value(random)));
            }
            tree.Use(top, tree.Part("part", 1, box), move, rotation);
        }
        ComputeProductBox(top);
        std::array<float, 6> expected{};
        ASSERT_TRUE(PlainBox(*top, &expected));
        ASSERT_THAT(top->box, ElementsAreArray(expected));
    }
}

} // namespace
} // namespace tarnwick::test
