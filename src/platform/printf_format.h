#pragma once

// TARNWICK_PRINTF(FORMAT, FIRST): as the compiler's attribute has it, for the formats of C++, which every
// standard library of ours prints.
#include <cstdio>
#ifdef __MINGW_PRINTF_FORMAT // "printf" alone means the formats of an old library there
#define TARNWICK_PRINTF(format_, first_) [[gnu::format(__MINGW_PRINTF_FORMAT, format_, first_)]]
#else
#define TARNWICK_PRINTF(format_, first_) [[gnu::format(printf, format_, first_)]]
#endif
