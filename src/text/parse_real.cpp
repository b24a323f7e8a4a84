#include "text/parse_real.h"

namespace tarnwick::real {

namespace {

double Factor(std::uint32_t exponent) {
    double factor = 1.0;
    for (; exponent >= 50; exponent -= 50) { factor = factor * 1e50; }
    for (; exponent >= 8; exponent -= 8) { factor = factor * 1e8; }
    for (; exponent > 0; --exponent) { factor = factor * 10.0; }
    return factor;
}

Tables MakeTables() {
    Tables tables{};
    double scale = 1.0;
    for (double& entry : tables.scale) {
        entry = scale;
        scale = scale * 0.1;
    }
    for (std::uint32_t i = 0; i < 309; ++i) { tables.factor[i] = Factor(i); }
    std::uint64_t ten = 1;
    for (std::uint64_t& entry : tables.ten) {
        entry = ten;
        ten *= 10;
    }
    return tables;
}

} // namespace

const Tables kTables = MakeTables();

const char* TakeLongRun(const char* p, Run* run) {
    while (run->exact && IsDigit(*p)) {
        if (run->mantissa > kLastBeforeDigit) {
            run->exact = false;
            run->value = static_cast<double>(run->mantissa);
        } else {
            run->mantissa = run->mantissa * 10 + static_cast<std::uint64_t>(*p++ - '0');
        }
    }
    for (; IsDigit(*p); ++p) { run->value = run->value * 10.0 + (*p - '0'); }
    return p;
}

const char* TakeExponent(const char* p, double value, double sign, double* result) {
    ++p;
    const bool negative = *p == '-';
    if (negative || *p == '+') { ++p; }
    std::uint32_t exponent = 0;
    for (; IsDigit(*p); ++p) { exponent = exponent * 10 + static_cast<std::uint32_t>(*p - '0'); }
    if (negative && exponent > 8) {
        *result = 0.0;
        return p;
    }
    const double factor = kTables.factor[exponent > 308 ? 308 : exponent];
    *result = negative ? value / factor * sign : value * factor * sign;
    return p;
}

} // namespace tarnwick::real
