#pragma once

#include <cstddef>

namespace tarnwick {

// Zero-filled pages from the system, huge ones where the block is large enough to gain from them (page faults
// are the largest avoidable cost of a load). Returns null when the system has no memory; `bytes` is at
// least 1.
void* AllocatePages(std::size_t bytes);

// Whether more than `bytes` of memory are left, for a block that will be filled. The system hands out more
// than it has, and ends a process that then uses it.
bool IsMemoryLeft(std::size_t bytes);

// Gives back what AllocatePages returned for the same number of bytes.
void FreePages(void* pages, std::size_t bytes);

} // namespace tarnwick
