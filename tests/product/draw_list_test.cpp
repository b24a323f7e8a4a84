#include "product/draw_list.h"

#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

// The capacity of a list with this capacity that is full, after one more append.
std::int32_t GrownFrom(std::int32_t capacity) {
    Arena arena;
    DrawList* const list = MakeDrawList(arena, capacity);
    DrawItem items[101] = {};
    for (std::int32_t i = 0; i < capacity; ++i) {
        EXPECT_TRUE(AppendItem(arena, list, &items[i]));
        EXPECT_EQ(list->capacity, capacity) << "not before it is full";
    }
    EXPECT_TRUE(AppendItem(arena, list, &items[capacity]));
    EXPECT_EQ(list->count, capacity + 1);
    for (std::int32_t i = 0; i <= capacity; ++i) { EXPECT_EQ(list->items[i], &items[i]); }
    return list->capacity;
}

TEST(DrawList, StartsEmptyWithItsCapacity) {
    Arena arena;
    const DrawList* const list = MakeDrawList(arena, 7);
    EXPECT_EQ(list->count, 0);
    EXPECT_EQ(list->capacity, 7);
}

TEST(DrawList, GrowsToTwiceItsCapacity) {
    EXPECT_EQ(GrownFrom(5), 10);
    EXPECT_EQ(GrownFrom(6), 12);
    EXPECT_EQ(GrownFrom(12), 24);
    EXPECT_EQ(GrownFrom(100), 200);
}

TEST(DrawList, GrowsToTwelveWhenTwiceIsBelowTen) {
    EXPECT_EQ(GrownFrom(0), 12);
    EXPECT_EQ(GrownFrom(1), 12);
    EXPECT_EQ(GrownFrom(4), 12);
}

} // namespace
} // namespace tarnwick::test
