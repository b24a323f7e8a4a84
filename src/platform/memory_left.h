#pragma once

#include <cstdint>

namespace tarnwick {

// The bytes that this process can still take and fill: the least of what the machine and every limit of the
// process leave, each less a part in 32 for others. What can be dropped for it (copies of files) counts as
// free. A very large number where nothing sets a limit. Needs no memory itself.
std::uint64_t MemoryLeft();

} // namespace tarnwick
