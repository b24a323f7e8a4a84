// Placed copies of a list's items: growth of the list, the matrix of an occurrence, the product of matrices.

#include "product/scene_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

std::vector<std::uint32_t> BitsOf(const std::vector<float>& values) {
    std::vector<std::uint32_t> bits;
    for (const float value : values) { bits.push_back(std::bit_cast<std::uint32_t>(value)); }
    return bits;
}

// The capacity of a list of (capacity, count) after `n` more items.
std::int32_t CapacityAfter(std::int32_t capacity, std::int32_t count, std::int32_t n) {
    SceneTree tree;
    DrawList* const list = tree.List(capacity, count);
    EXPECT_EQ(list->capacity, capacity);
    DrawList* const source = tree.List(n + 1, n + 1);
    const double nowhere[3] = {};
    EXPECT_TRUE(AppendPlacedItems(tree.arena, list, n, source->items, nullptr, nowhere));
    EXPECT_EQ(list->count, count + n);
    for (std::int32_t i = 0; i < list->count; ++i) {
        EXPECT_EQ(list->items[i]->meshes, source->items[0]->meshes);
        EXPECT_EQ(list->items[i]->matrix == nullptr, i < count);
    }
    return list->capacity;
}

TEST(PlacedItems, GrowAListByTheStatedRule) {
    EXPECT_EQ(CapacityAfter(1, 1, 5), 12);
    EXPECT_EQ(CapacityAfter(100, 90, 200), 301);
    EXPECT_EQ(CapacityAfter(100, 90, 9), 100);
    EXPECT_EQ(CapacityAfter(100, 90, 10), 200); // already when it would be just full
    EXPECT_EQ(CapacityAfter(100, 0, 100), 200);
    EXPECT_EQ(CapacityAfter(100, 0, 199), 200);
    EXPECT_EQ(CapacityAfter(100, 0, 200), 301);
    EXPECT_EQ(CapacityAfter(1, 1, 11), 13); // 12 would be just full
    EXPECT_EQ(CapacityAfter(1, 0, 11), 12);
    EXPECT_EQ(CapacityAfter(4, 3, 1), 12);
    EXPECT_EQ(CapacityAfter(5, 4, 1), 10);
    EXPECT_EQ(CapacityAfter(5, 5, 5), 11);
    EXPECT_EQ(CapacityAfter(100, 90, 0), 100);
}

TEST(PlacedItems, GrowAFullListEvenByNothing) {
    EXPECT_EQ(CapacityAfter(1, 1, 0), 12);
    EXPECT_EQ(CapacityAfter(100, 100, 0), 200);
}

TEST(AppendedItems, GrowAListOnlyWhenItIsFull) {
    SceneTree tree;
    const auto capacityAfterOne = [&tree](std::int32_t capacity, std::int32_t count) {
        DrawList* const list = tree.List(capacity, count);
        AppendItem(tree.arena, list, list->items[0]);
        return list->capacity;
    };
    EXPECT_EQ(capacityAfterOne(1, 1), 12);
    EXPECT_EQ(capacityAfterOne(4, 4), 12);
    EXPECT_EQ(capacityAfterOne(5, 5), 10);
    EXPECT_EQ(capacityAfterOne(100, 99), 100);
    EXPECT_EQ(capacityAfterOne(100, 100), 200);
    DrawList empty{};
    AppendItem(tree.arena, &empty, nullptr);
    EXPECT_EQ(empty.capacity, 12);
    EXPECT_EQ(empty.count, 1);
}

TEST(PlacedItems, AreNoMoreThanAListMayHave) {
    SceneTree tree;
    DrawList* const list = tree.List(100, 1);
    EXPECT_FALSE(AppendPlacedItems(tree.arena, list, 1 << 24, nullptr, nullptr, nullptr));
    EXPECT_EQ(list->count, 1);
    EXPECT_EQ(list->capacity, 100);
}

TEST(PlacedItems, ShareMeshesAndNameThePart) {
    SceneTree tree;
    ProductNode* const part = tree.Part("part", 3);
    const DrawItem* const own = part->drawList->items[0];
    DrawList* const list = tree.List(100, 0);
    const double move[3] = {1, 2, 3};
    AppendPlacedItems(tree.arena, list, 1, part->drawList->items, kNoRotation.data(), move);
    const DrawItem& placed = *list->items[0];
    EXPECT_NE(&placed, own);
    EXPECT_EQ(placed.meshes, own->meshes);
    EXPECT_EQ(placed.meshCount, 1);
    EXPECT_EQ(placed.product, part);
    EXPECT_EQ(own->matrix, nullptr);
    EXPECT_THAT(MatrixOf(placed), ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1));
}

TEST(PlacedItems, EachHaveAMatrixOfTheirOwn) {
    SceneTree tree;
    DrawList* const source = tree.List(100, 3);
    DrawList* const list = tree.List(100, 0);
    AppendPlacedItems(tree.arena, list, 3, source->items, kNoRotation.data(), nullptr);
    EXPECT_NE(list->items[0]->matrix, list->items[1]->matrix);
    EXPECT_NE(list->items[1]->matrix, list->items[2]->matrix);
}

TEST(PlacedItems, TakeNullForNoRotationAndNoTranslation) {
    SceneTree tree;
    DrawList* const source = tree.List(100, 1);
    DrawList* const list = tree.List(100, 0);
    const Rotation rotation{1, 2, 3, 4, 5, 6, 7, 8, 9};
    const double move[3] = {10, 11, 12};
    AppendPlacedItems(tree.arena, list, 1, source->items, nullptr, nullptr);
    AppendPlacedItems(tree.arena, list, 1, source->items, rotation.data(), nullptr);
    AppendPlacedItems(tree.arena, list, 1, source->items, nullptr, move);
    EXPECT_THAT(MatrixOf(*list->items[0]), ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    EXPECT_THAT(MatrixOf(*list->items[1]), ElementsAre(1, 2, 3, 0, -4, 5, -6, 0, 7, 8, 9, 0, 0, 0, 0, 1));
    EXPECT_THAT(MatrixOf(*list->items[2]), ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 11, 12, 1));
}

TEST(PlacedItems, RoundRotationAndTranslationToF32) {
    SceneTree tree;
    DrawList* const source = tree.List(100, 1);
    DrawList* const list = tree.List(100, 0);
    Rotation rotation = kNoRotation;
    rotation[0] = 0.1;
    rotation[3] = 1.0 / 3;
    const double move[3] = {16777217.0, -0.1, 1e-50};
    AppendPlacedItems(tree.arena, list, 1, source->items, rotation.data(), move);
    const std::vector<float> m = MatrixOf(*list->items[0]);
    EXPECT_EQ(m[0], 0.1f);
    EXPECT_EQ(m[4], -(1.0f / 3));
    EXPECT_EQ(m[12], 16777216.0f);
    EXPECT_EQ(m[13], -0.1f);
    EXPECT_EQ(m[14], 0.0f);
}

TEST(PlacedItems, TurnAWorldAlignedTargetFrameIntoTheTrueTurn) {
    // What the reader makes of a target with X along y: 90 degrees about z.
    const Rotation rotation{0, 1, 0, 1, 0, 0, 0, 0, 1};
    SceneTree tree;
    DrawList* const source = tree.List(100, 1);
    DrawList* const list = tree.List(100, 0);
    AppendPlacedItems(tree.arena, list, 1, source->items, rotation.data(), nullptr);
    const std::vector<float> m = MatrixOf(*list->items[0]);
    // The images of x and y are the columns.
    EXPECT_THAT(std::vector<float>(m.begin(), m.begin() + 3), ElementsAre(0, 1, 0));
    EXPECT_THAT(std::vector<float>(m.begin() + 4, m.begin() + 7), ElementsAre(-1, 0, 0));
    EXPECT_THAT(std::vector<float>(m.begin() + 8, m.begin() + 11), ElementsAre(0, 0, 1));
}

TEST(PlacedItems, HaveTheOccurrenceOnTheLeftOfTheOldMatrix) {
    SceneTree tree;
    DrawList* const part = tree.List(100, 1);
    DrawList* const inner = tree.List(100, 0);
    const double move[3] = {1, 0, 0};
    const Rotation quarter{0, 1, 0, 1, 0, 0, 0, 0, 1};
    AppendPlacedItems(tree.arena, inner, 1, part->items, kNoRotation.data(), move);
    DrawList* const outer = tree.List(100, 0);
    AppendPlacedItems(tree.arena, outer, 1, inner->items, quarter.data(), nullptr);
    // First moved along x, then turned: the part lies on the y axis.
    const std::vector<float> m = MatrixOf(*outer->items[0]);
    EXPECT_THAT(std::vector<float>(m.begin() + 12, m.end()), ElementsAre(0, 1, 0, 1));
    // The inner list keeps its own matrix.
    EXPECT_EQ(inner->items[0]->matrix[12], 1);
    EXPECT_EQ(inner->items[0]->matrix[13], 0);
}

TEST(MultiplyMatrix, AddsItsProductsInF32FromTheFirstToTheLast) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> value(-1000, 1000);
    for (int round = 0; round < 1000; ++round) {
        std::vector<float> a(16);
        std::vector<float> b(16);
        for (float& v : a) { v = value(random); }
        for (float& v : b) { v = value(random); }
        std::vector<float> out(16);
        MultiplyMatrix(a.data(), b.data(), out.data());
        ASSERT_EQ(BitsOf(out), BitsOf(PlainProduct(a, b)));
    }
}

TEST(MultiplyMatrix, SumsWithoutKeepingMoreDigitsThanF32) {
    // 1 is lost on the way: (1e8 + 1) - 1e8.
    std::vector<float> a(16);
    std::vector<float> b(16);
    a[0] = 1e8f;
    a[4] = 1;
    a[8] = -1e8f;
    b[0] = b[1] = b[2] = 1;
    std::vector<float> out(16);
    MultiplyMatrix(a.data(), b.data(), out.data());
    EXPECT_EQ(out[0], 0);
}

TEST(MultiplyMatrix, IsColumnByColumn) {
    std::vector<float> a(16);
    std::vector<float> b(16);
    for (std::size_t i = 0; i < 16; ++i) { a[i] = static_cast<float>(i); }
    b[4] = 1; // row 0 of column 1: out's column 1 is a's column 0
    std::vector<float> out(16);
    MultiplyMatrix(a.data(), b.data(), out.data());
    EXPECT_THAT(out, ElementsAre(0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0));
}

} // namespace
} // namespace tarnwick::test
