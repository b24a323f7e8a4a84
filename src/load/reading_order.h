#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

namespace tarnwick {

// Lets sub-assemblies add to the tree in the order of the queue, whatever thread opened them first, so that a
// load gives the same tree with any number of threads. Entries are claimed in order, and each is settled once
// it is known to be a part, unreadable, or a sub-assembly that has been merged.
class ReadingOrder {
public:
    // Waits until all entries before `entry` are settled. They have all been claimed by a thread that settles
    // them without waiting for a later one.
    void WaitFor(std::int32_t entry) {
        std::unique_lock guard(lock_);
        moved_.wait(guard, [this, entry] { return next_ >= entry; });
    }

    void Settle(std::int32_t entry) {
        const std::lock_guard guard(lock_);
        const auto index = static_cast<std::size_t>(entry);
        if (index >= settled_.size()) { settled_.resize(index + 1, false); }
        settled_[index] = true;
        while (static_cast<std::size_t>(next_) < settled_.size() &&
               settled_[static_cast<std::size_t>(next_)]) {
            ++next_;
        }
        moved_.notify_all();
    }

private:
    std::mutex lock_;
    std::condition_variable moved_;
    std::vector<bool> settled_;
    std::int32_t next_ = 0;
};

} // namespace tarnwick
