#include "text/look_up.h"

#include <gtest/gtest.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace tarnwick {
namespace {

using Numbers = LookUp<std::int32_t, int>;
using Names = LookUp<std::string_view, int>;

TEST(LookUp, FindsNumbersOfAllKinds) {
    Numbers table;
    const std::int32_t keys[] = {0, -7, 1, INT32_MAX, INT32_MIN, 4096};
    int value = 0;
    for (const std::int32_t key : keys) { table.Add(key, ++value); }
    value = 0;
    for (const std::int32_t key : keys) {
        ASSERT_NE(table.Find(key), nullptr);
        EXPECT_EQ(*table.Find(key), ++value);
    }
    for (const std::int32_t key : {-8, 2, INT32_MAX - 1}) { EXPECT_EQ(table.Find(key), nullptr); }
}

TEST(LookUp, FindsNamesOfAnyLength) {
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < 100; ++i) {
        keys.push_back(std::string(i, 'n'));
        keys.push_back(std::string(i, 'n') + '\0');
        keys.push_back(std::string(i, '\xFF') + "x");
    }
    Names table;
    for (std::size_t i = 0; i < keys.size(); ++i) { table.Add(keys[i], static_cast<int>(i)); }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const std::string copy = keys[i];
        ASSERT_NE(table.Find(copy), nullptr) << i;
        EXPECT_EQ(*table.Find(copy), static_cast<int>(i));
    }
    EXPECT_EQ(table.Find(std::string(100, 'n')), nullptr);
}

TEST(LookUp, FindsWhatWasAddedFirst) {
    Names table;
    table.Add("a", 1);
    table.Add("a", 2);
    table.Add("", 3);
    EXPECT_EQ(*table.Find("a"), 1);
    table.Add("a", 4);
    EXPECT_EQ(*table.Find("a"), 1);
    EXPECT_EQ(*table.Find(""), 3);
    EXPECT_EQ(table.Find("b"), nullptr);
    EXPECT_EQ(table.Count(), 4u);
    EXPECT_FALSE(table.AddNew("a", 5));
    EXPECT_TRUE(table.AddNew("b", 6));
    EXPECT_FALSE(table.AddNew("b", 7));
    EXPECT_EQ(*table.Find("b"), 6);
}

TEST(LookUp, HasNothingAtFirst) {
    Numbers table;
    EXPECT_TRUE(table.IsEmpty());
    EXPECT_EQ(table.Find(0), nullptr);
    int answers = 0;
    table.FindEach(
        20, [](std::int32_t i) { return i; },
        [&](std::int32_t, const int* value) { answers += value == nullptr ? 1 : 0; });
    EXPECT_EQ(answers, 20);
}

TEST(LookUp, MakesAnEntryForAKeyThatHasNone) {
    Numbers table;
    table.At(5) += 2;
    table.At(5) += 3;
    EXPECT_EQ(*table.Find(5), 5);
    EXPECT_EQ(table.At(6), 0);
    EXPECT_TRUE(table.Contains(6));
}

TEST(LookUp, AnswersTheSameWhenAddsAndFindsTakeTurns) {
    Numbers table;
    std::unordered_map<std::int32_t, int> plain;
    std::uint32_t random = 1;
    for (int i = 0; i < 20000; ++i) {
        random = random * 1664525 + 1013904223;
        const std::int32_t key = static_cast<std::int32_t>(random >> 20);
        if (random % 3 == 0) {
            table.Add(key, i);
            plain.emplace(key, i);
        }
        const auto wanted = plain.find(key);
        const int* const found = table.Find(key);
        ASSERT_EQ(found != nullptr, wanted != plain.end());
        if (found != nullptr) { ASSERT_EQ(*found, wanted->second); }
    }
}

TEST(LookUp, FindsManyAtOnceInTheirOrder) {
    std::vector<std::string> keys;
    for (int i = 0; i < 100; ++i) { keys.push_back("key" + std::to_string(i)); }
    Names table;
    for (int i = 0; i < 100; i += 2) { table.Add(keys[static_cast<std::size_t>(i)], i); }
    std::int32_t next = 0;
    table.FindEach(
        100, [&](std::int32_t i) { return std::string_view(keys[static_cast<std::size_t>(i)]); },
        [&](std::int32_t i, const int* value) {
            EXPECT_EQ(i, next++);
            ASSERT_EQ(value != nullptr, i % 2 == 0);
            if (value != nullptr) { EXPECT_EQ(*value, i); }
        });
    EXPECT_EQ(next, 100);
}

// How far the fullest of 2^12 places is filled by 2^14 hashes; 4 each would be even.
template <class KeyOf>
int Fullest(HashSecret secret, KeyOf keyOf) {
    std::vector<int> filled(1 << 12);
    int fullest = 0;
    for (std::uint32_t i = 0; i < 1 << 14; ++i) {
        fullest = std::max(fullest, ++filled[HashOf(keyOf(i), secret) >> 20]);
    }
    return fullest;
}

TEST(HashOf, SpreadsNumbersThatWereChosenToMeet) {
    for (int round = 0; round < 8; ++round) {
        const std::vector<char> somewhere(static_cast<std::size_t>(1 + 100 * round));
        const HashSecret secret = HashSecret::Of(somewhere.data());
        for (const std::uint64_t step : {1u, 64u, 4096u, 65536u, 1u << 20}) {
            EXPECT_LT(Fullest(secret, [step](std::uint32_t i) { return step * i; }), 30) << step;
        }
        // The digits of all of them have one sum.
        EXPECT_LT(Fullest(secret, [](std::uint32_t i) { return std::uint64_t{i} << 14 | (0x3FFFu - i); }),
                  30);
    }
}

TEST(HashOf, TellsNamesOfDifferentLengthsApart) {
    const int table = 0;
    const HashSecret secret = HashSecret::Of(&table);
    const std::string zeros(40, '\0');
    std::vector<std::uint32_t> hashes;
    for (std::size_t length = 0; length <= zeros.size(); ++length) {
        const std::uint32_t hash = HashOf(std::string_view(zeros.data(), length), secret);
        for (const std::uint32_t other : hashes) { EXPECT_NE(hash, other) << length; }
        hashes.push_back(hash);
    }
}

TEST(HashOf, SpreadsNamesOfEqualSums) {
    const int table = 0;
    const HashSecret secret = HashSecret::Of(&table);
    std::string name;
    const auto keyOf = [&name](std::uint32_t i) {
        name.clear();
        // "Aa" and "BB" have one sum in base 31.
        for (int bit = 0; bit < 14; ++bit) { name += (i >> bit & 1) != 0 ? "BB" : "Aa"; }
        return std::string_view(name);
    };
    EXPECT_LT(Fullest(secret, keyOf), 30);
}

} // namespace
} // namespace tarnwick
