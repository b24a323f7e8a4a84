#pragma once

#include "write/p21_writer.h"

#include <cstdint>
#include <string>

namespace CLI {
class App;
}

// The kind `fem`: a shell of four-noded finite elements whose thickness varies from corner to corner.
namespace tarnwick::make {

struct FemOptions {
    std::string out;
    int quads = 2000;
    bool compress = false;
    std::uint64_t seed = 1;
};

void WriteFem(const FemOptions& options, P21Writer* out);

// Exit status of the program: 0, or 1 with a line on standard error.
int RunFem(const FemOptions& options);
CLI::App* AddFemCommand(CLI::App* app, FemOptions* options);

} // namespace tarnwick::make
