#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace tarnwick::tools {

struct OpenCommand {
    std::string file;
    bool isPathAsked = false; // instead of the viewer
    // For a program that asks whether the viewer shows at least so many triangles of the file by itself.
    std::optional<std::size_t> shows;
};

// Reads the command line. Returns false when the program is to end at once, with *status as its exit status:
// 0 after --help and --version, 2 after a wrong command line, which it has explained on standard error.
bool ReadOptions(int argc, const char* const* argv, OpenCommand* command, int* status);

} // namespace tarnwick::tools
