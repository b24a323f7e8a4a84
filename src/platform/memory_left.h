#pragma once

#include <cstdint>

namespace tarnwick {

// The bytes that this process can still take and fill: the least of what the machine and every limit of the
// process leave, each less a 32nd of the whole for others. What the system can drop (copies of files) counts
// as free. A very large number where nothing sets a limit. Needs no memory itself.
std::uint64_t MemoryLeft();

} // namespace tarnwick
