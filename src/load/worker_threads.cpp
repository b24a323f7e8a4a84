#include "load/worker_threads.h"

#include "platform/console.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <system_error>
#include <thread>
#include <vector>

namespace tarnwick {

void RunWithWorkers(std::uint32_t useThreads, std::span<std::atomic<std::int32_t>> done,
                    const std::function<void(bool isLoadThread)>& loop,
                    const std::function<void()>& showProgress) {
    std::vector<std::jthread> workers;
    if (useThreads != 0) {
        workers.reserve(done.size());
        for (std::size_t k = 0; k < done.size(); ++k) {
            try {
                workers.emplace_back([&loop, &flag = done[k], number = static_cast<int>(k) + 1] {
                    loop(false);
                    flag.store(1, std::memory_order_release);
                    ConsolePrint("End thread %d\n", number);
                });
            } catch (const std::system_error&) { done[k] = 1; }
        }
    }
    loop(true);
    showProgress(); // where the workers have taken all, too
    if (useThreads == 0) { return; }
    const auto allDone = [done] {
        return std::all_of(done.begin(), done.end(),
                           [](const auto& flag) { return flag.load(std::memory_order_acquire) != 0; });
    };
    while (!allDone()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        showProgress();
    }
    for (std::jthread& worker : workers) { worker.join(); } // behind the line that tells its end
}

} // namespace tarnwick
