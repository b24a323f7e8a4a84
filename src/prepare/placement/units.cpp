#include "prepare/placement/units.h"

#include "exchange/arguments.h"

#include <array>
#include <cmath>
#include <string_view>
#include <utility>

namespace tarnwick::prepare {

namespace {

// A conversion based unit leads to another, which leads to one of the SI; more steps are a circle.
constexpr int kMostSteps = 8;

} // namespace

double PrefixFactor(std::string_view prefix) {
    static constexpr std::array<std::pair<std::string_view, double>, 16> kPrefixes{{{"EXA", 1e18},
                                                                                    {"PETA", 1e15},
                                                                                    {"TERA", 1e12},
                                                                                    {"GIGA", 1e9},
                                                                                    {"MEGA", 1e6},
                                                                                    {"KILO", 1e3},
                                                                                    {"HECTO", 1e2},
                                                                                    {"DECA", 1e1},
                                                                                    {"DECI", 1e-1},
                                                                                    {"CENTI", 1e-2},
                                                                                    {"MILLI", 1e-3},
                                                                                    {"MICRO", 1e-6},
                                                                                    {"NANO", 1e-9},
                                                                                    {"PICO", 1e-12},
                                                                                    {"FEMTO", 1e-15},
                                                                                    {"ATTO", 1e-18}}};
    for (const auto& [name, factor] : kPrefixes) {
        if (name == prefix) { return factor; }
    }
    return 1;
}

double LengthUnits::Of(std::uint64_t context) {
    if (const double* const known = known_.Find(context)) { return *known; }
    const double unit = Read(context).value_or(1);
    known_.Add(context, unit);
    return unit;
}

std::optional<double> LengthUnits::Read(std::uint64_t context) const {
    const Instance* const instance = file_.Find(context);
    if (instance == nullptr) { return std::nullopt; }
    const Record assigned = FindRecord(file_.TextOf(*instance), "GLOBAL_UNIT_ASSIGNED_CONTEXT");
    if (!assigned.IsFound()) { return std::nullopt; }
    std::vector<std::uint64_t> units;
    // A simple instance lists its units after what it inherits.
    AppendReferences(assigned.arguments, &units);
    for (const std::uint64_t unit : units) {
        if (const std::optional<double> factor = ReadUnit(unit, 0)) { return factor; }
    }
    return std::nullopt;
}

std::optional<double> LengthUnits::ReadUnit(std::uint64_t unit, int depth) const {
    const Instance* const instance = file_.Find(unit);
    if (instance == nullptr || depth > kMostSteps) { return std::nullopt; }
    const std::string_view text = file_.TextOf(*instance);
    if (depth == 0 && !FindRecord(text, "LENGTH_UNIT").IsFound()) { return std::nullopt; }
    if (const Record si = FindRecord(text, "SI_UNIT"); si.IsFound()) {
        const Arguments arguments(si.arguments);
        const std::size_t last = arguments.Count();
        if (last < 2 || EnumerationOf(arguments[last - 1]) != "METRE") { return std::nullopt; }
        return 1000 * PrefixFactor(EnumerationOf(arguments[last - 2]));
    }
    const Record conversion = FindRecord(text, "CONVERSION_BASED_UNIT");
    const Arguments arguments(conversion.arguments);
    if (arguments.Count() == 0) { return std::nullopt; }
    const Instance* const measure = file_.Find(ReferenceOf(arguments[arguments.Count() - 1]));
    if (measure == nullptr) { return std::nullopt; }
    // LENGTH_MEASURE_WITH_UNIT(value, unit), or the same as a record of a complex instance.
    for (const Record& record : RecordsOf(file_.TextOf(*measure))) {
        const Arguments parts(record.arguments);
        if (parts.Count() != 2) { continue; }
        const std::optional<double> value = RealOf(parts[0]);
        const std::optional<double> factor = ReadUnit(ReferenceOf(parts[1]), depth + 1);
        if (value && factor && *value > 0 && std::isfinite(*value)) { return *value * *factor; }
    }
    return std::nullopt;
}

} // namespace tarnwick::prepare
