#pragma once

#include "platform/sanitizers.h"

namespace tarnwick::test {

// Whether a sanitizer watches this build, which then takes ten times as long and other amounts of memory.
#if defined(TARNWICK_ADDRESS_SANITIZER) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

} // namespace tarnwick::test
