#pragma once

#include <cstdint>

namespace tarnwick {

// Where Linux tells of memory; a test has folders of its own.
struct MemorySources {
    const char* processes = "/proc";
    const char* controlGroups = "/sys/fs/cgroup";
};

// MemoryLeft by what these folders tell: the limits are those of the address space and of the control groups.
std::uint64_t MemoryLeft(const MemorySources& sources);

} // namespace tarnwick
