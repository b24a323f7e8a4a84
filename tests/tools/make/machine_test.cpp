#include "tools/make/machine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace tarnwick::make {
namespace {

std::map<std::size_t, int> UsesOfParts(const Machine& machine) {
    std::map<std::size_t, int> uses;
    for (const Machine::Node& node : machine.nodes)
        for (const Machine::Use& use : node.uses)
            if (use.ofPart) ++uses[use.number];
    return uses;
}

TEST(MakeMachine, DealsEveryPartItsNumberOfUses) {
    for (const MachineOptions o : {MachineOptions{1, 7, 0, 1}, {18, 4, 1, 1}, {40, 9, 3, 2}, {5, 1, 2, 3}}) {
        const std::map<std::size_t, int> uses = UsesOfParts(MakeMachine(o));
        EXPECT_EQ(uses.size(), static_cast<std::size_t>(o.parts));
        for (const auto& [part, count] : uses) EXPECT_EQ(count, o.uses);
    }
}

TEST(MakeMachine, UsesEveryNodeButTheTopOnceAndAfterIt) {
    const Machine machine = MakeMachine({40, 9, 3, 1});
    std::vector<int> uses(machine.nodes.size());
    for (std::size_t n = 0; n < machine.nodes.size(); ++n) {
        for (const Machine::Use& use : machine.nodes[n].uses) {
            if (use.ofPart) continue;
            EXPECT_GT(use.number, n);
            ++uses[use.number];
        }
    }
    EXPECT_EQ(uses[0], 0);
    EXPECT_TRUE(std::all_of(uses.begin() + 1, uses.end(), [](int count) { return count == 1; }));
}

int FileLevelsBelow(const Machine& machine, std::size_t node) {
    int levels = 0;
    for (const Machine::Use& use : machine.nodes[node].uses) {
        if (use.ofPart) continue;
        const bool ownFile = !machine.nodes[use.number].stem.empty();
        levels = std::max(levels, FileLevelsBelow(machine, use.number) + (ownFile ? 1 : 0));
    }
    return levels;
}

TEST(MakeMachine, NestsItsFilesAsDeepAsAsked) {
    for (int depth = 0; depth < 6; ++depth)
        EXPECT_EQ(FileLevelsBelow(MakeMachine({40, 9, depth, 1}), 0), depth);
}

void ForEachPlacedUnit(const Machine& machine, std::size_t node, const Placement& at,
                       std::vector<Vec3>* units) {
    for (const Machine::Use& use : machine.nodes[node].uses) {
        EXPECT_NEAR(Length(use.at.x), 1, 1e-12);
        EXPECT_NEAR(Length(use.at.z), 1, 1e-12);
        EXPECT_NEAR(Dot(use.at.x, use.at.z), 0, 1e-12);
        if (use.ofPart)
            continue;
        else if (machine.nodes[use.number].id.starts_with("UNIT"))
            units->push_back(Place(at, use.at).origin);
        ForEachPlacedUnit(machine, use.number, Place(at, use.at), units);
    }
}

TEST(MakeMachine, UnitsStandApartAndAllPlacementsAreRotations) {
    std::vector<Vec3> units;
    ForEachPlacedUnit(MakeMachine({40, 9, 3, 1}), 0, {}, &units);
    EXPECT_EQ(units.size(), 27u);
    for (std::size_t i = 0; i < units.size(); ++i)
        for (std::size_t k = 0; k < i; ++k)
            EXPECT_TRUE(std::abs(units[i].x - units[k].x) > 300 || std::abs(units[i].y - units[k].y) > 200);
}

} // namespace
} // namespace tarnwick::make
