#pragma once

#include <string_view>

namespace tarnwick {

// Reads up to `count` blank-separated reals as sscanf does with a "%lf" (or "%f") for each, in the C locale:
// correctly rounded, ended by the first text that is no number; what is not read stays as it was. Returns how
// many were read. `text` must be followed by a character that continues no number.
int ScanReals(std::string_view text, double* values, int count);
int ScanReals(std::string_view text, float* values, int count);

} // namespace tarnwick
