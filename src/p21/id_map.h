#pragma once

#include "p21/far_index.h"
#include "p21/p42_ent.h"
#include "platform/arena.h"

#include <cstdint>

namespace tarnwick {

// A table from an i32 key to an item that carries the key in its member `Key`: the entity table's hash
// without its iteration. Nodes come from the arena, items belong to somebody else. Where keys are doubled,
// the item added first is found.
template <class Item, std::int32_t Item::*Key>
class IdMap {
public:
    // A table that can hold nothing.
    IdMap() = default;

    // An empty table of 2 to the power `bits` buckets. It stays empty when memory runs out.
    IdMap(Arena* arena, std::int32_t bits)
        : buckets_(arena->New<Bucket>(std::size_t{1} << bits)), bits_(bits),
          mask_(buckets_ != nullptr ? (std::int32_t{1} << bits) - 1 : 0), arena_(arena) {}

    // False when memory runs out.
    bool Add(Item* item) {
        Node* const node = buckets_ != nullptr ? arena_->New<Node>() : nullptr;
        if (node == nullptr) { return false; }
        node->item = item;
        Bucket& bucket = buckets_[BucketOf(item->*Key, bits_, mask_)];
        if (bucket.tail == nullptr) {
            bucket.head = node;
        } else {
            bucket.tail->next = node;
        }
        bucket.tail = node;
        ++count_;
        far_.Drop();
        return true;
    }

    // The item of `key`, or null.
    Item* Find(std::int32_t key) const {
        if (buckets_ == nullptr) { return nullptr; }
        int steps = 0;
        for (const Node* node = buckets_[BucketOf(key, bits_, mask_)].head; node != nullptr;
             node = node->next) {
            if (node->item->*Key == key) { return node->item; }
            if (++steps == FarIndex<Item>::kFar && MakeFarIndex()) { return far_.Find(key); }
        }
        return nullptr;
    }

    std::int32_t Count() const { return count_; }

private:
    struct Node {
        Item* item;
        Node* next;
    };
    struct Bucket {
        Node* head;
        Node* tail;
    };

    [[gnu::noinline]] bool MakeFarIndex() const {
        if (far_.IsMade()) { return true; }
        if (!far_.Make(arena_, count_)) { return false; }
        for (std::int32_t i = 0; i <= mask_; ++i) {
            for (const Node* node = buckets_[i].head; node != nullptr; node = node->next) {
                far_.Add(node->item->*Key, node->item);
            }
        }
        return true;
    }

    mutable FarIndex<Item> far_;
    Bucket* buckets_ = nullptr;
    std::int32_t count_ = 0;
    std::int32_t bits_ = 0;
    std::int32_t mask_ = 0;
    Arena* arena_ = nullptr;
};

} // namespace tarnwick
