#include "platform/arena.h"
#include "platform/sanitizers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace tarnwick::test {
namespace {

struct Record {
    std::int32_t number;
    double value;
    void* pointer;
};

TEST(Arena, GivesZeroFilledRecords) {
    Arena arena;
    for (int round = 0; round < 3; ++round) {
        Record* const records = arena.New<Record>(1000);
        for (int i = 0; i < 1000; ++i) {
            EXPECT_EQ(records[i].number, 0);
            EXPECT_EQ(records[i].value, 0);
            EXPECT_EQ(records[i].pointer, nullptr);
        }
        std::memset(static_cast<void*>(records), 0xFF, 1000 * sizeof(Record));
        arena.Reset(); // the same memory comes again
    }
}

TEST(Arena, AlignsToEight) {
    Arena arena;
    for (std::size_t bytes = 0; bytes < 40; ++bytes) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(arena.Allocate(bytes)) % 8, 0u);
    }
}

TEST(Arena, NeverMovesARecord) {
    Arena arena;
    std::vector<std::int32_t*> numbers;
    for (std::int32_t i = 0; i < 200000; ++i) {
        numbers.push_back(arena.New<std::int32_t>());
        *numbers.back() = i;
    }
    for (std::int32_t i = 0; i < 200000; ++i) { ASSERT_EQ(*numbers[static_cast<std::size_t>(i)], i); }
}

TEST(Arena, GivesABlockOfAnySize) {
    Arena arena;
    for (const std::size_t bytes :
         {std::size_t{1}, std::size_t{65536}, std::size_t{65537}, std::size_t{50} << 20}) {
        char* const block = static_cast<char*>(arena.Allocate(bytes));
        ASSERT_NE(block, nullptr);
        std::memset(block, 1, bytes);
    }
    EXPECT_GE(arena.Held(), std::size_t{50} << 20);
}

TEST(Arena, SaysNoToWhatCannotBe) {
    Arena arena;
    EXPECT_EQ(arena.Allocate(SIZE_MAX), nullptr);
    EXPECT_EQ(arena.New<Record>(SIZE_MAX / 2), nullptr);
    EXPECT_NE(arena.Allocate(8), nullptr);
}

TEST(Arena, CopiesCharactersAndEndsThem) {
    Arena arena;
    EXPECT_STREQ(arena.Copy("abcdef", 3), "abc");
    EXPECT_STREQ(arena.Copy("", 0), "");
    EXPECT_STREQ(arena.Copy("12345678", 8), "12345678");
}

TEST(Arena, GivesEverythingBackAtOnce) {
    Arena arena;
    for (int i = 0; i < 100; ++i) { arena.Allocate(100000); }
    arena.Free();
    EXPECT_EQ(arena.Held(), 0u);
    EXPECT_NE(arena.Allocate(10), nullptr) << "and can be used again";
}

TEST(Arena, KeepsItsLargestChunkWhenReset) {
    Arena arena;
    arena.Allocate(100);
    arena.Allocate(10 << 20);
    arena.Allocate(100);
    arena.Reset();
    EXPECT_GE(arena.Held(), std::size_t{10} << 20);
    const std::size_t held = arena.Held();
    arena.Allocate(10 << 20);
    EXPECT_EQ(arena.Held(), held);
    Arena unused;
    unused.Reset();
    EXPECT_EQ(unused.Held(), 0u);
}

TEST(Arena, HandsItsRecordsOverWhenMoved) {
    Arena first;
    const char* const name = first.Copy("name", 4);
    Arena second(std::move(first));
    EXPECT_STREQ(name, "name");
    EXPECT_NE(second.Copy("more", 4), nullptr);
    Arena third;
    third = std::move(second);
    EXPECT_STREQ(name, "name");
}

TEST(TipArray, GrowsWhereItStandsOrMoves) {
    Arena arena;
    arena.Copy("something ahead", 15);
    TipArray<std::uint32_t> array(arena);
    for (std::uint32_t i = 0; i < 300000; ++i) {
        ASSERT_TRUE(array.Reserve(1));
        *array.Next() = i;
        array.Advance(1);
    }
    EXPECT_EQ(array.Count(), 300000u);
    const std::uint32_t* const values = array.Close();
    char* const behind = arena.Copy("behind", 6);
    for (std::uint32_t i = 0; i < 300000; ++i) { ASSERT_EQ(values[i], i); }
    EXPECT_STREQ(behind, "behind");
    EXPECT_GE(reinterpret_cast<std::uintptr_t>(behind), reinterpret_cast<std::uintptr_t>(values + 300000));
}

TEST(TipArray, GivesItsRoomBackWhenDropped) {
    Arena arena;
    const char* const before = arena.Copy("a", 1);
    {
        TipArray<float> array(arena);
        array.Reserve(100);
        array.Advance(100);
        array.Drop();
    }
    const char* const after = arena.Copy("b", 1);
    EXPECT_EQ(after, before + 8);
}

TEST(Arena, GoesBackToAPlace) {
    Arena arena;
    std::int32_t* const kept = arena.New<std::int32_t>(100);
    kept[99] = 7;
    const Arena::Place place = arena.Here();
    const std::size_t held = arena.Held();
    std::int32_t* const dropped = arena.New<std::int32_t>();
    for (int i = 0; i < 10; ++i) { ASSERT_NE(arena.Allocate(std::size_t{1} << 20), nullptr); }
    arena.GoBack(place);
    EXPECT_EQ(arena.Held(), held);
    EXPECT_EQ(arena.New<std::int32_t>(), dropped);
    EXPECT_EQ(kept[99], 7);
}

TEST(Arena, GoesBackToItsBeginning) {
    Arena arena;
    const Arena::Place place = arena.Here();
    ASSERT_NE(arena.Allocate(8), nullptr);
    arena.GoBack(place);
    EXPECT_EQ(arena.Held(), 0u);
    EXPECT_NE(arena.Allocate(8), nullptr);
}

TEST(Arena, TakesOverTheRecordsOfAnother) {
    Arena arena;
    std::int32_t* const own = arena.New<std::int32_t>();
    std::int32_t* taken = nullptr;
    {
        Arena other;
        taken = other.New<std::int32_t>();
        *taken = 5;
        ASSERT_NE(other.Allocate(std::size_t{5} << 20), nullptr);
        const std::size_t held = arena.Held() + other.Held();
        ASSERT_TRUE(arena.TakeOver(&other));
        EXPECT_EQ(arena.Held(), held);
        EXPECT_EQ(other.Held(), 0u);
        EXPECT_NE(other.Allocate(8), nullptr) << "it begins afresh";
    }
    EXPECT_EQ(*taken, 5);
    EXPECT_EQ(reinterpret_cast<char*>(arena.New<std::int32_t>()) - reinterpret_cast<char*>(own), 8)
        << "it goes on where it was";
}

TEST(TipArray, MayStayEmpty) {
    Arena arena;
    TipArray<float> array(arena);
    EXPECT_EQ(array.Count(), 0u);
    array.Close();
    EXPECT_NE(arena.Allocate(8), nullptr);
}

#ifdef TARNWICK_ADDRESS_SANITIZER
TEST(ArenaDeathTest, ShowsAnAccessBehindABlock) {
    Arena arena;
    char* const block = static_cast<char*>(arena.Allocate(16));
    EXPECT_DEATH(static_cast<volatile char*>(block)[16] = 1, "AddressSanitizer");
}
#endif

} // namespace
} // namespace tarnwick::test
