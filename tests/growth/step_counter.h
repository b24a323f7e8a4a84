#pragma once

#include <cstdint>

namespace tarnwick::test {

// The steps that the core has taken in this process: its branches, and the characters that memchr has passed.
std::uint64_t StepsTaken();

} // namespace tarnwick::test
