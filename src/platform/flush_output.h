#pragma once

namespace tarnwick {

// Writes out the buffer of standard output: only then does the system say whether it takes the bytes. Returns
// 0, or an errno when bytes were lost, now or earlier.
int FlushOutput();

} // namespace tarnwick
