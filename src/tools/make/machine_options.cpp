#include "tools/make/machine_options.h"

#include "tools/make/options.h"

namespace tarnwick::make {

void AddMachineOptions(CLI::App* app, int mostParts, const std::string& depthHelp, MachineOptions* options) {
    AddNumber(app, "--parts", &options->parts, 1, mostParts, "Different parts (default: 18)");
    AddNumber(app, "--uses", &options->uses, 1, 1000000, "Occurrences of each part (default: 4)");
    AddNumber(app, "--depth", &options->depth, 0, 30, depthHelp);
    AddNumber(app, "--seed", &options->seed, 0, 1000000000, "Another machine for each number (default: 1)");
}

std::string CheckMachineOptions(const MachineOptions& options) {
    return AllUses(options) > 20000000 ? "--parts times --uses: at most 20,000,000" : "";
}

void AddTrianglesPerPart(CLI::App* app, std::size_t* triangles) {
    AddNumber(app, "--triangles-per-part", triangles, 12, 100000000,
              "Triangles of each part, about (default: 2000)");
}

} // namespace tarnwick::make
