#pragma once

namespace tarnwick {

// Exit status of a process that FailFast ended.
inline constexpr int kFailFastStatus = 134;

// Ends the process at once, with no message and without running destructors: the one way out for a digit run
// or a name that exceeds its fixed buffer. Any thread may call it.
[[noreturn]] void FailFast();

} // namespace tarnwick
