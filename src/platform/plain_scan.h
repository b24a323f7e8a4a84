#pragma once

namespace tarnwick {

// ScanReal without sscanf, for a system whose own rounds twice: takes what the GNU library takes for a
// number, and gives the f64 (or f32) nearest to it.
int PlainScanReal(const char* text, double* value);
int PlainScanReal(const char* text, float* value);

} // namespace tarnwick
