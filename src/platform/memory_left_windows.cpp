#include "platform/memory_left.h"

#include <windows.h>

#include <algorithm>

namespace tarnwick {

namespace {

std::uint64_t LessReserve(std::uint64_t left, std::uint64_t whole) {
    const std::uint64_t reserve = whole / 32;
    return left > reserve ? left - reserve : 0;
}

} // namespace

std::uint64_t MemoryLeft() {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (GlobalMemoryStatusEx(&status) == 0) { return UINT64_MAX; }
    // "Page file" means memory and paging files together, within the limits of the process.
    return std::min({LessReserve(status.ullAvailPhys, status.ullTotalPhys),
                     LessReserve(status.ullAvailPageFile, status.ullTotalPageFile),
                     std::uint64_t{status.ullAvailVirtual}});
}

} // namespace tarnwick
