#pragma once

#include <functional>

namespace tarnwick {

// The threads that work beside the calling one.
inline constexpr int kWorkers = 5;

// Runs `loop` on the calling thread, with true, and with `useThreads` on the workers, with false. Each worker
// tells its end on the console; one that can't be started counts as ended. Returns when all loops have ended;
// until then `showProgress` is called now and then, and once after the calling thread's own loop, on the
// calling thread.
void RunWithWorkers(bool useThreads, const std::function<void(bool isLoadThread)>& loop,
                    const std::function<void()>& showProgress);

} // namespace tarnwick
