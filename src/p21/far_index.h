#pragma once

#include "platform/arena.h"

#include <cstddef>
#include <cstdint>

namespace tarnwick {

// A second way to the items of a table by number, made when a look-up has come too far in its bucket: numbers
// that a file doubles, or that were chosen to meet in one bucket, would else make every look-up a walk over
// all of them. Where numbers are doubled, the item added first is found.
template <class Item>
class FarIndex {
public:
    // What a bucket may hold before it is worth while.
    static constexpr int kFar = 64;

    bool IsMade() const { return slots_ != nullptr; }
    void Drop() { slots_ = nullptr; }

    // Makes room for `count` items, which are then added; false when memory runs out.
    bool Make(Arena* arena, std::int32_t count) {
        bits_ = 2;
        while ((std::int64_t{1} << bits_) < 2 * std::int64_t{count}) { ++bits_; }
        slots_ = arena->New<Slot>(std::size_t{1} << bits_);
        // No file knows where the slots lie, and so none can choose its numbers against the hash.
        salt_ = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(slots_) >> 12) * 2654435761u;
        return slots_ != nullptr;
    }

    void Add(std::int32_t key, Item* item) {
        Slot* const slot = SlotOf(key);
        if (slot->item == nullptr) { *slot = {item, key}; }
    }

    Item* Find(std::int32_t key) const { return SlotOf(key)->item; }

private:
    struct Slot {
        Item* item;
        std::int32_t key;
    };

    // The slot that has the key, or the free one where it belongs.
    Slot* SlotOf(std::int32_t key) const {
        std::uint64_t mixed = (static_cast<std::uint32_t>(key) ^ salt_) * std::uint64_t{0x9E3779B97F4A7C15};
        mixed = (mixed ^ mixed >> 29) * std::uint64_t{0xBF58476D1CE4E5B9};
        std::size_t place = static_cast<std::size_t>(mixed >> (64 - bits_));
        const std::size_t mask = (std::size_t{1} << bits_) - 1;
        while (slots_[place].item != nullptr && slots_[place].key != key) { place = (place + 1) & mask; }
        return slots_ + place;
    }

    Slot* slots_ = nullptr;
    int bits_ = 0;
    std::uint32_t salt_ = 0;
};

} // namespace tarnwick
