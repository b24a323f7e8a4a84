#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <span>

namespace tarnwick {

// Runs `loop` on the calling thread, with true, and, when `useThreads` isn't 0, on as many workers as `done`
// has flags, with false. Each worker sets its flag to 1 behind its loop and tells its end on the console; one
// that can't be started counts as ended. Returns when all loops have ended; until then `showProgress` is
// called now and then, and once behind the calling thread's own loop, on the calling thread.
void RunWithWorkers(std::uint32_t useThreads, std::span<std::atomic<std::int32_t>> done,
                    const std::function<void(bool isLoadThread)>& loop,
                    const std::function<void()>& showProgress);

} // namespace tarnwick
