#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarnwick::tools {

struct LoadOptions {
    std::string path;
    std::optional<std::string> product; // a product may well have an empty name
    std::string jsonFile; // where the scene report goes, "-" for standard output; empty for none
    bool arrays = false;
    std::optional<std::int32_t> depth; // of the Depth slider after the load
    bool noThreads = false;
    int repeat = 1;
    bool index = false;    // print the entity index instead
    bool entities = false; // with the whole entity table
    bool check = false;    // check instead; `jsonFile` is for its report
    bool verbose = false;  // the check tells what the load says and counts keywords
};

// Reads the command line. Returns false when the program is to end at once, with *status as its exit status:
// 0 after --help and --version, 2 after a wrong command line, which it has explained on standard error.
bool ReadOptions(int argc, char** argv, LoadOptions* options, int* status);

} // namespace tarnwick::tools
