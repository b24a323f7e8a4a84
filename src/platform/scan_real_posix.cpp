#include "platform/scan_real.h"

#include <clocale>
#include <cstdio>
#include <locale.h>

namespace tarnwick {

namespace {

// A locale in which a real has a point, whatever the program's own says.
locale_t PlainLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

} // namespace

int ScanReal(const char* text, double* value) {
    const locale_t former = uselocale(PlainLocale());
    int used = 0;
    const int read = std::sscanf(text, "%lf%n", value, &used);
    uselocale(former);
    return read == 1 ? used : 0;
}

int ScanReal(const char* text, float* value) {
    const locale_t former = uselocale(PlainLocale());
    int used = 0;
    const int read = std::sscanf(text, "%f%n", value, &used);
    uselocale(former);
    return read == 1 ? used : 0;
}

} // namespace tarnwick
