#pragma once

#include "tools/make/shapes/shapes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The sample assembly, whatever format it is written in: which parts there are, and where they are placed.
namespace tarnwick::make {

struct MachineOptions {
    int parts = 18; // one complete unit
    int uses = 4;   // of each part
    int depth = 1;  // levels of sub-assembly files between the top file and the units
    std::uint64_t seed = 1;
};

// A machine is made of units: a base plate with two bearing plates, shafts, gears, a flange with its bolts,
// and so on, as far as there are parts. Units form groups, and groups form larger groups.
struct Machine {
    struct Part {
        std::string id;
        std::string name;
        std::string stem; // name of its file without folder and extension
        ShapeDims dims;
        int colour = 0; // of the palette
    };
    struct Use {
        bool ofPart = false;    // else of a node
        std::size_t number = 0; // in parts or nodes
        Placement at;
    };
    struct Node {
        std::string id;
        std::string name;
        std::string stem; // empty for a node that its parent's file describes
        std::vector<Use> uses;
    };
    std::vector<Part> parts;
    std::vector<Node> nodes; // 0 is the top; a node comes before those that it uses
};

Machine MakeMachine(const MachineOptions& options);

// The stem of a file that describes the node, or the node and what it is made of.
std::string FileStem(const Machine::Node& node);

// Whether some machine has a part, unit or group whose file has that stem.
bool IsMachineStem(const std::string& stem);

} // namespace tarnwick::make
