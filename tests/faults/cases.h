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
    std::string prepare;   // tarnwick-prepare
    std::string mesh;      // tarnwick-mesh, which that one starts; empty without it
    std::string open;      // tarnwick-open; empty without the viewer
    std::string picture;   // tarnwick-picture; empty without it
    std::string silentGl;  // a library that takes the place of the graphics library
};

// The programs over one input.
struct Input {
    std::string name;
    std::vector<Case> cases;
};

// Writes small files of every kind into `folder`, and returns what is to be run over each.
std::vector<Input> MakeInputs(const Programs& programs, const std::filesystem::path& folder);

// Those of them that hold a model; a part is the last.
std::vector<std::string> FilesOfAllKinds(const std::filesystem::path& folder);

} // namespace tarnwick::faults
