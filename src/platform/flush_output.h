#pragma once

namespace tarnwick {

// Hands what stands in the buffer of standard output to the system, which only then says whether it takes it.
// Returns 0, or the errno of what was lost, now or before.
int FlushOutput();

} // namespace tarnwick
