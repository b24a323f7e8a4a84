#include "platform/cores.h"

#include <sched.h>

#include <thread>

namespace tarnwick {

int UsableCores() {
    cpu_set_t cores;
    if (sched_getaffinity(0, sizeof cores, &cores) == 0) { return CPU_COUNT(&cores); }
    return static_cast<int>(std::thread::hardware_concurrency());
}

} // namespace tarnwick
