#include "text/plain_parse_real.h"

#include <cstdint>

namespace tarnwick::test {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

double PlainParseReal(const char* p, const char** end) {
    while (*p == ' ' || *p == '\t') { ++p; }
    double sign = 1.0;
    if (*p == '-') {
        sign = -1.0;
        ++p;
    } else if (*p == '+') {
        ++p;
    }
    double value = 0.0;
    for (; IsDigit(*p); ++p) { value = value * 10.0 + (*p - '0'); }
    if (*p == '.') {
        ++p;
        double scale = 1.0;
        for (; IsDigit(*p); ++p) {
            value = value * 10.0 + (*p - '0');
            scale = scale * 0.1;
        }
        value = value * scale;
    }
    *end = p;
    if (*p != 'E' && *p != 'e') { return value * 1.0 * sign; }
    ++p;
    bool negative = false;
    if (*p == '-') {
        negative = true;
        ++p;
    } else if (*p == '+') {
        ++p;
    }
    std::uint32_t e = 0;
    for (; IsDigit(*p); ++p) { e = e * 10 + static_cast<std::uint32_t>(*p - '0'); }
    *end = p;
    if (negative && e > 8) { return 0.0; }
    if (e > 308) { e = 308; }
    double factor = 1.0;
    while (e >= 50) {
        factor = factor * 1e50;
        e -= 50;
    }
    while (e >= 8) {
        factor = factor * 1e8;
        e -= 8;
    }
    while (e > 0) {
        factor = factor * 10.0;
        --e;
    }
    return negative ? value / factor * sign : value * factor * sign;
}

} // namespace tarnwick::test
