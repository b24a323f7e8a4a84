#pragma once

#include "faults/program_run.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tarnwick::faults {

struct Programs {
    std::string load;      // tarnwick-load
    std::string make;      // tarnwick-make
    std::string loadList;  // load_list.cpp
    std::string arenaLoad; // tarnwick-load whose arenas refuse blocks, too
    std::string arenaList; // load_list.cpp likewise
    std::string snapshot;  // snapshot_program.cpp; empty without the viewer
};

// The programs over one input.
struct Input {
    std::string name;
    std::vector<Case> cases;
};

// Writes small files of every kind into `folder`, and returns what is to be run over each.
std::vector<Input> MakeInputs(const Programs& programs, const std::filesystem::path& folder);

} // namespace tarnwick::faults
