#pragma once

#include <string_view>

namespace tarnwick {

// Reads up to `count` blank-separated reals as sscanf does with a "%lf" (or "%f") for each, in the C locale:
// correctly rounded, up to the first text that is no number; the values after that stay as they were. Returns
// how many were read. Eight bytes after `text` must be readable; the first must not continue a number.
int ScanReals(std::string_view text, double* values, int count);
int ScanReals(std::string_view text, float* values, int count);

} // namespace tarnwick
