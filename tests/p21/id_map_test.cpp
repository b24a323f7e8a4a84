#include "p21/id_map.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarnwick::test {
namespace {

struct Item {
    std::int32_t key;
    int value;
};
using Map = IdMap<Item, &Item::key>;

TEST(IdMap, FindsWhatWasAdded) {
    Arena arena;
    Map map(&arena, 3);
    Item items[100];
    for (std::int32_t i = 0; i < 100; ++i) {
        items[i] = {i * 37, i};
        EXPECT_TRUE(map.Add(&items[i]));
    }
    EXPECT_EQ(map.Count(), 100);
    for (std::int32_t i = 0; i < 100; ++i) {
        ASSERT_NE(map.Find(i * 37), nullptr);
        EXPECT_EQ(map.Find(i * 37)->value, i);
    }
    EXPECT_EQ(map.Find(1), nullptr);
}

TEST(IdMap, FindsTheItemThatWasAddedFirst) {
    Arena arena;
    Map map(&arena, 12);
    Item first{5, 1};
    Item second{5, 2};
    map.Add(&first);
    map.Add(&second);
    EXPECT_EQ(map.Find(5), &first);
    EXPECT_EQ(map.Count(), 2);
}

TEST(IdMap, HoldsKeysOfZeroAndBelow) {
    Arena arena;
    Map map(&arena, 2);
    Item zero{0, 1};
    Item below{-7, 2};
    map.Add(&zero);
    map.Add(&below);
    EXPECT_EQ(map.Find(0), &zero);
    EXPECT_EQ(map.Find(-7), &below);
    EXPECT_EQ(map.Find(-8), nullptr);
}

TEST(IdMap, AnswersNothingWhenItWasNeverMade) {
    Map map;
    Item item{1, 1};
    EXPECT_EQ(map.Find(1), nullptr);
    EXPECT_FALSE(map.Add(&item));
}

TEST(IdMap, FindsTheItemThatWasAddedFirstInALongBucketToo) {
    Arena arena;
    Map map(&arena, 2);
    std::vector<Item> items;
    for (std::int32_t i = 0; i < 5000; ++i) { items.push_back({i % 1000 * 4, i}); } // all in few buckets
    for (Item& item : items) { map.Add(&item); }
    for (std::int32_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(map.Find(i * 4), &items[static_cast<std::size_t>(i)]);
    }
    for (const std::int32_t key : {-4, 1, 3, 4001, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(map.Find(key), nullptr);
    }
    Item late{1, 1};
    map.Add(&late);
    EXPECT_EQ(map.Find(1), &late);
    EXPECT_EQ(map.Find(3996), &items[999]);
}

} // namespace
} // namespace tarnwick::test
