#pragma once

namespace tarnwick {

// Stops the calling thread for good, after one "<E>" line with the name of the text and what its reader waits
// for. Uses no processor time.
[[noreturn]] void Stall(const char* name, const char* reason);

} // namespace tarnwick
