#pragma once

#include "product/scene_records.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace tarnwick {

// The products whose files a load reads, in the order in which they were found. Several threads claim entries
// while a structure reader appends more; every function may be called on any of them.
class PartQueue {
public:
    struct Entry {
        ProductNode* product = nullptr;
        std::int32_t times = 0; // how often the structure asks for the file
    };

    static constexpr std::size_t kFirstCapacity = 1000;

    PartQueue() { entries_.reserve(kFirstCapacity); }

    void Push(ProductNode* product, std::int32_t times = 1) {
        const std::lock_guard guard(lock_);
        if (entries_.size() == entries_.capacity()) { entries_.reserve(2 * entries_.capacity()); }
        entries_.push_back({{product, times}, false});
    }

    // Takes the next entry, *place is its number from 0. False when there is none at this moment.
    bool Claim(std::int32_t* place, Entry* entry) {
        const std::lock_guard guard(lock_);
        if (claimed_ == entries_.size()) { return false; }
        *place = static_cast<std::int32_t>(claimed_);
        *entry = entries_[claimed_++].entry;
        return true;
    }

    // The product of an entry, claimed or not.
    ProductNode* At(std::int32_t place) const {
        const std::lock_guard guard(lock_);
        return entries_[static_cast<std::size_t>(place)].entry.product;
    }
    std::size_t Capacity() const {
        const std::lock_guard guard(lock_);
        return entries_.capacity();
    }
    // How many entries there are now, and how many of them are claimed.
    struct Counts {
        std::int32_t all;
        std::int32_t claimed;
    };
    Counts Count() const {
        const std::lock_guard guard(lock_);
        return {static_cast<std::int32_t>(entries_.size()), static_cast<std::int32_t>(claimed_)};
    }

    // Sub-assemblies add to the tree in the order of the queue, whichever thread opened them first, so that a
    // load gives the same tree with any number of threads. For that each claimed entry is settled once it
    // can't add to the tree any more: it is a part, it can't be read, or it has been added. Settling an entry
    // twice does no harm.
    void Settle(std::int32_t place) {
        const std::lock_guard guard(lock_);
        entries_[static_cast<std::size_t>(place)].settled = true;
        while (settled_ < entries_.size() && entries_[settled_].settled) { ++settled_; }
        moved_.notify_all();
    }
    // Waits until all entries before `place` are settled. Their threads never wait for a later entry.
    void WaitForThoseBefore(std::int32_t place) {
        std::unique_lock guard(lock_);
        moved_.wait(guard, [this, place] { return settled_ >= static_cast<std::size_t>(place); });
    }

private:
    struct Place {
        Entry entry;
        bool settled;
    };

    mutable std::mutex lock_;
    std::condition_variable moved_;
    std::vector<Place> entries_;
    std::size_t claimed_ = 0;
    std::size_t settled_ = 0; // all entries before this one are settled
};

} // namespace tarnwick
