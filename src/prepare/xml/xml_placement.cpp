#include "prepare/xml/xml_placement.h"

#include <array>
#include <string_view>

namespace tarnwick::prepare {

namespace {

constexpr int kMostSteps = 16;
constexpr int kMostChildren = 64;
constexpr double kNearZero = 1e-9;

Transform FromNine(const std::vector<double>& n, std::array<std::size_t, 9> rows) {
    Transform t;
    for (std::size_t i = 0; i < 9; ++i) { t.linear[i] = n[rows[i]]; }
    return t;
}

// The fourth numbers of four columns, or of four rows, are 0, 0, 0 and 1.
bool EndsInPoint(const std::vector<double>& n, std::size_t first, std::size_t step) {
    for (std::size_t i = 0; i < 3; ++i) {
        if (std::abs(n[first + i * step]) > kNearZero) { return false; }
    }
    return std::abs(n[first + 3 * step] - 1) < kNearZero;
}

pugi::xml_node EitherChild(pugi::xml_node node, std::string_view name, std::string_view other) {
    const pugi::xml_node child = ChildOf(node, name);
    return child ? child : ChildOf(node, other);
}

pugi::xml_node MatrixChild(pugi::xml_node node) {
    pugi::xml_node child = FirstElement(node);
    for (int i = 0; child && i < kMostChildren; ++i, child = NextElement(child)) {
        if (LocalName(child).ends_with("Matrix")) { return child; }
    }
    return {};
}

std::optional<Vec3> VectorOf(pugi::xml_node node, const UidTable& uids) {
    const std::vector<double> numbers = NumbersIn(node, 3, uids);
    if (numbers.size() < 2) { return std::nullopt; }
    return Vec3{numbers[0], numbers[1], numbers.size() > 2 ? numbers[2] : 0};
}

bool IsAxisPlacement(pugi::xml_node node) {
    return ChildOf(node, "RefDirection") || ChildOf(node, "Position") || ChildOf(node, "Location");
}

// A child that may lead on to a placement: the first whose name says so, else the first that isn't there for
// people.
pugi::xml_node WayOn(pugi::xml_node node) {
    pugi::xml_node other;
    pugi::xml_node child = FirstElement(node);
    for (int i = 0; child && i < kMostChildren; ++i, child = NextElement(child)) {
        const std::string_view name = LocalName(child);
        if (name == "Id" || name == "Name" || name == "Description") { continue; }
        for (const std::string_view sign : {"Transformation", "Placement", "Relationship", "Association"}) {
            if (name.find(sign) != std::string_view::npos) { return child; }
        }
        if (!other) { other = child; }
    }
    return other;
}

std::optional<Transform> ReadAxes(pugi::xml_node node, const PlacementContext& context) {
    for (int step = 0; step < kMostSteps; ++step) {
        node = Referred(node, *context.uids);
        if (!node) { return std::nullopt; }
        if (IsAxisPlacement(node)) {
            const std::optional<Vec3> position =
                VectorOf(EitherChild(node, "Position", "Location"), *context.uids);
            if (!position && EitherChild(node, "Position", "Location")) { return std::nullopt; }
            return FromAxes(position.value_or(Vec3{}) * context.unitOf(node),
                            VectorOf(ChildOf(node, "Axis"), *context.uids),
                            VectorOf(ChildOf(node, "RefDirection"), *context.uids));
        }
        node = WayOn(node);
    }
    return std::nullopt;
}

std::optional<Transform> ReadPair(const AxisPair& pair, const PlacementContext& context) {
    const std::optional<Transform> origin = ReadAxes(pair.origin, context);
    const std::optional<Transform> target = ReadAxes(pair.target, context);
    if (!origin || !target) { return std::nullopt; }
    const bool isTurned = context.isTurnedAround(pair);
    const std::optional<Transform> back = Inverse(isTurned ? *target : *origin);
    if (!back) { return std::nullopt; }
    return (isTurned ? *origin : *target) * *back;
}

std::optional<Transform> ReadMatrix(pugi::xml_node node, const PlacementContext& context) {
    const pugi::xml_node matrix = MatrixChild(node);
    const pugi::xml_node translation = ChildOf(node, "TranslationVector");
    std::optional<Transform> t =
        matrix ? MatrixOf(NumbersIn(matrix, 17, *context.uids)) : std::optional(Transform{});
    if (!t || Determinant(*t) == 0) { return std::nullopt; }
    if (translation) {
        const std::vector<double> numbers = NumbersIn(translation, 3, *context.uids);
        if (numbers.size() != 3) { return std::nullopt; }
        t->move = {numbers[0], numbers[1], numbers[2]};
    }
    t->move = t->move * context.unitOf(node);
    return t;
}

bool IsFinite(const Transform& t) {
    double sum = t.move.x + t.move.y + t.move.z;
    for (const double number : t.linear) { sum += number; }
    return std::isfinite(sum);
}

} // namespace

std::optional<Transform> MatrixOf(const std::vector<double>& n) {
    if (n.size() == 9) { return FromNine(n, {0, 3, 6, 1, 4, 7, 2, 5, 8}); }
    if (n.size() == 12) {
        const Transform rows = FromNine(n, {0, 1, 2, 4, 5, 6, 8, 9, 10});
        Transform columns = FromNine(n, {0, 3, 6, 1, 4, 7, 2, 5, 8});
        columns.move = {n[9], n[10], n[11]};
        if (IsRigid(columns) || !IsRigid(rows)) { return columns; }
        return Transform{rows.linear, {n[3], n[7], n[11]}};
    }
    if (n.size() != 16) { return std::nullopt; }
    if (EndsInPoint(n, 3, 4)) {
        Transform columns = FromNine(n, {0, 4, 8, 1, 5, 9, 2, 6, 10});
        columns.move = {n[12], n[13], n[14]};
        return columns;
    }
    if (!EndsInPoint(n, 12, 1)) { return std::nullopt; }
    Transform rows = FromNine(n, {0, 1, 2, 4, 5, 6, 8, 9, 10});
    rows.move = {n[3], n[7], n[11]};
    return rows;
}

std::optional<Transform> ReadPlacement(pugi::xml_node placement, const PlacementContext& context) {
    pugi::xml_node node = placement;
    for (int step = 0; step < kMostSteps; ++step) {
        node = Referred(node, *context.uids);
        if (!node) { return std::nullopt; }
        std::optional<Transform> t;
        const AxisPair pair{EitherChild(node, "Origin", "Source"), ChildOf(node, "Target")};
        if (MatrixChild(node) || ChildOf(node, "TranslationVector")) {
            t = ReadMatrix(node, context);
        } else if (pair.origin && pair.target) {
            t = ReadPair(pair, context);
        } else if (IsAxisPlacement(node)) {
            t = ReadAxes(node, context);
        } else {
            node = WayOn(node);
            continue;
        }
        if (t && !IsFinite(*t)) { t.reset(); }
        return t;
    }
    return std::nullopt;
}

} // namespace tarnwick::prepare
