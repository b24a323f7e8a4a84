#pragma once

#include "tools/make/machine.h"
#include "write/byte_sink.h"

#include <optional>

namespace CLI {
class App;
}

// The kind `stpj`: a JSON summary of the machine, with a box for each product and a world placement for each
// occurrence.
namespace tarnwick::make {

struct StpjOptions {
    std::string out;
    MachineOptions machine;              // the same as that of an assembly
    std::optional<int> occurrences;      // so many in all, of a machine with as many uses as that takes
    std::size_t trianglesPerPart = 2000; // the boxes are those of the parts with so many
};

struct SummaryCounts {
    int products = 0;
    int occurrences = 0;
    int depth = 0;
};
SummaryCounts WriteSummary(const StpjOptions& options, ByteSink* sink);

std::string CheckStpjOptions(const StpjOptions& options);
// Exit status of the program: 0, or 1 with a line on standard error.
int RunStpj(const StpjOptions& options);
CLI::App* AddStpjCommand(CLI::App* app, StpjOptions* options);

} // namespace tarnwick::make
