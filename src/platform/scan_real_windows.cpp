#include "platform/plain_scan.h"
#include "platform/scan_real.h"

namespace tarnwick {

int ScanReal(const char* text, double* value) {
    return PlainScanReal(text, value);
}

int ScanReal(const char* text, float* value) {
    return PlainScanReal(text, value);
}

} // namespace tarnwick
