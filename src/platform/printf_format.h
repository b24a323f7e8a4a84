#pragma once

// TARNWICK_PRINTF(FORMAT, FIRST): the compiler's attribute of the same arguments, for the formats of standard
// C++.
#include <cstdio>
#ifdef __MINGW_PRINTF_FORMAT // there, "printf" alone means the formats of an old library
#define TARNWICK_PRINTF(format_, first_) [[gnu::format(__MINGW_PRINTF_FORMAT, format_, first_)]]
#else
#define TARNWICK_PRINTF(format_, first_) [[gnu::format(printf, format_, first_)]]
#endif
