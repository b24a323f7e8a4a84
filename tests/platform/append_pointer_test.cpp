#include "platform/append_pointer.h"

#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

TEST(AppendPointer, StartsWithRoomForTen) {
    Arena arena;
    int** array = nullptr;
    std::int32_t capacity = 0;
    std::int32_t count = 0;
    int value = 0;
    EXPECT_TRUE(AppendPointer(arena, &array, &capacity, &count, &value));
    EXPECT_EQ(capacity, 10);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(array[0], &value);
}

TEST(AppendPointer, GrowsToTwentyAtTheTenthAppend) {
    Arena arena;
    int** array = nullptr;
    std::int32_t capacity = 0;
    std::int32_t count = 0;
    int values[40];
    for (int i = 0; i < 9; ++i) { AppendPointer(arena, &array, &capacity, &count, &values[i]); }
    EXPECT_EQ(capacity, 10);
    AppendPointer(arena, &array, &capacity, &count, &values[9]);
    EXPECT_EQ(capacity, 20);
    for (int i = 10; i < 40; ++i) {
        AppendPointer(arena, &array, &capacity, &count, &values[i]);
        EXPECT_LT(count, capacity) << "there is always a free place";
    }
    EXPECT_EQ(capacity, 80);
    for (int i = 0; i < 40; ++i) { EXPECT_EQ(array[i], &values[i]); }
}

} // namespace
} // namespace tarnwick::test
