#pragma once

#include "tools/make/machine.h"
#include "tools/make/part.h"
#include "write/p21_writer.h"

namespace CLI {
class App;
}

// The kind `assembly`: a top file, sub-assembly files and part files that refer to each other by name.
namespace tarnwick::make {

struct AssemblyOptions {
    std::string out; // the top file; all others go beside it
    MachineOptions machine;
    std::size_t trianglesPerPart = 2000;
    PartStyle style; // of all parts
    bool compress = false;
    bool oneMissing = false; // the last part's file is referred to, but not written
};

// Writes the file of one node: the node, the nodes below it that have no file of their own, and references to
// the files of all others.
void WriteStructure(const Machine& machine, std::size_t node, P21Writer* out);

std::string CheckAssemblyOptions(const AssemblyOptions& options);
// Exit status of the program: 0, or 1 with a line on standard error.
int RunAssembly(const AssemblyOptions& options);
CLI::App* AddAssemblyCommand(CLI::App* app, AssemblyOptions* options);

} // namespace tarnwick::make
