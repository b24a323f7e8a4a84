#pragma once

// Where the standard streams of the program lead.
namespace tarnwick {

// Whether standard error is a terminal, one that takes escape sequences.
bool IsErrorTerminal();

// Whether standard output is a terminal that shows colours.
bool IsColourTerminal();

// Writes to standard error past its buffer. Needs no memory.
void WriteToError(const char* text);

} // namespace tarnwick
