#include "p21/p42_ent.h"

#include "platform/console.h"

#include <algorithm>

namespace tarnwick {

namespace {

// Records of one bucket that a look-up goes through.
constexpr int kLongBucket = 64;

} // namespace

void ListP42Ent::Clear() {
    head_ = nullptr;
    tail_ = nullptr;
    count_ = 0;
}

std::int32_t ListP42Ent::Add(P42Ent* record) {
    P42Node* const node = arena_->New<P42Node>();
    if (node == nullptr) { return 0; }
    node->record = record;
    if (tail_ == nullptr) {
        head_ = node;
    } else {
        tail_->next = node;
    }
    tail_ = node;
    return ++count_;
}

std::int32_t ListP42Ent::Contains(const P42Ent* record) {
    for (const P42Node* node = head_; node != nullptr; node = node->next) {
        if (node->record == record) { return 1; }
    }
    return 0;
}

P42Ent* ListP42Ent::Find(std::int32_t id) {
    for (const P42Node* node = head_; node != nullptr; node = node->next) {
        if (node->record->id == id) { return node->record; }
    }
    return nullptr;
}

P42Ent* ListP42Ent::First() {
    if (count_ == 0) { return nullptr; }
    cursor_ = head_;
    return cursor_->record;
}

P42Ent* ListP42Ent::Next() {
    if (cursor_ == nullptr) { return nullptr; }
    cursor_ = cursor_->next;
    return cursor_ != nullptr ? cursor_->record : nullptr;
}

MapP42Ent::MapP42Ent(Arena* arena, std::int32_t bits, BucketsOnDemand)
    : bits_(bits), bucketCount_(std::int32_t{1} << bits), mask_(bucketCount_ - 1) {
    buckets_ =
        static_cast<P42Ent**>(arena->Allocate(static_cast<std::size_t>(bucketCount_) * sizeof(P42Ent*)));
    if (buckets_ == nullptr) { bucketCount_ = 0; }
}

MapP42Ent::MapP42Ent(Arena* arena, std::int32_t bits) : MapP42Ent(arena, bits, kBucketsOnDemand) {
    MakeAllBuckets();
}

void MapP42Ent::MakeBuckets(std::int32_t upTo) {
    std::fill(buckets_ + made_, buckets_ + upTo, nullptr);
    made_ = upTo;
}

void MapP42Ent::AddAll(P42Ent* const* records, std::int32_t count) {
    constexpr std::int32_t kStretch = 256;
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t bucket = BucketOf(records[i]->id, bits_, mask_);
        if (bucket >= made_) { MakeBuckets(std::min(bucket + kStretch, bucketCount_)); }
        Append(records[i]);
    }
    count_ += count;
    far_ = {};
}

void MapP42Ent::Clear() {
    std::fill_n(buckets_, bucketCount_, nullptr);
    count_ = 0;
    cursor_ = nullptr;
    cursorBucket_ = 0;
    far_ = {};
}

std::int32_t MapP42Ent::Add(P42Ent* record) {
    Append(record);
    ++count_;
    if (!far_.IsEmpty()) { far_.Add(record->id, record); }
    return CountOf(BucketOf(record->id, bits_, mask_));
}

std::int32_t MapP42Ent::CountOf(std::int32_t bucket) const {
    const P42Ent* const last = buckets_[bucket];
    std::int32_t count = 0;
    for (const P42Ent* record = last; record != nullptr;
         record = record->next != last ? record->next : nullptr) {
        ++count;
    }
    return count;
}

std::int32_t MapP42Ent::Contains(const P42Ent* record) {
    const P42Ent* const last = buckets_[BucketOf(record->id, bits_, mask_)];
    const P42Ent* at = last;
    while (at != nullptr && at != record) { at = at->next != last ? at->next : nullptr; }
    return at != nullptr ? 1 : 0;
}

bool MapP42Ent::FindNear(std::int32_t id, P42Ent** found) const {
    *found = nullptr;
    P42Ent* const last = buckets_[BucketOf(id, bits_, mask_)];
    if (last == nullptr) { return true; }
    int steps = 0;
    for (P42Ent* record = last->next;; record = record->next) {
        if (record->id == id) {
            *found = record;
            return true;
        }
        if (record == last) { return true; }
        if (++steps == kLongBucket) { return false; }
    }
}

P42Ent* MapP42Ent::Find(std::int32_t id) {
    P42Ent* found = nullptr;
    return FindNear(id, &found) ? found : FindFar(id);
}

P42Ent* MapP42Ent::FindFar(std::int32_t id) {
    if (far_.IsEmpty()) {
        far_.Reserve(static_cast<std::size_t>(count_));
        for (std::int32_t i = 0; i < bucketCount_; ++i) {
            P42Ent* const last = buckets_[i];
            if (last == nullptr) { continue; }
            P42Ent* record = last;
            do {
                record = record->next;
                far_.Add(record->id, record);
            } while (record != last);
        }
    }
    P42Ent* const* const found = far_.Find(id);
    return found != nullptr ? *found : nullptr;
}

// The first record in a bucket or one after it, or null; sets the cursor.
P42Ent* MapP42Ent::FirstFrom(std::int32_t bucket) {
    cursor_ = nullptr;
    while (bucket < bucketCount_ && buckets_[bucket] == nullptr) { ++bucket; }
    if (bucket == bucketCount_) { return nullptr; }
    cursorBucket_ = bucket;
    cursor_ = buckets_[bucket]->next;
    return cursor_;
}

P42Ent* MapP42Ent::First() {
    return count_ > 0 ? FirstFrom(0) : nullptr;
}

P42Ent* MapP42Ent::Next() {
    if (count_ == 0) { return nullptr; }
    if (cursor_ == nullptr || cursor_ == buckets_[cursorBucket_]) { return FirstFrom(cursorBucket_ + 1); }
    cursor_ = cursor_->next;
    return cursor_;
}

void MapP42Ent::PrintStatistics() {
    std::int32_t least = count_;
    std::int32_t greatest = 0;
    for (std::int32_t i = 0; i < bucketCount_; ++i) {
        least = std::min(least, CountOf(i));
        greatest = std::max(greatest, CountOf(i));
    }
    const char* const rule = "------------------------------------------\n";
    OutputPrint("\n");
    OutputPrint("%s", rule);
    OutputPrint("Statistiques d'utilisation de la HashTable\n");
    OutputPrint("%s", rule);
    OutputPrint("Nombre de listes: %d\n", bucketCount_);
    OutputPrint("Min = %d\n", least);
    OutputPrint("Moy = %d\n", count_ / bucketCount_);
    OutputPrint("Max = %d\n", greatest);
    OutputPrint("%s", rule);
}

} // namespace tarnwick
