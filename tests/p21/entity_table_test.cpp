#include "p21/p42_ent.h"

#include "p21/model_file.h"
#include "support/capture.h"
#include "support/p21_text.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <vector>

namespace tarnwick::test {
namespace {

// Records, and the memory of the collections that hold them.
struct Table {
    P42Ent* Record(std::int32_t id) {
        records.push_back(P42Ent{id, 0, 0, 0, nullptr});
        return &records.back();
    }
    Arena arena;
    std::deque<P42Ent> records;
};

std::vector<std::int32_t> Iterated(CollP42Ent& collection) {
    std::vector<std::int32_t> ids;
    for (const P42Ent* record = collection.First(); record != nullptr; record = collection.Next()) {
        ids.push_back(record->id);
    }
    return ids;
}

using Ids = std::vector<std::int32_t>;

TEST(BucketOf, SumsTheDigitsOfTheKey) {
    for (std::int32_t key = 1; key < 8; ++key) { EXPECT_EQ(BucketOf(key, 3, 7), key); }
    EXPECT_EQ(BucketOf(8, 3, 7), 1);
    EXPECT_EQ(BucketOf(9, 3, 7), 2);
    EXPECT_EQ(BucketOf(100, 3, 7), 1);
    EXPECT_EQ(BucketOf(63, 3, 7), 6);
    EXPECT_EQ(BucketOf(2147483647, 12, 4095), (127 + 4095 + 4095) & 4095);
}

TEST(BucketOf, SendsZeroAndBelowToBucketZero) {
    EXPECT_EQ(BucketOf(0, 3, 7), 0);
    EXPECT_EQ(BucketOf(-1, 3, 7), 0);
    EXPECT_EQ(BucketOf(INT32_MIN, 3, 7), 0);
}

TEST(HashBits, GrowByOneAtEachDoubling) {
    EXPECT_EQ(HashBits(0), 2);
    EXPECT_EQ(HashBits(5), 2);
    EXPECT_EQ(HashBits(6), 3);
    EXPECT_EQ(HashBits(11), 3);
    EXPECT_EQ(HashBits(12), 4);
    EXPECT_EQ(HashBits(23), 4);
    EXPECT_EQ(HashBits(24), 5);
    EXPECT_EQ(HashBits(47), 5);
    EXPECT_EQ(HashBits(48), 6);
}

TEST(HashBits, SizeTheTableOfAFile) {
    for (const auto& [count, buckets] :
         {std::pair{0, 4}, {5, 4}, {6, 8}, {11, 8}, {12, 16}, {23, 16}, {24, 32}, {47, 32}, {48, 64}}) {
        Lines lines;
        for (int i = 1; i <= count; ++i) { lines.push_back("#" + std::to_string(i) + "=X();"); }
        const ModelFile file(P21Text(lines));
        EXPECT_EQ(file.model->entityCount, count);
        EXPECT_EQ(file.model->entityMap->BucketCount(), buckets) << count << " entities";
        EXPECT_EQ(file.model->entityMap->Count(), count);
    }
}

TEST(MapP42Ent, FilledAtOnceEqualsOneFilledRecordByRecord) {
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        const int count = static_cast<int>(random() % 2000);
        const int range = 1 + static_cast<int>(random() % 5000);
        const bool dense = round % 3 == 0;
        Table table;
        Table other; // a record is in one table only
        std::vector<P42Ent*> records;
        MapP42Ent one(&table.arena, HashBits(count));
        for (int i = 0; i < count; ++i) {
            const std::int32_t id = dense ? i + 1 : static_cast<int>(random()) % range;
            records.push_back(table.Record(id));
            records.back()->offset = i;
            P42Ent* const twin = other.Record(id);
            twin->offset = i;
            one.Add(twin);
        }
        MapP42Ent all(&table.arena, HashBits(count), MapP42Ent::kBucketsOnDemand);
        const std::int32_t first = count / 3;
        all.AddAll(records.data(), first);
        all.AddAll(records.data() + first, count - first);
        all.MakeAllBuckets();
        ASSERT_EQ(all.Count(), count);
        ASSERT_EQ(Iterated(all), Iterated(one));
        for (int id = -1; id <= range; ++id) {
            const P42Ent* const found = all.Find(id);
            const P42Ent* const expected = one.Find(id);
            ASSERT_EQ(found != nullptr ? found->offset : -1, expected != nullptr ? expected->offset : -1)
                << id;
        }
    }
}

TEST(ListP42Ent, AnswersNothingWhenEmpty) {
    Table table;
    ListP42Ent list(&table.arena);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.First(), nullptr);
    EXPECT_EQ(list.Find(1), nullptr);
    EXPECT_EQ(list.Contains(table.Record(1)), 0);
}

TEST(ListP42Ent, KeepsTheOrderOfItsAppends) {
    Table table;
    ListP42Ent list(&table.arena);
    EXPECT_EQ(list.Add(table.Record(5)), 1);
    EXPECT_EQ(list.Add(table.Record(3)), 2);
    EXPECT_EQ(list.Add(table.Record(5)), 3);
    EXPECT_EQ(Iterated(list), (Ids{5, 3, 5}));
    EXPECT_EQ(list.Count(), 3);
}

TEST(ListP42Ent, FindsTheEarlierOfTwoEqualNumbers) {
    Table table;
    ListP42Ent list(&table.arena);
    P42Ent* const first = table.Record(5);
    P42Ent* const second = table.Record(5);
    list.Add(first);
    list.Add(second);
    EXPECT_EQ(list.Find(5), first);
    EXPECT_EQ(list.Contains(second), 1);
    EXPECT_EQ(list.Contains(table.Record(5)), 0) << "the very record counts, not its number";
}

TEST(ListP42Ent, IsNotDisturbedInItsIterationByASearch) {
    Table table;
    ListP42Ent list(&table.arena);
    for (const std::int32_t id : {1, 2, 3}) { list.Add(table.Record(id)); }
    EXPECT_EQ(list.First()->id, 1);
    EXPECT_EQ(list.Find(3)->id, 3);
    EXPECT_EQ(list.Find(9), nullptr);
    EXPECT_EQ(list.Next()->id, 2);
    EXPECT_EQ(list.Contains(nullptr), 0);
    EXPECT_EQ(list.Next()->id, 3);
    EXPECT_EQ(list.Next(), nullptr);
}

TEST(ListP42Ent, IsEmptyAfterClear) {
    Table table;
    ListP42Ent list(&table.arena);
    list.Add(table.Record(1));
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.First(), nullptr);
    EXPECT_EQ(list.Add(table.Record(2)), 1);
    EXPECT_EQ(Iterated(list), Ids{2});
}

TEST(MapP42Ent, AnswersNothingWithFourEmptyBuckets) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    EXPECT_EQ(map.BucketCount(), 4);
    EXPECT_EQ(map.Count(), 0);
    EXPECT_EQ(map.First(), nullptr);
    EXPECT_EQ(map.Next(), nullptr);
    for (const std::int32_t id : {-5, 0, 1, 4, 1000000}) { EXPECT_EQ(map.Find(id), nullptr); }
}

TEST(MapP42Ent, GivesBothOfTwoEqualNumbersButFindsTheFirst) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    P42Ent* const first = table.Record(7);
    P42Ent* const second = table.Record(7);
    EXPECT_EQ(map.Add(first), 1);
    EXPECT_EQ(map.Add(second), 2) << "the bucket's count";
    EXPECT_EQ(map.Count(), 2);
    EXPECT_EQ(map.Find(7), first);
    EXPECT_EQ(Iterated(map), (Ids{7, 7}));
    EXPECT_EQ(map.Contains(second), 1);
}

TEST(MapP42Ent, ContainsOnlyTheVeryRecordsThatWereAdded) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    std::vector<P42Ent*> added;
    for (const std::int32_t id : {1, 4, 16, 2}) { // buckets 1, 1, 1, 2
        added.push_back(table.Record(id));
        map.Add(added.back());
    }
    for (const P42Ent* const record : added) { EXPECT_EQ(map.Contains(record), 1); }
    for (const std::int32_t id : {1, 4, 16, 2, 3, 7}) { EXPECT_EQ(map.Contains(table.Record(id)), 0) << id; }
}

TEST(MapP42Ent, HasNoNextBehindItsLast) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    map.Add(table.Record(2));
    EXPECT_EQ(map.First()->id, 2);
    EXPECT_EQ(map.Next(), nullptr);
    EXPECT_EQ(map.Next(), nullptr);
}

TEST(MapP42Ent, IteratesByBucketAndThenByInsertion) {
    Table table;
    MapP42Ent map(&table.arena, 3);
    // Buckets: 9 -> 2, 8 -> 1, 7 -> 7, 1 -> 1, 2 -> 2, 100 -> 1, 14 -> 7.
    for (const std::int32_t id : {9, 8, 7, 1, 2, 100, 14}) { map.Add(table.Record(id)); }
    EXPECT_EQ(Iterated(map), (Ids{8, 1, 100, 9, 2, 7, 14}));
}

TEST(MapP42Ent, IsNotDisturbedInItsIterationByASearch) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    for (const std::int32_t id : {1, 2, 3, 4, 5, 6, 7}) { map.Add(table.Record(id)); }
    const Ids expected = Iterated(map);
    Ids met;
    for (const P42Ent* record = map.First(); record != nullptr; record = map.Next()) {
        met.push_back(record->id);
        for (const std::int32_t id : {7, 1, 99, record->id}) { map.Find(id); }
    }
    EXPECT_EQ(met, expected);
}

TEST(MapP42Ent, LooksForZeroAndBelowInBucketZero) {
    Table table;
    MapP42Ent map(&table.arena, 3);
    for (std::int32_t id = 1; id < 100; ++id) { map.Add(table.Record(id)); }
    EXPECT_EQ(map.Find(0), nullptr);
    EXPECT_EQ(map.Find(-1), nullptr);
    EXPECT_EQ(map.Find(INT32_MIN), nullptr);
}

TEST(MapP42Ent, IsEmptyAfterClear) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    map.Add(table.Record(1));
    map.First();
    map.Clear();
    EXPECT_EQ(map.Count(), 0);
    EXPECT_EQ(map.Next(), nullptr);
    EXPECT_EQ(map.First(), nullptr);
    EXPECT_EQ(map.Find(1), nullptr);
}

std::string Statistics(MapP42Ent& map) {
    StreamCapture output(stdout);
    map.PrintStatistics();
    return output.Take();
}

TEST(MapP42Ent, PrintsHowItIsFilled) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    for (const std::int32_t id : {1, 4, 16, 2, 3, 6}) { // buckets 1, 1, 1, 2, 3, 3
        map.Add(table.Record(id));
    }
    EXPECT_EQ(Statistics(map), "\n"
                               "------------------------------------------\n"
                               "Statistiques d'utilisation de la HashTable\n"
                               "------------------------------------------\n"
                               "Nombre de listes: 4\n"
                               "Min = 0\n"
                               "Moy = 1\n"
                               "Max = 3\n"
                               "------------------------------------------\n");
}

TEST(MapP42Ent, PrintsZerosWhenEmpty) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    EXPECT_EQ(Statistics(map), "\n"
                               "------------------------------------------\n"
                               "Statistiques d'utilisation de la HashTable\n"
                               "------------------------------------------\n"
                               "Nombre de listes: 4\n"
                               "Min = 0\n"
                               "Moy = 0\n"
                               "Max = 0\n"
                               "------------------------------------------\n");
}

TEST(ListP42Ent, PrintsNoStatistics) {
    Table table;
    ListP42Ent list(&table.arena);
    StreamCapture output(stdout);
    list.PrintStatistics();
    const std::string printed = output.Take();
    EXPECT_EQ(printed, "");
}

TEST(CollP42Ent, IsTreatedAlikeAsListAndAsMap) {
    Table table;
    ListP42Ent list(&table.arena);
    MapP42Ent map(&table.arena, 4);
    for (CollP42Ent* const collection : {static_cast<CollP42Ent*>(&list), static_cast<CollP42Ent*>(&map)}) {
        P42Ent* const record = table.Record(3);
        EXPECT_EQ(collection->Add(record), 1);
        EXPECT_EQ(collection->Contains(record), 1);
        EXPECT_EQ(collection->Find(3), record);
        EXPECT_EQ(collection->First(), record);
        EXPECT_EQ(collection->Next(), nullptr);
        EXPECT_EQ(collection->Count(), 1);
        collection->Clear();
        EXPECT_EQ(collection->Count(), 0);
    }
}

TEST(MapP42Ent, FindsTheFirstOfEqualNumbersInALongBucketToo) {
    Table table;
    MapP42Ent map(&table.arena, 2);
    for (std::int32_t i = 0; i < 4000; ++i) { map.Add(table.Record(4 * (i % 1000) + 4)); }
    const Ids order = Iterated(map);
    for (std::int32_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(map.Find(4 * i + 4), &table.records[static_cast<std::size_t>(i)]);
    }
    for (const std::int32_t id : {-4, 0, 1, 4004, INT32_MAX}) { EXPECT_EQ(map.Find(id), nullptr); }
    EXPECT_EQ(map.Count(), 4000);
    EXPECT_EQ(Iterated(map), order);
    P42Ent* const late = table.Record(1);
    map.Add(late);
    EXPECT_EQ(map.Find(1), late);
}

} // namespace
} // namespace tarnwick::test
