#pragma once

namespace tarnwick {

// Reads one real at the start of a NUL-terminated text as sscanf does with "%lf" (or "%f") in the C locale:
// correctly rounded, in every shape that the C library knows. Returns the characters read; 0, and nothing
// stored, for none.
int ScanReal(const char* text, double* value);
int ScanReal(const char* text, float* value);

} // namespace tarnwick
