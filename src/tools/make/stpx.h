#pragma once

#include "tools/make/document.h"
#include "tools/make/part.h"

#include <optional>

// The kinds `stpx` and `stpa`: STEP XML documents with the part files that they refer to, in a folder or in
// an archive.
namespace tarnwick::make {

struct StpxOptions {
    std::string out;              // the root document, with all other files beside it, or the archive
    MachineOptions machine;       // the same as that of an assembly
    std::optional<int> documents; // none: as many as the assembly has sub-assembly files
    FileRoute route = FileRoute::kDirect;
    std::size_t trianglesPerPart = 2000;
    PartStyle style; // of all parts
    bool noParts = false;
    bool compress = false;        // in a folder
    bool storedDocuments = false; // in an archive: members that are documents aren't deflated
};

std::string CheckStpxOptions(const StpxOptions& options);
std::string CheckStpaOptions(const StpxOptions& options);
// Exit status of the program: 0, or 1 with a line on standard error.
int RunStpx(const StpxOptions& options);
int RunStpa(const StpxOptions& options);
CLI::App* AddStpxCommand(CLI::App* app, StpxOptions* options);
CLI::App* AddStpaCommand(CLI::App* app, StpxOptions* options);

} // namespace tarnwick::make
