#include "formats/string_map.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick {
namespace {

TEST(StringMap, Has4BucketsUpTo5Entries8UpTo11And16UpTo23) {
    const auto size = [](std::size_t entries) { return StringMap<int>(entries).size; };
    EXPECT_EQ(size(0), 4);
    EXPECT_EQ(size(5), 4);
    EXPECT_EQ(size(6), 8);
    EXPECT_EQ(size(11), 8);
    EXPECT_EQ(size(12), 16);
    EXPECT_EQ(size(23), 16);
    EXPECT_EQ(size(24), 32);
    const StringMap<int> map(23);
    EXPECT_EQ(map.bits, 4);
    EXPECT_EQ(map.mask, 15);
}

TEST(StringMap, MaskingTheHashOnceGivesTheBucketOfMaskingAtEachStep) {
    for (const std::string key : {"", "a", "pi--11--id1", "\xE9t\xE9", "a longer key with \x80 and \xFF"}) {
        for (std::int32_t bits = 2; bits < 20; ++bits) {
            const std::int32_t mask = (1 << bits) - 1;
            std::int32_t h = 0;
            for (const char c : key) { h = (h * 31 + static_cast<signed char>(c)) & mask; }
            EXPECT_EQ(StringMap<int>::Hash(key) & static_cast<std::uint32_t>(mask),
                      static_cast<std::uint32_t>(h));
        }
    }
}

TEST(StringMap, FindsTheFirstOfTwoEqualKeysAndNothingForAnother) {
    StringMap<int> map(3);
    map.Insert("a", 1);
    map.Insert("a", 2);
    map.Insert("", 3);
    EXPECT_EQ(*map.Find("a"), 1);
    EXPECT_EQ(*map.Find(""), 3);
    EXPECT_EQ(map.Find("b"), nullptr);
    EXPECT_EQ(map.count, 3);
    EXPECT_EQ(StringMap<int>(0).Find("a"), nullptr);
}

} // namespace
} // namespace tarnwick
