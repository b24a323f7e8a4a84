#include "prepare/elements/element_nodes.h"

#include "exchange/arguments.h"
#include "prepare/placement/units.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarnwick::prepare {

namespace {

// A longer entity counts as absent: one that many others lead to is read for each of them.
constexpr std::uint32_t kLongestText = 4096;
// The items of a node that are looked at; one is its point.
constexpr std::size_t kMostItems = 4;
constexpr int kMostConversions = 4;

// What a unit is in metres or radians; nothing for any other unit.
std::optional<double> FactorOf(const ExchangeFile& file, std::uint64_t unit, std::string_view dimension,
                               std::string_view name) {
    double factor = 1;
    for (int step = 0; step < kMostConversions; ++step) {
        const Instance* const instance = file.Find(unit);
        if (instance == nullptr || instance->length > kLongestText) { return std::nullopt; }
        const std::string_view text = file.TextOf(*instance);
        const Record si = FindRecord(text, "SI_UNIT");
        if (si.IsFound()) {
            // A simple instance begins with the dimensions.
            const Arguments arguments(si.arguments);
            const std::size_t last = arguments.Count() == 0 ? 0 : arguments.Count() - 1;
            if (EnumerationOf(arguments[last]) != name) { return std::nullopt; }
            return factor * PrefixFactor(last == 0 ? "" : EnumerationOf(arguments[last - 1]));
        }
        const Record conversion = FindRecord(text, "CONVERSION_BASED_UNIT");
        if (!conversion.IsFound() || !FindRecord(text, dimension).IsFound()) { return std::nullopt; }
        const Instance* const measure = file.Find(ReferenceOf(Arguments(conversion.arguments)[1]));
        if (measure == nullptr || measure->length > kLongestText) { return std::nullopt; }
        const std::string_view measureText = file.TextOf(*measure);
        Record record = FindRecord(measureText, "MEASURE_WITH_UNIT");
        if (!record.IsFound()) { record = RecordOf(measureText); }
        const Arguments arguments(record.arguments);
        const std::optional<double> value = RealOf(arguments[0]);
        if (!value) { return std::nullopt; }
        factor *= *value;
        unit = ReferenceOf(arguments[1]);
    }
    return std::nullopt;
}

ContextUnits ReadUnits(const ExchangeFile& file, std::uint64_t context) {
    ContextUnits units;
    const Instance* const instance = file.Find(context);
    if (instance == nullptr) { return units; }
    const Record assigned = FindRecord(file.TextOf(*instance), "GLOBAL_UNIT_ASSIGNED_CONTEXT");
    std::vector<std::uint64_t> references;
    // A simple instance begins with its identifier and its type.
    const Arguments arguments(assigned.arguments);
    if (arguments.Count() > 0) { AppendReferences(arguments[arguments.Count() - 1], &references); }
    for (const std::uint64_t unit : references) {
        const auto length = FactorOf(file, unit, "LENGTH_UNIT", "METRE");
        if (length) { units.length = *length * 1000; }
        const auto angle = FactorOf(file, unit, "PLANE_ANGLE_UNIT", "RADIAN");
        if (angle) { units.angle = *angle; }
    }
    return units;
}

// The arguments that a node or another representation has as a representation.
struct RepresentationArguments {
    std::string_view items;
    std::uint64_t context = 0;
};
RepresentationArguments RepresentationOf(std::string_view text) {
    Record record = FindRecord(text, "REPRESENTATION");
    if (!record.IsFound()) { record = RecordOf(text); }
    const Arguments arguments(record.arguments);
    return {arguments[1], ReferenceOf(arguments[2])};
}

bool IsNode(std::string_view keyword) {
    return keyword != "DUMMY_NODE" &&
           (keyword == "NODE" || keyword.starts_with("NODE_WITH_") || keyword.ends_with("_NODE"));
}

} // namespace

ElementNodes::ElementNodes(const ExchangeFile& file)
    : file_(file), numbers_(file.Instances().size(), kUnread), systems_(1) {
    ReadSystems();
}

std::size_t ElementNodes::PlaceOf(std::uint64_t instance) const {
    const Instance* const found = file_.Find(instance);
    return found == nullptr ? numbers_.size() : static_cast<std::size_t>(found - file_.Instances().data());
}

std::uint32_t ElementNodes::NumberOf(std::uint64_t instance) {
    const std::size_t place = PlaceOf(instance);
    if (place == numbers_.size()) { return kAbsent; }
    if (numbers_[place] == kUnread) { numbers_[place] = Read(file_.Instances()[place], place); }
    return numbers_[place];
}

const ContextUnits& ElementNodes::UnitsOf(std::uint64_t context) {
    const auto [at, isNew] = unitsOf_.try_emplace(context);
    if (isNew) { at->second = ReadUnits(file_, context); }
    return at->second;
}

void ElementNodes::ReadSystems() {
    for (const std::uint32_t place : file_.OfKeyword("POINT_REPRESENTATION")) {
        ReadPointRepresentation(file_.Instances()[place]);
    }
}

// The first representation that lists a node counts.
void ElementNodes::ReadPointRepresentation(const Instance& representation) {
    const RepresentationArguments arguments = RepresentationOf(file_.TextOf(representation));
    std::vector<std::uint64_t> items;
    AppendReferences(arguments.items, &items);
    std::optional<System> system;
    for (const std::uint64_t item : items) {
        const Instance* const instance = file_.Find(item);
        if (instance != nullptr && !system) {
            system = ReadSystem(*instance, UnitsOf(arguments.context).length);
        }
    }
    if (!system || (IsIdentity(system->at) && system->kind == SystemKind::kCartesian)) { return; }
    systems_.push_back(*system);
    systemOf_.resize(numbers_.size(), 0);
    std::vector<std::uint64_t> nodes;
    for (const std::uint64_t item : items) {
        const std::size_t set = PlaceOf(item);
        if (set == numbers_.size() || file_.KeywordOf(file_.Instances()[set]) != "NODE_SET") { continue; }
        if (systemOf_[set] != 0) { continue; } // its nodes have theirs
        systemOf_[set] = static_cast<std::uint32_t>(systems_.size() - 1);
        nodes.clear();
        AppendReferences(file_.TextOf(file_.Instances()[set]), &nodes);
        for (const std::uint64_t node : nodes) {
            const std::size_t place = PlaceOf(node);
            if (place < numbers_.size() && systemOf_[place] == 0) { systemOf_[place] = systemOf_[set]; }
        }
    }
}

std::optional<ElementNodes::System> ElementNodes::ReadSystem(const Instance& instance, double unit) const {
    const std::string_view keyword = file_.KeywordOf(instance);
    const bool isSystem = keyword == "FEA_AXIS2_PLACEMENT_3D" || keyword == "AXIS2_PLACEMENT_3D";
    if (!isSystem || instance.length > kLongestText) { return std::nullopt; }
    const Arguments arguments(RecordOf(file_.TextOf(instance)).arguments);
    const std::optional<Vec3> origin = VectorOf(ReferenceOf(arguments[1]));
    System system;
    system.at = FromAxes(origin.value_or(Vec3{}) * unit, VectorOf(ReferenceOf(arguments[2])),
                         VectorOf(ReferenceOf(arguments[3])));
    const std::string_view kind = EnumerationOf(arguments[4]);
    if (kind == "CYLINDRICAL") { system.kind = SystemKind::kCylindrical; }
    if (kind == "SPHERICAL") { system.kind = SystemKind::kSpherical; }
    return system;
}

std::optional<Vec3> ElementNodes::VectorOf(std::uint64_t instance) const {
    const Instance* const found = file_.Find(instance);
    if (found == nullptr || found->length > kLongestText) { return std::nullopt; }
    const auto triple = TripleOf(Arguments(RecordOf(file_.TextOf(*found)).arguments)[1]);
    if (!triple) { return std::nullopt; }
    return Vec3{(*triple)[0], (*triple)[1], (*triple)[2]};
}

// Angles of a spherical system are from the z axis, and about it from the x axis.
std::optional<Vec3> ElementNodes::ReadPoint(std::uint64_t instance, const System& system,
                                            const ContextUnits& units) const {
    const Instance* const found = file_.Find(instance);
    if (found == nullptr || found->length > kLongestText) { return std::nullopt; }
    const std::string_view keyword = file_.KeywordOf(*found);
    const Arguments arguments(RecordOf(file_.TextOf(*found)).arguments);
    SystemKind kind = system.kind;
    std::optional<Vec3> p;
    if (keyword == "CARTESIAN_POINT") {
        const auto triple = TripleOf(arguments[1]);
        if (triple) { p = Vec3{(*triple)[0], (*triple)[1], (*triple)[2]}; }
    } else if ((keyword == "CYLINDRICAL_POINT" || keyword == "SPHERICAL_POINT") && arguments.Count() >= 3) {
        kind = keyword == "SPHERICAL_POINT" ? SystemKind::kSpherical : SystemKind::kCylindrical;
        const std::size_t first = arguments.Count() - 3;
        const std::optional<double> values[3] = {RealOf(arguments[first]), RealOf(arguments[first + 1]),
                                                 RealOf(arguments[first + 2])};
        if (values[0] && values[1] && values[2]) { p = Vec3{*values[0], *values[1], *values[2]}; }
    }
    if (!p) { return std::nullopt; }
    const double r = p->x * units.length;
    const double angle = p->y * units.angle;
    Vec3 local = *p * units.length;
    if (kind == SystemKind::kCylindrical) {
        local = {r * std::cos(angle), r * std::sin(angle), p->z * units.length};
    } else if (kind == SystemKind::kSpherical) {
        const double about = p->z * units.angle;
        local = {r * std::sin(angle) * std::cos(about), r * std::sin(angle) * std::sin(about),
                 r * std::cos(angle)};
    }
    const Vec3 at = Apply(system.at, local);
    // The viewer's vertices are f32.
    constexpr double kFarthest = std::numeric_limits<float>::max();
    const bool isSomewhere =
        std::abs(at.x) <= kFarthest && std::abs(at.y) <= kFarthest && std::abs(at.z) <= kFarthest;
    return isSomewhere ? std::optional(at) : std::nullopt;
}

std::uint32_t ElementNodes::Read(const Instance& instance, std::size_t place) {
    if (instance.length > kLongestText || positions_.size() >= kUnread) { return kAbsent; }
    const std::string_view text = file_.TextOf(instance);
    bool isNode = false;
    for (const Record& record : RecordsOf(text)) {
        if (record.keyword == "DUMMY_NODE") { return kAbsent; }
        isNode = isNode || IsNode(record.keyword);
    }
    if (!isNode) { return kAbsent; }
    const RepresentationArguments arguments = RepresentationOf(text);
    const ContextUnits& units = UnitsOf(arguments.context);
    const System& system = systems_[systemOf_.empty() ? 0 : systemOf_[place]];
    std::vector<std::uint64_t> items;
    AppendReferences(arguments.items, &items);
    items.resize(std::min(items.size(), kMostItems));
    for (const std::uint64_t item : items) {
        if (const std::optional<Vec3> point = ReadPoint(item, system, units)) {
            positions_.push_back(*point);
            units_.push_back(units.length);
            return static_cast<std::uint32_t>(positions_.size() - 1);
        }
    }
    return kAbsent;
}

} // namespace tarnwick::prepare
