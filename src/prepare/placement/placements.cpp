#include "prepare/placement/placements.h"

#include "exchange/arguments.h"

#include <string_view>

namespace tarnwick::prepare {

namespace {

// The axes of a transformation operator needn't be at right angles to each other; those that the standard
// derives from them are (ISO 10303-42, base_axis).
Transform OperatorOf(Vec3 origin, double scale, std::optional<Vec3> x, std::optional<Vec3> y,
                     std::optional<Vec3> z) {
    Transform base;
    if (z) {
        base = FromAxes(origin, z, x);
    } else if (x && y) {
        base = FromAxes(origin, Cross(*x, *y), x);
    } else {
        base = FromAxes(origin, std::nullopt, x);
    }
    // The second axis says whether the operator mirrors.
    if (y) {
        const Vec3 across{base.linear[1], base.linear[4], base.linear[7]};
        if (Dot(across, *y) < 0) {
            base.linear[1] = -across.x;
            base.linear[4] = -across.y;
            base.linear[7] = -across.z;
        }
    }
    for (double& value : base.linear) { value *= scale; }
    return base;
}

std::optional<Transform> ReadOperator(const ExchangeFile& file, const Instance& instance, double unit) {
    const std::string_view text = file.TextOf(instance);
    const auto direction = [&](std::string_view argument) { return ReadVec3(file, ReferenceOf(argument)); };
    if (file.KeywordOf(instance).empty()) {
        const Arguments base(FindRecord(text, "CARTESIAN_TRANSFORMATION_OPERATOR").arguments);
        const Arguments third(FindRecord(text, "CARTESIAN_TRANSFORMATION_OPERATOR_3D").arguments);
        const std::optional<Vec3> origin = direction(base[2]);
        if (!origin) { return std::nullopt; }
        return OperatorOf(*origin * unit, RealOf(base[3]).value_or(1), direction(base[0]), direction(base[1]),
                          direction(third[0]));
    }
    // Names come first, one or two or three of them; then first and second axis, origin, scale, third axis.
    const Arguments arguments(RecordOf(text).arguments);
    const std::size_t count = arguments.Count();
    if (count < 5) { return std::nullopt; }
    const std::optional<Vec3> origin = direction(arguments[count - 3]);
    if (!origin) { return std::nullopt; }
    return OperatorOf(*origin * unit, RealOf(arguments[count - 2]).value_or(1),
                      direction(arguments[count - 5]), direction(arguments[count - 4]),
                      direction(arguments[count - 1]));
}

} // namespace

std::optional<Vec3> ReadVec3(const ExchangeFile& file, std::uint64_t number) {
    const Instance* const instance = file.Find(number);
    if (instance == nullptr) { return std::nullopt; }
    const std::string_view keyword = file.KeywordOf(*instance);
    if (keyword != "CARTESIAN_POINT" && keyword != "DIRECTION") { return std::nullopt; }
    const Arguments arguments(RecordOf(file.TextOf(*instance)).arguments);
    const auto triple = TripleOf(arguments[1]);
    if (!triple) { return std::nullopt; }
    const Vec3 v{(*triple)[0], (*triple)[1], (*triple)[2]};
    if (!IsFinite(v)) { return std::nullopt; }
    return v;
}

std::optional<Transform> ReadPlacement(const ExchangeFile& file, std::uint64_t number, double unit) {
    const Instance* const instance = file.Find(number);
    if (instance == nullptr) { return std::nullopt; }
    const std::string_view keyword = file.KeywordOf(*instance);
    if (keyword.empty() || keyword == "CARTESIAN_TRANSFORMATION_OPERATOR_3D") {
        return ReadOperator(file, *instance, unit);
    }
    if (keyword != "AXIS2_PLACEMENT_3D" && keyword != "AXIS1_PLACEMENT") { return std::nullopt; }
    const Arguments arguments(RecordOf(file.TextOf(*instance)).arguments);
    const std::optional<Vec3> origin = ReadVec3(file, ReferenceOf(arguments[1]));
    if (!origin) { return std::nullopt; }
    return FromAxes(*origin * unit, ReadVec3(file, ReferenceOf(arguments[2])),
                    ReadVec3(file, ReferenceOf(arguments[3])));
}

std::optional<Transform> ReadTransformation(const ExchangeFile& file, std::uint64_t number, double firstUnit,
                                            double secondUnit) {
    const Instance* const instance = file.Find(number);
    if (instance == nullptr) { return std::nullopt; }
    const Record record = FindRecord(file.TextOf(*instance), "ITEM_DEFINED_TRANSFORMATION");
    if (!record.IsFound()) { return ReadPlacement(file, number, secondUnit); }
    const Arguments arguments(record.arguments);
    const std::optional<Transform> source = ReadPlacement(file, ReferenceOf(arguments[2]), firstUnit);
    const std::optional<Transform> target = ReadPlacement(file, ReferenceOf(arguments[3]), secondUnit);
    if (!source || !target) { return std::nullopt; }
    const std::optional<Transform> back = Inverse(*source);
    if (!back) { return std::nullopt; }
    return *target * *back;
}

} // namespace tarnwick::prepare
