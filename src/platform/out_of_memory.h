#pragma once

namespace tarnwick {

// For std::set_terminate: where memory runs out and nothing can catch that (before main, in a thread, in what
// must not throw), the program ends with status 1 and `line` on standard error. Anything else is a fault of
// the program, and aborts it. Needs no memory.
[[noreturn]] void EndOutOfMemory(const char* line);

} // namespace tarnwick
