#include "platform/cores.h"

#include <windows.h>

#include <bit>
#include <thread>

namespace tarnwick {

int UsableCores() {
    DWORD_PTR own = 0;
    DWORD_PTR all = 0;
    // `own` is 0 where the process may use cores of several groups.
    if (GetProcessAffinityMask(GetCurrentProcess(), &own, &all) != 0 && own != 0) {
        return std::popcount(own);
    }
    return static_cast<int>(std::thread::hardware_concurrency());
}

} // namespace tarnwick
