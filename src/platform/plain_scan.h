#pragma once

namespace tarnwick {

// ScanReal by rules of its own, for a system whose sscanf rounds twice: what sscanf of the GNU library takes
// for a number, and the f64 (or f32) nearest to it.
int PlainScanReal(const char* text, double* value);
int PlainScanReal(const char* text, float* value);

} // namespace tarnwick
