#pragma once

#include "platform/arena.h"

#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

namespace tarnwick {

// The owner of all records of one load. Each reading thread fills an arena of its own and hands it over at
// its end; the load that replaces the scene drops them all in one step.
class SceneMemory {
public:
    SceneMemory() { others_.reserve(kOtherThreads); }

    // The arena of the thread that runs the load.
    Arena& Main() { return main_; }

    // Takes over the arena of another thread. Any thread may call this.
    void HandOver(Arena&& arena) {
        const std::lock_guard guard(lock_);
        others_.push_back(std::move(arena));
    }

private:
    static constexpr std::size_t kOtherThreads = 6; // so that handing over needs no memory

    Arena main_;
    std::mutex lock_;
    std::vector<Arena> others_;
};

} // namespace tarnwick
