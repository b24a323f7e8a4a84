#pragma once

#include "platform/sanitizers.h"

namespace tarnwick::test {

// Whether a sanitizer watches this build: it runs ten times as long, and its memory is another.
#if defined(TARNWICK_ADDRESS_SANITIZER) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

} // namespace tarnwick::test
