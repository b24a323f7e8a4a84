#pragma once

#include "tools/make/machine.h"

#include <cstddef>
#include <string>

namespace CLI {
class App;
}

// The options of every kind that writes the machine.
namespace tarnwick::make {

inline constexpr const char* kGroupLevels = "Levels of groups between the top and the units (default: 1)";

// --parts, --uses, --depth and --seed.
void AddMachineOptions(CLI::App* app, int mostParts, const std::string& depthHelp, MachineOptions* options);
// Empty when the options go together, else what is wrong with them.
std::string CheckMachineOptions(const MachineOptions& options);

void AddTrianglesPerPart(CLI::App* app, std::size_t* triangles);

// Of all parts together.
inline long long AllUses(const MachineOptions& options) {
    return static_cast<long long>(options.parts) * options.uses;
}

} // namespace tarnwick::make
