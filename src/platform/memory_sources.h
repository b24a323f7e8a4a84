#pragma once

#include <cstdint>

namespace tarnwick {

// Where Linux tells about memory; a test has folders of its own.
struct MemorySources {
    const char* processes = "/proc";
    const char* controlGroups = "/sys/fs/cgroup";
};

// MemoryLeft by what these folders tell, and the limit of the address space.
std::uint64_t MemoryLeft(const MemorySources& sources);

} // namespace tarnwick
