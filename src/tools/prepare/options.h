#pragma once

#include "prepare/prepare.h"

#include <string>
#include <vector>

namespace tarnwick::tools {

struct PrepareCommand {
    std::vector<std::string> files;
    std::string jsonFile; // where the report goes, "-" for standard output; empty for none
    prepare::PrepareOptions options;
};

// Reads the command line. Returns false when the program is to end at once, with *status as its exit status:
// 0 after --help and --version, 2 after a wrong command line, which it has explained on standard error.
bool ReadOptions(int argc, char** argv, PrepareCommand* command, int* status);

} // namespace tarnwick::tools
