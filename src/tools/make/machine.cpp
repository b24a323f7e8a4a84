// Parts in the proportions of the units, their places in a unit, and the grouping of the units.
#include "tools/make/machine.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tarnwick::make {

namespace {

enum class Role { Plate, Pedestal, Shaft, Gear, Flange, Bolt, Washer, Bracket };
constexpr std::size_t roleCount = 8;

// The parts of one unit. Parts are numbered through this list again and again, so that with equal numbers of
// uses all units fill evenly.
constexpr std::array cycle{Role::Plate, Role::Pedestal, Role::Shaft,    Role::Gear,    Role::Flange,
                           Role::Bolt,  Role::Washer,   Role::Bolt,     Role::Bracket, Role::Bolt,
                           Role::Gear,  Role::Bolt,     Role::Pedestal, Role::Shaft,   Role::Bolt,
                           Role::Gear,  Role::Bracket,  Role::Bolt};

struct RoleText {
    const char *id, *name;
    int colour;
};
constexpr std::array<RoleText, roleCount> texts{{{"PLATE", "Base plate", 6},
                                                 {"PEDESTAL", "Bearing plate", 2},
                                                 {"SHAFT", "Shaft", 0},
                                                 {"GEAR", "Spur gear", 1},
                                                 {"FLANGE", "Coupling flange", 3},
                                                 {"BOLT", "Hexagon bolt", 0},
                                                 {"WASHER", "Washer", 5},
                                                 {"BRACKET", "Bracket", 4}}};

// Measures of a unit. It is centred on the origin in x and y and stands on z = 0; the shafts run along x.
constexpr double plateThickness = 12, axisHeight = 67, axisDistance = 80;
constexpr double pedestalInside = 104, pedestalThickness = 16;
constexpr double shaftStart = -136, journal = 12, shaftEnd = 9;
constexpr double flangeAt = 124, flangeThickness = 10, flangeSeat = 0.14 * flangeThickness, boltRing = 27;
constexpr double boltHead = 3.8, bracketLeg = 28;
constexpr int teeth = 24, flangeBolts = 6;
constexpr double unitX = 330, unitY = 230; // with the space around it

// Parts of one role have the same fitting dimensions and differ in others.
ShapeDims DimsOf(Role role, Prng* prng) {
    switch (role) {
    case Role::Plate: {
        double hole = prng->Range(6, 10);
        return PlateDims{3, 2, 100, 100, plateThickness, hole, hole};
    }
    case Role::Pedestal: {
        double hole = journal + 0.4;
        return PlateDims{2,    1,   axisDistance, 2 * (axisHeight - plateThickness), pedestalThickness,
                         hole, hole};
    }
    case Role::Shaft: {
        double collar = prng->Range(14, 18);
        return ShaftDims{{{shaftEnd, 16}, {journal, 60}, {collar, 8}, {journal, 174}, {shaftEnd, 28}}, 1};
    }
    case Role::Gear:
        return GearDims{teeth, axisDistance / teeth, prng->Range(15, 22), journal + 0.2, prng->Below(3) != 0};
    case Role::Flange:
        return FlangeDims{36,  flangeThickness, 16, shaftEnd + 0.2, prng->Range(10, 16), flangeBolts,
                          3.3, boltRing};
    case Role::Bolt:
        return BoltDims{3, 14, prng->Range(5.2, 5.8), boltHead, 1.1};
    case Role::Washer:
        return WasherDims{prng->Range(16, 24), shaftEnd + 0.2, prng->Range(3, 6), 0.5};
    case Role::Bracket:
        return BracketDims{bracketLeg, prng->Range(34, 40), 28, 5, 4, 3.5, 4};
    }
    return PlateDims{};
}

// On the axis of a shaft at x; the part's z points along the shaft, or back along it.
Placement OnShaft(int shaft, double x, double direction = 1) {
    return {{x, (shaft - 0.5) * axisDistance, axisHeight}, {direction, 0, 0}, {0, 1, 0}};
}

Placement Mirrored(Placement at) { // turned half round about the vertical
    return Place(Placement{{}, {0, 0, 1}, {-1, 0, 0}}, at);
}

Placement GearPlace(int slot) {
    constexpr double first = -42, second = 38;
    Placement at = OnShaft(slot % 2, slot < 2 ? first : second);
    // The second gear has a gap where the first has a tooth.
    if (slot == 1) at.x = {0, -std::cos(pi / teeth), std::sin(pi / teeth)};
    return at;
}

Placement BoltPlace(int slot) {
    Placement at = OnShaft(0, flangeAt);
    double angle = 2 * pi * (slot + 0.5) / flangeBolts;
    Vec3 head{boltRing * std::cos(angle), boltRing * std::sin(angle),
              flangeSeat + flangeThickness + boltHead};
    return Place(at, Placement{head, {0, 0, -1}, {1, 0, 0}});
}

Placement PlaceOf(Role role, int slot) {
    switch (role) {
    case Role::Plate:
        return {};
    case Role::Pedestal: {
        Placement at{{pedestalInside, 0, axisHeight}, {1, 0, 0}, {0, 1, 0}};
        return slot == 0 ? at : Mirrored(at);
    }
    case Role::Shaft:
        return OnShaft(slot, shaftStart);
    case Role::Gear:
        return GearPlace(slot);
    case Role::Flange:
        return OnShaft(0, flangeAt);
    case Role::Bolt:
        return BoltPlace(slot);
    case Role::Washer:
        return OnShaft(1, shaftStart + 258);
    case Role::Bracket: {
        Placement at{{bracketLeg / 2 - pedestalInside + 0.2, 0, plateThickness}, {0, 0, 1}, {1, 0, 0}};
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

std::string Lower(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

class MachineBuilder {
public:
    explicit MachineBuilder(const MachineOptions& o) : o_(o) {}

    Machine Build() {
        MakeParts();
        int units = CountUnits();
        int leaves = o_.depth == 0 ? 1 : (units + 3) / 4; // four units to a file
        branching_ = 1;
        while (o_.depth > 1 && Power(branching_, o_.depth) < leaves) ++branching_;
        if (o_.depth == 1) branching_ = leaves;
        AddNode("MACHINE", "Sample machine", "");
        FillGroup(0, o_.depth, leaves, 0, units);
        return std::move(machine_);
    }

private:
    struct Size {
        double x, y;
    };

    static long long Power(long long base, int exponent) {
        long long product = 1;
        for (int i = 0; i < exponent && product < (1LL << 40); ++i) product *= base;
        return product;
    }

    void MakeParts() {
        Prng prng(o_.seed);
        for (int i = 0; i < o_.parts; ++i) {
            Role role = cycle[static_cast<std::size_t>(i) % cycle.size()];
            const RoleText& text = texts[static_cast<std::size_t>(role)];
            std::string id = Numbered(text.id, i + 1);
            machine_.parts.push_back({id, text.name + std::string(" ") + std::to_string(i + 1), Lower(id),
                                      DimsOf(role, &prng), text.colour});
            partsOf_[static_cast<std::size_t>(role)].push_back(i);
        }
    }

    static int SlotsOf(std::size_t role) {
        return static_cast<int>(std::count(cycle.begin(), cycle.end(), static_cast<Role>(role)));
    }
    long long UsesOf(std::size_t role) const {
        return static_cast<long long>(partsOf_[role].size()) * o_.uses;
    }
    int CountUnits() const {
        long long units = 1;
        for (std::size_t role = 0; role < roleCount; ++role) {
            long long slots = SlotsOf(role);
            units = std::max(units, (UsesOf(role) + slots - 1) / slots);
        }
        return static_cast<int>(units);
    }

    int AddNode(std::string id, std::string name, std::string stem) {
        machine_.nodes.push_back({std::move(id), std::move(name), std::move(stem), {}});
        return static_cast<int>(machine_.nodes.size()) - 1;
    }
    Machine::Node& Node(int number) { return machine_.nodes[static_cast<std::size_t>(number)]; }

    // Units are filled one after the other, so that where uses don't come out even only the last ones are
    // incomplete. The uses of one part are next to each other.
    void AddUnit(int node, int unit) {
        for (std::size_t role = 0; role < roleCount; ++role) {
            long long slots = SlotsOf(role), uses = UsesOf(role);
            long long first = std::min(slots * unit, uses), end = std::min(slots * (unit + 1), uses);
            for (long long k = first; k < end; ++k) {
                int part = partsOf_[role][static_cast<std::size_t>(k / o_.uses)];
                Placement at = PlaceOf(static_cast<Role>(role), static_cast<int>(k - first));
                Node(node).uses.push_back({true, part, at});
            }
        }
    }

    // Children stand in rows that make the whole as square as may be, every other one turned half round.
    static int Columns(int children, Size cell) {
        int columns = static_cast<int>(std::lround(std::sqrt(children * cell.y / cell.x)));
        return std::clamp(columns, 1, children);
    }
    static int Rows(int children, int columns) { return (children + columns - 1) / columns; }
    static Placement InGrid(int child, int children, Size cell) {
        int columns = Columns(children, cell);
        double x = (child % columns - (columns - 1) / 2.0) * cell.x;
        double y = (child / columns - (Rows(children, columns) - 1) / 2.0) * cell.y;
        return {{x, y, 0}, {0, 0, 1}, {child % 2 == 0 ? 1.0 : -1.0, 0, 0}};
    }
    static Size GridSize(int children, Size cell) {
        int columns = Columns(children, cell);
        return {columns * cell.x, Rows(children, columns) * cell.y};
    }

    // A group of the level 0 holds units, of which `units` in all are numbered from `firstUnit`; one above it
    // holds groups with `leaves` groups of the level 0 in all.
    Size FillGroup(int node, int level, int leaves, int firstUnit, int units) {
        int children = level == 0 ? units : std::min(leaves, branching_);
        Size cell{unitX, unitY};
        std::vector<int> numbers;
        for (int i = 0; i < children; ++i) {
            int child;
            if (level == 0) {
                int unit = firstUnit + i;
                child = AddNode(Numbered("UNIT", unit + 1), "Gear unit " + std::to_string(unit + 1), "");
                AddUnit(child, unit);
            } else {
                std::string id = Numbered("GROUP", ++groups_);
                child = AddNode(id, "Group " + std::to_string(groups_), Lower(id));
                int firstLeaf = Share(leaves, i, children), endLeaf = Share(leaves, i + 1, children);
                int first = Share(units, firstLeaf, leaves), end = Share(units, endLeaf, leaves);
                Size size = FillGroup(child, level - 1, endLeaf - firstLeaf, firstUnit + first, end - first);
                cell = {std::max(cell.x, size.x), std::max(cell.y, size.y)};
            }
            numbers.push_back(child);
        }
        for (int i = 0; i < children; ++i)
            Node(node).uses.push_back(
                {false, numbers[static_cast<std::size_t>(i)], InGrid(i, children, cell)});
        return GridSize(children, cell);
    }
    static int Share(int total, int part, int parts) {
        return static_cast<int>(static_cast<long long>(total) * part / parts);
    }

    const MachineOptions& o_;
    Machine machine_;
    std::array<std::vector<int>, roleCount> partsOf_;
    int branching_ = 1, groups_ = 0;
};

} // namespace

std::string FileStem(const Machine::Node& node) {
    return node.stem.empty() ? Lower(node.id) : node.stem;
}

bool IsMachineStem(const std::string& stem) {
    std::size_t dash = stem.rfind('-');
    if (dash == stem.npos || stem.find_first_not_of("0123456789", dash + 1) != stem.npos) return false;
    std::string word = stem.substr(0, dash);
    return word == "group" || word == "unit" ||
           std::any_of(texts.begin(), texts.end(), [&](const RoleText& t) { return word == Lower(t.id); });
}

Machine MakeMachine(const MachineOptions& options) {
    return MachineBuilder(options).Build();
}

} // namespace tarnwick::make
