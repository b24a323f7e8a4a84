#pragma once

#include "platform/printf_format.h"

#include <cstddef>

// The two log channels of the system, both without time stamps. Any thread may write; one call comes out
// whole, never interleaved with another. Text that comes from a file is always an argument, never the format.
namespace tarnwick {

// Load progress, errors ("<E>"), warnings ("<W>"), thread ends, picks: to standard error, and to the sink set
// below.
TARNWICK_PRINTF(1, 2) void ConsolePrint(const char* format, ...);

// Scan and inflate counters, messages of the face reader: to standard output.
TARNWICK_PRINTF(1, 2) void OutputPrint(const char* format, ...);

// What receives a copy of each text of the console channel (the console window). `text` is not terminated; it
// is called under the channel's lock, so it must not print.
using ConsoleSink = void (*)(void* context, const char* text, std::size_t length);

// Sets or (with null) removes the sink. Call it while no load runs.
void SetConsoleSink(ConsoleSink sink, void* context);

// With true, standard error gets only the texts of ConsolePrint that tell of an error ("<E>").
void ShowErrorsOnly(bool enabled);

// With false, OutputPrint writes nothing, so that standard output is free for something else.
void EnableOutput(bool enabled);

} // namespace tarnwick
