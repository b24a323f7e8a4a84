#include "product/draw_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

TEST(BoxItem, HasTheStatedVerticesNormalsAndTriangles) {
    const std::array<std::array<const char*, 4>, 6> corners{{{"hhl", "hhh", "hlh", "hll"},
                                                             {"lhl", "lhh", "hhh", "hhl"},
                                                             {"lhh", "llh", "hlh", "hhh"},
                                                             {"lll", "llh", "lhh", "lhl"},
                                                             {"hll", "hlh", "llh", "lll"},
                                                             {"lll", "lhl", "hhl", "hll"}}};
    const std::array<std::array<float, 3>, 6> normals{
        {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}};
    const double box[6] = {1, 2, 10, 20, 100, 200};
    Arena arena;
    DrawList list{};
    ProductNode product{};
    ASSERT_TRUE(AddBoxItem(arena, &list, box, &product, nullptr));
    ASSERT_EQ(list.count, 1);
    const BoxItem& item = *list.boxes[0];
    EXPECT_EQ(item.vertexCount, 24);
    EXPECT_EQ(item.triangleCount, 12);
    EXPECT_EQ(item.product, &product);
    EXPECT_EQ(item.matrix, nullptr);
    for (std::size_t face = 0; face < 6; ++face) {
        for (std::size_t corner = 0; corner < 4; ++corner) {
            const std::size_t v = 3 * (4 * face + corner);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const bool high = corners[face][corner][axis] == 'h';
                EXPECT_EQ(item.vertices[v + axis], static_cast<float>(box[2 * axis + (high ? 1 : 0)]))
                    << face << "." << corner << "." << axis;
                EXPECT_EQ(item.normals[v + axis], normals[face][axis]);
            }
        }
    }
    EXPECT_THAT(std::vector<std::uint32_t>(item.indices, item.indices + 36),
                ElementsAre(0, 1, 2, 2, 3, 0, 4, 5, 6, 6, 7, 4, 8, 9, 10, 10, 11, 8, 12, 13, 14, 14, 15, 12,
                            16, 17, 18, 18, 19, 16, 20, 21, 22, 22, 23, 20));
}

TEST(BoxItem, RoundsItsLimitsToF32) {
    const double box[6] = {0.1, 16777217, 0, 0, 0, 0};
    Arena arena;
    DrawList list{};
    AddBoxItem(arena, &list, box, nullptr, nullptr);
    EXPECT_EQ(list.boxes[0]->vertices[36], 0.1f); // the first vertex of the face at the minimum of x
    EXPECT_EQ(list.boxes[0]->vertices[0], 16777216.0f);
}

TEST(BoxItem, OfNoSizeStillHasItsNormals) {
    const double box[6] = {};
    Arena arena;
    DrawList list{};
    AddBoxItem(arena, &list, box, nullptr, nullptr);
    const BoxItem& item = *list.boxes[0];
    EXPECT_THAT(std::vector<float>(item.vertices, item.vertices + 72), ::testing::Each(0.0f));
    for (std::size_t v = 0; v < 24; ++v) {
        const float* const n = item.normals + 3 * v;
        EXPECT_EQ(n[0] * n[0] + n[1] * n[1] + n[2] * n[2], 1.0f);
    }
    EXPECT_EQ(item.product, nullptr);
}

TEST(BoxItem, CopiesItsMatrix) {
    const double box[6] = {};
    float matrix[16];
    for (int i = 0; i < 16; ++i) { matrix[i] = static_cast<float>(i); }
    const std::vector<float> before(matrix, matrix + 16);
    Arena arena;
    DrawList list{};
    AddBoxItem(arena, &list, box, nullptr, matrix);
    std::fill_n(matrix, 16, -1.0f);
    ASSERT_NE(list.boxes[0]->matrix, nullptr);
    EXPECT_THAT(std::vector<float>(list.boxes[0]->matrix, list.boxes[0]->matrix + 16),
                ElementsAreArray(before));
}

TEST(BoxList, GrowsFromNothingTo12AndThenDoubles) {
    const double box[6] = {};
    Arena arena;
    DrawList list{};
    for (int i = 0; i < 49; ++i) {
        AddBoxItem(arena, &list, box, nullptr, nullptr);
        EXPECT_EQ(list.capacity, i < 12 ? 12 : i < 24 ? 24 : i < 48 ? 48 : 96) << i;
    }
    EXPECT_EQ(list.count, 49);
}

TEST(BoxList, IsEmptyAfterFreeingAndRegrowsTo12) {
    const double box[6] = {0, 1, 0, 1, 0, 1};
    Arena arena;
    DrawList list{};
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 30; ++i) { AddBoxItem(arena, &list, box, nullptr, nullptr); }
        EXPECT_EQ(list.capacity, 48);
        FreeBoxList(arena, &list);
        EXPECT_EQ(list.boxes, nullptr);
        EXPECT_EQ(list.count, 0);
        EXPECT_EQ(list.capacity, 0);
    }
    AddBoxItem(arena, &list, box, nullptr, nullptr);
    EXPECT_EQ(list.capacity, 12);
    EXPECT_EQ(list.boxes[0]->vertices[0], 1);
}

TEST(BoxList, WithoutItemsIsLeftAsItIs) {
    Arena arena;
    DrawList list{};
    list.capacity = 5;
    FreeBoxList(arena, &list);
    EXPECT_EQ(list.capacity, 5);
}

TEST(BoxList, IsRebuiltInTheMemoryThatItHad) {
    const double box[6] = {};
    Arena arena;
    DrawList list{};
    std::size_t held = 0;
    for (int round = 0; round < 50; ++round) {
        for (int i = 0; i < 1000; ++i) { AddBoxItem(arena, &list, box, nullptr, nullptr); }
        FreeBoxList(arena, &list);
        if (round == 10) { held = arena.Held(); }
        if (round > 10) { EXPECT_LE(arena.Held(), held); }
    }
}

} // namespace
} // namespace tarnwick::test
