#pragma once

#include "platform/arena.h"
#include "text/look_up.h"

#include <cstdint>

// The entity index: the record of one entity line, and the collections of such records. All memory comes from
// the arena of the model that is being read and goes back with it. Iteration moves cursors, so a collection
// is used by one thread at a time.
namespace tarnwick {

// One entity line of a file. The line's text starts at the model's text plus `offset`.
struct P42Ent {
    std::int32_t id;        // entity number, at least 1
    std::int32_t offset;    // bytes from the start of the text to the "#" of the line
    std::int32_t multiLine; // 1 when the first line of the entity doesn't end in ";"
    std::int32_t code;      // keyword code, see keyword_codes.h
    P42Ent* next;           // in its bucket of the table; the last one leads to the first
};

// A collection of records: the whole table or a side list.
class CollP42Ent {
public:
    // Forgets all records.
    virtual void Clear() = 0;
    // Appends a record; returns the new count (of the bucket, where there are buckets), 0 when memory runs
    // out.
    virtual std::int32_t Add(P42Ent* record) = 0;
    // 1 when this very record is in the collection, else 0.
    virtual std::int32_t Contains(const P42Ent* record) = 0;
    // The record of an entity number, of several the one added first; null when there is none. Doesn't
    // disturb an iteration.
    virtual P42Ent* Find(std::int32_t id) = 0;
    // The first record, or null; sets the cursor.
    virtual P42Ent* First() = 0;
    // The record after the last one returned, or null at the end.
    virtual P42Ent* Next() = 0;
    virtual std::int32_t Count() const = 0;
    // Prints how evenly the records are spread, on standard output.
    virtual void PrintStatistics() = 0;

protected:
    ~CollP42Ent() = default;
};

struct P42Node {
    P42Ent* record;
    P42Node* next;
};

// A singly linked list with a cursor; as a side list it shares its records with the table.
class ListP42Ent final : public CollP42Ent {
public:
    explicit ListP42Ent(Arena* arena = nullptr) : arena_(arena) {}

    void Clear() override;
    std::int32_t Add(P42Ent* record) override;
    std::int32_t Contains(const P42Ent* record) override;
    P42Ent* Find(std::int32_t id) override;
    P42Ent* First() override;
    P42Ent* Next() override;
    std::int32_t Count() const override { return count_; }
    void PrintStatistics() override {}

private:
    P42Node* head_ = nullptr;
    P42Node* tail_ = nullptr;
    P42Node* cursor_ = nullptr;
    std::int32_t count_ = 0;
    Arena* arena_;
};

// The bucket of a key in a table with 2 to the power `bits` buckets: the sum of the key's digits in that
// base, masked. A key below the bucket count is its own bucket, so that densely numbered entities spread
// evenly. A key of 0 or below goes to bucket 0.
inline std::int32_t BucketOf(std::int32_t key, std::int32_t bits, std::int32_t mask) {
    std::int32_t sum = 0;
    for (std::int32_t x = key; x > 0;) {
        const std::int32_t q = x >> bits;
        sum += x - (q << bits);
        x = q;
    }
    return sum & mask;
}

// The width of a hash digit for a table of `count` items: 2, and one more for each halving until at most 5
// are left.
inline std::int32_t HashBits(std::int32_t count) {
    std::int32_t bits = 2;
    for (; count > 5; count /= 2) { ++bits; }
    return bits;
}

// All records of a file by entity number: a chained hash table of a fixed size. A record is in no more than
// one such table, since the chain goes through the records themselves. Iteration goes by bucket, and within a
// bucket by insertion.
class MapP42Ent final : public CollP42Ent {
public:
    // A table of 2 to the power `bits` empty buckets, all in one block. Test `BucketCount()`: it is 0 when
    // memory ran out, and nothing else may be done with the table then.
    MapP42Ent(Arena* arena, std::int32_t bits);

    // The same for a table that gets all of its records by AddAll: the buckets are made shortly before they
    // are filled, which brings them into the cache. Nothing else may be done with it before MakeAllBuckets.
    struct BucketsOnDemand {};
    static constexpr BucketsOnDemand kBucketsOnDemand{};
    MapP42Ent(Arena* arena, std::int32_t bits, BucketsOnDemand);
    // Adds `count` records in their order.
    void AddAll(P42Ent* const* records, std::int32_t count);
    void MakeAllBuckets() { MakeBuckets(bucketCount_); }

    void Clear() override;
    std::int32_t Add(P42Ent* record) override;
    std::int32_t Contains(const P42Ent* record) override;
    P42Ent* Find(std::int32_t id) override;
    P42Ent* First() override;
    P42Ent* Next() override;
    std::int32_t Count() const override { return count_; }
    void PrintStatistics() override;

    std::int32_t BucketCount() const { return bucketCount_; }

    // Find for several threads at a time, while none calls anything else. False when the bucket is too long
    // for that: only Find finds the record then.
    bool FindNear(std::int32_t id, P42Ent** found) const;

private:
    void MakeBuckets(std::int32_t upTo);
    void Append(P42Ent* record) {
        P42Ent*& last = buckets_[BucketOf(record->id, bits_, mask_)];
        if (last == nullptr) {
            record->next = record;
        } else {
            record->next = last->next;
            last->next = record;
        }
        last = record;
    }
    P42Ent* FirstFrom(std::int32_t bucket);
    std::int32_t CountOf(std::int32_t bucket) const;
    P42Ent* FindFar(std::int32_t id);

    std::int32_t count_ = 0;
    // All records once more, made when a look-up has gone too far in its bucket: numbers that a file uses
    // again and again, or chosen to meet in one bucket, would make every look-up a walk over all of them.
    LookUp<std::int32_t, P42Ent*> far_;
    P42Ent** buckets_ = nullptr; // the last record of each, null for none
    P42Ent* cursor_ = nullptr;   // in `cursorBucket_`
    std::int32_t made_ = 0;      // buckets
    std::int32_t bits_;
    std::int32_t bucketCount_;
    std::int32_t mask_;
    std::int32_t cursorBucket_ = 0;
};

} // namespace tarnwick
