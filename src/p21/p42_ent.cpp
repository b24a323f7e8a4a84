#include "p21/p42_ent.h"

#include "platform/console.h"

#include <algorithm>
#include <new>

namespace tarnwick {

namespace {

// How far a look-up goes in its bucket.
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
    return AddNode(node);
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
    : arena_(arena), bits_(bits), bucketCount_(std::int32_t{1} << bits), mask_(bucketCount_ - 1) {
    buckets_ = static_cast<ListP42Ent*>(
        arena->Allocate(static_cast<std::size_t>(bucketCount_) * sizeof(ListP42Ent)));
    if (buckets_ == nullptr) { bucketCount_ = 0; }
}

MapP42Ent::MapP42Ent(Arena* arena, std::int32_t bits) : MapP42Ent(arena, bits, kBucketsOnDemand) {
    MakeAllBuckets();
}

void MapP42Ent::MakeBuckets(std::int32_t upTo) {
    for (; made_ < upTo; ++made_) { ::new (static_cast<void*>(buckets_ + made_)) ListP42Ent(arena_); }
}

bool MapP42Ent::AddAll(P42Ent* const* records, std::int32_t count) {
    constexpr std::int32_t kStretch = 256;
    for (std::int32_t done = 0; done < count;) {
        const std::int32_t here = std::min(count - done, kStretch);
        P42Node* const nodes =
            static_cast<P42Node*>(arena_->Allocate(static_cast<std::size_t>(here) * sizeof(P42Node)));
        if (nodes == nullptr) { return false; }
        for (std::int32_t i = 0; i < here; ++i) {
            P42Ent* const record = records[done + i];
            P42Node* const node = ::new (static_cast<void*>(nodes + i)) P42Node{record, nullptr};
            const std::int32_t bucket = BucketOf(record->id, bits_, mask_);
            if (bucket >= made_) { MakeBuckets(std::min(bucket + kStretch, bucketCount_)); }
            buckets_[bucket].AddNode(node);
        }
        done += here;
    }
    count_ += count;
    far_ = {};
    return true;
}

void MapP42Ent::Clear() {
    for (std::int32_t i = 0; i < bucketCount_; ++i) { buckets_[i].Clear(); }
    count_ = 0;
    cursorBucket_ = 0;
    far_ = {};
}

std::int32_t MapP42Ent::Add(P42Ent* record) {
    const std::int32_t inBucket = buckets_[BucketOf(record->id, bits_, mask_)].Add(record);
    if (inBucket > 0) {
        ++count_;
        if (!far_.IsEmpty()) { far_.Add(record->id, record); }
    }
    return inBucket;
}

std::int32_t MapP42Ent::Contains(const P42Ent* record) {
    return bucketCount_ == 0 ? 0 : buckets_[BucketOf(record->id, bits_, mask_)].Contains(record);
}

bool MapP42Ent::FindNear(std::int32_t id, P42Ent** found) const {
    *found = nullptr;
    if (bucketCount_ == 0) { return true; }
    int steps = 0;
    for (const P42Node* node = buckets_[BucketOf(id, bits_, mask_)].Head(); node != nullptr;
         node = node->next) {
        if (node->record->id == id) {
            *found = node->record;
            return true;
        }
        if (++steps == kLongBucket) { return false; }
    }
    return true;
}

P42Ent* MapP42Ent::Find(std::int32_t id) {
    P42Ent* found = nullptr;
    return FindNear(id, &found) ? found : FindFar(id);
}

P42Ent* MapP42Ent::FindFar(std::int32_t id) {
    if (far_.IsEmpty()) {
        far_.Reserve(static_cast<std::size_t>(count_));
        for (std::int32_t i = 0; i < bucketCount_; ++i) {
            for (const P42Node* node = buckets_[i].Head(); node != nullptr; node = node->next) {
                far_.Add(node->record->id, node->record);
            }
        }
    }
    P42Ent* const* const found = far_.Find(id);
    return found != nullptr ? *found : nullptr;
}

P42Ent* MapP42Ent::First() {
    if (count_ == 0) { return nullptr; }
    for (std::int32_t i = 0; i < bucketCount_; ++i) {
        if (buckets_[i].Count() > 0) {
            cursorBucket_ = i;
            return buckets_[i].First();
        }
    }
    return nullptr;
}

P42Ent* MapP42Ent::Next() {
    if (count_ == 0) { return nullptr; }
    if (P42Ent* const record = buckets_[cursorBucket_].Next()) { return record; }
    for (std::int32_t i = cursorBucket_ + 1; i < bucketCount_; ++i) {
        if (buckets_[i].Count() > 0) {
            cursorBucket_ = i;
            return buckets_[i].First();
        }
    }
    return nullptr;
}

void MapP42Ent::PrintStatistics() {
    std::int32_t least = count_;
    std::int32_t greatest = 0;
    for (std::int32_t i = 0; i < bucketCount_; ++i) {
        least = std::min(least, buckets_[i].Count());
        greatest = std::max(greatest, buckets_[i].Count());
    }
    const char* const rule = "------------------------------------------\n";
    OutputPrint("\n");
    OutputPrint("%s", rule);
    OutputPrint("Statistiques d'utilisation de la HashTable\n");
    OutputPrint("%s", rule);
    OutputPrint("Nombre de listes: %d\n", bucketCount_);
    OutputPrint("Min = %d\n", least);
    OutputPrint("Moy = %d\n", bucketCount_ > 0 ? count_ / bucketCount_ : 0);
    OutputPrint("Max = %d\n", greatest);
    OutputPrint("%s", rule);
}

} // namespace tarnwick
