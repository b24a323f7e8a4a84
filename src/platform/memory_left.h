#pragma once

#include <cstddef>
#include <cstdint>

namespace tarnwick {

// Where the system tells of memory; a test has folders of its own.
struct MemorySources {
    const char* processes = "/proc";
    const char* controlGroups = "/sys/fs/cgroup";
};

// The bytes that this process can still take and fill: the least of what the machine, the address space and
// the control groups leave, each less a part in 32 for others. What can be dropped for it (copies of files)
// counts as free. As good as endless where nothing tells. Needs no memory itself.
std::uint64_t MemoryLeft(const MemorySources& sources = {});

} // namespace tarnwick
