#pragma once

#include "exchange/exchange_file.h"
#include "text/look_up.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarnwick::prepare {

// The factor of an SI prefix, "MILLI" for example; 1 for any other text.
double PrefixFactor(std::string_view prefix);

// The length units of the contexts of a file (ISO 10303-41, global_unit_assigned_context). Used by one
// thread.
class LengthUnits {
public:
    explicit LengthUnits(const ExchangeFile& file) : file_(file) {}
    // Millimetres of one length unit in a representation context; 1 where the context tells none.
    double Of(std::uint64_t context);

private:
    std::optional<double> Read(std::uint64_t context) const;
    std::optional<double> ReadUnit(std::uint64_t unit, int depth) const;

    const ExchangeFile& file_;
    LookUp<std::uint64_t, double> known_;
};

} // namespace tarnwick::prepare
