#pragma once

// TARNWICK_ADDRESS_SANITIZER is defined when AddressSanitizer watches this build, whichever compiler it is.
#if defined(__SANITIZE_ADDRESS__)
#define TARNWICK_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARNWICK_ADDRESS_SANITIZER 1
#endif
#endif
