#include "load/worker_threads.h"

#include "platform/console.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>

namespace tarnwick {

namespace {

// Counts the workers that haven't ended.
class Running {
public:
    void Add(int count) {
        const std::lock_guard guard(lock_);
        count_ += count;
        if (count_ == 0) { ended_.notify_one(); }
    }
    // Whether all of them have ended within `time`.
    bool WaitForEnd(std::chrono::milliseconds time) {
        std::unique_lock guard(lock_);
        return ended_.wait_for(guard, time, [this] { return count_ == 0; });
    }

private:
    std::mutex lock_;
    std::condition_variable ended_;
    int count_ = 0;
};

} // namespace

void RunWithWorkers(bool useThreads, const std::function<void(bool isLoadThread)>& loop,
                    const std::function<void()>& showProgress) {
    constexpr std::chrono::milliseconds kBetweenProgress{10};
    Running running;
    std::array<std::jthread, kWorkers> workers; // declared last, so joined before `running` goes
    for (int k = 0; useThreads && k < kWorkers; ++k) {
        running.Add(1);
        try {
            workers[static_cast<std::size_t>(k)] = std::jthread([&loop, &running, number = k + 1] {
                loop(false);
                ConsolePrint("End thread %d\n", number);
                running.Add(-1);
            });
        } catch (const std::exception&) { running.Add(-1); } // no thread, or no memory for one
    }
    loop(true);
    showProgress(); // also when the workers have done all the work
    while (!running.WaitForEnd(kBetweenProgress)) { showProgress(); }
}

} // namespace tarnwick
