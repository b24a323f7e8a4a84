#include "platform/scratch_array.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace tarnwick::test {
namespace {

TEST(ScratchArray, KeepsWhatItHoldsWhileItGrows) {
    ScratchArray<std::int32_t> array;
    for (std::int32_t i = 0; i < 10000; ++i) {
        ASSERT_TRUE(array.Reserve(1));
        *array.Next() = i;
        array.Advance(1);
    }
    ASSERT_EQ(array.Count(), 10000u);
    for (std::int32_t i = 0; i < 10000; ++i) { ASSERT_EQ(array.Data()[i], i); }
}

TEST(ScratchArray, KeepsItsMemoryWhenEmptied) {
    ScratchArray<float> array;
    array.Reserve(1000);
    const float* const data = array.Data();
    array.Advance(1000);
    array.Clear();
    EXPECT_EQ(array.Count(), 0u);
    array.Reserve(1000);
    EXPECT_EQ(array.Data(), data);
}

TEST(ScratchArray, SaysNoToWhatCannotBe) {
    ScratchArray<float> array;
    EXPECT_FALSE(array.Reserve(SIZE_MAX));
    EXPECT_FALSE(array.Reserve(SIZE_MAX / sizeof(float)));
    EXPECT_TRUE(array.Reserve(1));
}

} // namespace
} // namespace tarnwick::test
