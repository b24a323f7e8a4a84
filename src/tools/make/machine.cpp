#include "tools/make/machine.h"

#include "text/lower_case.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <utility>

namespace tarnwick::make {

namespace {

enum class Role { kPlate, kPedestal, kShaft, kGear, kFlange, kBolt, kWasher, kBracket };
constexpr std::size_t kRoleCount = 8;

// The parts of one unit. Parts are numbered through this list again and again, so that with equal numbers of
// uses all units fill evenly.
constexpr std::array kCycle{Role::kPlate, Role::kPedestal, Role::kShaft,    Role::kGear,    Role::kFlange,
                            Role::kBolt,  Role::kWasher,   Role::kBolt,     Role::kBracket, Role::kBolt,
                            Role::kGear,  Role::kBolt,     Role::kPedestal, Role::kShaft,   Role::kBolt,
                            Role::kGear,  Role::kBracket,  Role::kBolt};

struct RoleText {
    const char* id;
    const char* name;
    int colour;
};
constexpr std::array<RoleText, kRoleCount> kTexts{{{"PLATE", "Base plate", 6},
                                                   {"PEDESTAL", "Bearing plate", 2},
                                                   {"SHAFT", "Shaft", 0},
                                                   {"GEAR", "Spur gear", 1},
                                                   {"FLANGE", "Coupling flange", 3},
                                                   {"BOLT", "Hexagon bolt", 0},
                                                   {"WASHER", "Washer", 5},
                                                   {"BRACKET", "Bracket", 4}}};

// Measures of a unit, in millimetres. It is centred on the origin in x and y and stands on z = 0; the shafts
// run along x.
constexpr double kPlateThickness = 12;
constexpr double kAxisHeight = 67;
constexpr double kAxisDistance = 80;
constexpr double kPedestalInside = 104;
constexpr double kPedestalThickness = 16;
constexpr double kShaftStart = -136;
constexpr double kJournal = 12;
constexpr double kShaftEnd = 9;
constexpr double kFlangeAt = 124;
constexpr double kFlangeThickness = 10;
constexpr double kFlangeSeat = 0.14 * kFlangeThickness;
constexpr double kBoltRing = 27;
constexpr double kBoltHead = 3.8;
constexpr double kBracketLeg = 28;
constexpr int kTeeth = 24;
constexpr int kFlangeBolts = 6;
constexpr double kUnitX = 330; // with the space around it
constexpr double kUnitY = 230; // likewise

// Parts of one role have the same fitting dimensions and differ in others.
ShapeDims DimsOf(Role role, Prng* prng) {
    switch (role) {
    case Role::kPlate: {
        const double hole = prng->Range(6, 10);
        return PlateDims{3, 2, 100, 100, kPlateThickness, hole, hole};
    }
    case Role::kPedestal: {
        const double hole = kJournal + 0.4;
        return PlateDims{2,    1,   kAxisDistance, 2 * (kAxisHeight - kPlateThickness), kPedestalThickness,
                         hole, hole};
    }
    case Role::kShaft: {
        const double collar = prng->Range(14, 18);
        return ShaftDims{{{kShaftEnd, 16}, {kJournal, 60}, {collar, 8}, {kJournal, 174}, {kShaftEnd, 28}}, 1};
    }
    case Role::kGear:
        return GearDims{kTeeth, kAxisDistance / kTeeth, prng->Range(15, 22), kJournal + 0.2,
                        prng->Below(3) != 0};
    case Role::kFlange:
        return FlangeDims{36,  kFlangeThickness, 16, kShaftEnd + 0.2, prng->Range(10, 16), kFlangeBolts,
                          3.3, kBoltRing};
    case Role::kBolt:
        return BoltDims{3, 14, prng->Range(5.2, 5.8), kBoltHead, 1.1};
    case Role::kWasher:
        return WasherDims{prng->Range(16, 24), kShaftEnd + 0.2, prng->Range(3, 6), 0.5};
    case Role::kBracket:
        return BracketDims{kBracketLeg, prng->Range(34, 40), 28, 5, 4, 3.5, 4};
    }
    return PlateDims{};
}

// On the axis of a shaft at x; the part's z points along the shaft, or back along it.
Placement OnShaft(int shaft, double x, double direction = 1) {
    return {{x, (shaft - 0.5) * kAxisDistance, kAxisHeight}, {direction, 0, 0}, {0, 1, 0}};
}

// Turned half round about the vertical.
Placement Mirrored(const Placement& at) {
    return Place(Placement{{}, {0, 0, 1}, {-1, 0, 0}}, at);
}

Placement GearPlace(int slot) {
    constexpr double first = -42;
    constexpr double second = 38;
    Placement at = OnShaft(slot % 2, slot < 2 ? first : second);
    // The second gear has a gap where the first has a tooth.
    if (slot == 1) { at.x = {0, -std::cos(std::numbers::pi / kTeeth), std::sin(std::numbers::pi / kTeeth)}; }
    return at;
}

Placement BoltPlace(int slot) {
    const Placement at = OnShaft(0, kFlangeAt);
    const double angle = 2 * std::numbers::pi * (slot + 0.5) / kFlangeBolts;
    Vec3 head{kBoltRing * std::cos(angle), kBoltRing * std::sin(angle),
              kFlangeSeat + kFlangeThickness + kBoltHead};
    return Place(at, Placement{head, {0, 0, -1}, {1, 0, 0}});
}

Placement PlaceOf(Role role, int slot) {
    switch (role) {
    case Role::kPlate:
        return {};
    case Role::kPedestal: {
        const Placement at{{kPedestalInside, 0, kAxisHeight}, {1, 0, 0}, {0, 1, 0}};
        return slot == 0 ? at : Mirrored(at);
    }
    case Role::kShaft:
        return OnShaft(slot, kShaftStart);
    case Role::kGear:
        return GearPlace(slot);
    case Role::kFlange:
        return OnShaft(0, kFlangeAt);
    case Role::kBolt:
        return BoltPlace(slot);
    case Role::kWasher:
        return OnShaft(1, kShaftStart + 258);
    case Role::kBracket: {
        const Placement at{
            {kBracketLeg / 2 - kPedestalInside + 0.2, 0, kPlateThickness}, {0, 0, 1}, {1, 0, 0}};
        return slot == 0 ? at : Mirrored(at);
    }
    }
    return {};
}

std::string Numbered(const char* text, int number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "-%04d", number);
    return text + std::string(digits);
}

class MachineBuilder {
public:
    explicit MachineBuilder(const MachineOptions& o) : o_(o) {}

    Machine Build() {
        MakeParts();
        const int units = CountUnits();
        const int leaves = o_.depth == 0 ? 1 : (units + 3) / 4; // four units to a file
        branching_ = 1;
        while (o_.depth > 1 && Power(branching_, o_.depth) < leaves) { ++branching_; }
        if (o_.depth == 1) { branching_ = leaves; }
        AddNode("MACHINE", "Sample machine", "");
        FillGroup(0, o_.depth, leaves, 0, units);
        return std::move(machine_);
    }

private:
    struct Size {
        double x;
        double y;
    };

    static long long Power(long long base, int exponent) {
        long long product = 1;
        for (int i = 0; i < exponent && product < (1LL << 40); ++i) { product *= base; }
        return product;
    }

    void MakeParts() {
        Prng prng(o_.seed);
        for (int i = 0; i < o_.parts; ++i) {
            const Role role = kCycle[static_cast<std::size_t>(i) % kCycle.size()];
            const RoleText& text = kTexts[static_cast<std::size_t>(role)];
            const std::string id = Numbered(text.id, i + 1);
            machine_.parts.push_back({id, text.name + std::string(" ") + std::to_string(i + 1), LowerCase(id),
                                      DimsOf(role, &prng), text.colour});
            partsOf_[static_cast<std::size_t>(role)].push_back(static_cast<std::size_t>(i));
        }
    }

    static int SlotsOf(std::size_t role) {
        return static_cast<int>(std::count(kCycle.begin(), kCycle.end(), static_cast<Role>(role)));
    }
    long long UsesOf(std::size_t role) const {
        return static_cast<long long>(partsOf_[role].size()) * o_.uses;
    }
    int CountUnits() const {
        long long units = 1;
        for (std::size_t role = 0; role < kRoleCount; ++role) {
            const long long slots = SlotsOf(role);
            units = std::max(units, (UsesOf(role) + slots - 1) / slots);
        }
        return static_cast<int>(units);
    }

    std::size_t AddNode(std::string id, std::string name, std::string stem) {
        machine_.nodes.push_back({std::move(id), std::move(name), std::move(stem), {}});
        return machine_.nodes.size() - 1;
    }

    // Units are filled one after the other, so that where uses don't come out even only the last ones are
    // incomplete. The uses of one part are next to each other.
    void AddUnit(std::size_t node, int unit) {
        for (std::size_t role = 0; role < kRoleCount; ++role) {
            const long long slots = SlotsOf(role);
            const long long uses = UsesOf(role);
            const long long first = std::min(slots * unit, uses);
            const long long end = std::min(slots * (unit + 1), uses);
            for (long long k = first; k < end; ++k) {
                const std::size_t part = partsOf_[role][static_cast<std::size_t>(k / o_.uses)];
                const Placement at = PlaceOf(static_cast<Role>(role), static_cast<int>(k - first));
                machine_.nodes[node].uses.push_back({true, part, at});
            }
        }
    }

    // Children stand in rows that make the whole as square as may be, every other one turned half round.
    static int Columns(int children, Size cell) {
        const int columns = static_cast<int>(std::lround(std::sqrt(children * cell.y / cell.x)));
        return std::clamp(columns, 1, children);
    }
    static int Rows(int children, int columns) { return (children + columns - 1) / columns; }
    static Placement InGrid(int child, int children, Size cell) {
        const int columns = Columns(children, cell);
        const double x = (child % columns - (columns - 1) / 2.0) * cell.x;
        const double y = (child / columns - (Rows(children, columns) - 1) / 2.0) * cell.y;
        return {{x, y, 0}, {0, 0, 1}, {child % 2 == 0 ? 1.0 : -1.0, 0, 0}};
    }
    static Size GridSize(int children, Size cell) {
        const int columns = Columns(children, cell);
        return {columns * cell.x, Rows(children, columns) * cell.y};
    }

    // A group of the level 0 holds units, of which `units` in all are numbered from `firstUnit`; one above it
    // holds groups with `leaves` groups of the level 0 in all.
    Size FillGroup(std::size_t node, int level, int leaves, int firstUnit, int units) {
        const int children = level == 0 ? units : std::min(leaves, branching_);
        Size cell{kUnitX, kUnitY};
        std::vector<std::size_t> numbers;
        for (int i = 0; i < children; ++i) {
            std::size_t child = 0;
            if (level == 0) {
                const int unit = firstUnit + i;
                child = AddNode(Numbered("UNIT", unit + 1), "Gear unit " + std::to_string(unit + 1), "");
                AddUnit(child, unit);
            } else {
                const std::string id = Numbered("GROUP", ++groups_);
                child = AddNode(id, "Group " + std::to_string(groups_), LowerCase(id));
                const int firstLeaf = Share(leaves, i, children);
                const int endLeaf = Share(leaves, i + 1, children);
                const int first = Share(units, firstLeaf, leaves);
                const int end = Share(units, endLeaf, leaves);
                const Size size =
                    FillGroup(child, level - 1, endLeaf - firstLeaf, firstUnit + first, end - first);
                cell = {std::max(cell.x, size.x), std::max(cell.y, size.y)};
            }
            numbers.push_back(child);
        }
        for (int i = 0; i < children; ++i) {
            machine_.nodes[node].uses.push_back(
                {false, numbers[static_cast<std::size_t>(i)], InGrid(i, children, cell)});
        }
        return GridSize(children, cell);
    }
    static int Share(int total, int part, int parts) {
        return static_cast<int>(static_cast<long long>(total) * part / parts);
    }

    const MachineOptions& o_;
    Machine machine_;
    std::array<std::vector<std::size_t>, kRoleCount> partsOf_;
    int branching_ = 1;
    int groups_ = 0;
};

} // namespace

std::string FileStem(const Machine::Node& node) {
    return node.stem.empty() ? LowerCase(node.id) : node.stem;
}

bool IsMachineStem(const std::string& stem) {
    const std::size_t dash = stem.rfind('-');
    if (dash == stem.npos || stem.find_first_not_of("0123456789", dash + 1) != stem.npos) { return false; }
    const std::string word = stem.substr(0, dash);
    return word == "group" || word == "unit" ||
           std::any_of(kTexts.begin(), kTexts.end(),
                       [&](const RoleText& t) { return word == LowerCase(t.id); });
}

Machine MakeMachine(const MachineOptions& options) {
    return MachineBuilder(options).Build();
}

} // namespace tarnwick::make
