#include "text/string_map.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick {
namespace {

TEST(StringMap, Has4BucketsUpTo5Entries8UpTo11And16UpTo23) {
    const auto map = [](int entries) {
        StringMap<int> built;
        for (int i = 0; i < entries; ++i) { built.Add("k", i); }
        built.Build();
        return built;
    };
    const auto size = [&](int entries) { return map(entries).size; };
    EXPECT_EQ(size(0), 4);
    EXPECT_EQ(size(5), 4);
    EXPECT_EQ(size(6), 8);
    EXPECT_EQ(size(11), 8);
    EXPECT_EQ(size(12), 16);
    EXPECT_EQ(size(23), 16);
    EXPECT_EQ(size(24), 32);
    EXPECT_EQ(map(23).bits, 4);
    EXPECT_EQ(map(23).mask, 15);
    EXPECT_EQ(map(23).count, 23);
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
    StringMap<int> map;
    map.Add("a", 1);
    map.Add("a", 2);
    map.Add("", 3);
    map.Build();
    EXPECT_EQ(*map.Find("a"), 1);
    EXPECT_EQ(*map.Find(""), 3);
    EXPECT_EQ(map.Find("b"), nullptr);
    EXPECT_EQ(map.count, 3);
    StringMap<int> empty;
    empty.Build();
    EXPECT_EQ(empty.Find("a"), nullptr);
}

TEST(StringMap, FindsTheFirstOfTheKeysThatMeetInOneBucket) {
    // "Aa" and "BB" have one hash, and so have all texts that are put together from as many of them.
    std::vector<std::string> keys{""};
    for (int i = 0; i < 10; ++i) {
        std::vector<std::string> longer;
        for (const std::string& key : keys) {
            longer.push_back(key + "Aa");
            longer.push_back(key + "BB");
        }
        keys = std::move(longer);
    }
    StringMap<int> map;
    for (int i = 0; i < 2048; ++i) { map.Add(keys[static_cast<std::size_t>(i) % keys.size()], i); }
    map.Build();
    for (int i = 0; i < 1024; ++i) {
        const int* const found = map.Find(keys[static_cast<std::size_t>(i)]);
        ASSERT_NE(found, nullptr);
        ASSERT_EQ(*found, i);
    }
    EXPECT_EQ(map.Find("AaAaAaAaAaAaAaAaAaAB"), nullptr);
}

} // namespace
} // namespace tarnwick
