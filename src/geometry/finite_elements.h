#pragma once

#include "geometry/part_reader.h"

#include <cstdint>
#include <vector>

namespace tarnwick {

// One node of a finite element model, with what its elements say about it.
struct FeNode {
    std::int32_t id; // entity number of the NODE line
    double x, y, z;
    double value;                  // section value; -1 until an element corner sets it
    std::int32_t used;             // 1 once an element names the node
    std::int32_t red, green, blue; // 0 to 255
};

// From the entity number of a NODE or section line to its index in `nodes` or `sectionValues`.
using FeIndexMap = LookUp<std::int32_t, std::int32_t>;

struct FeQuad {
    std::int32_t nodes[4];
};

// Reads a file of schema 209: nodes, sections with one value each, and shell elements, of which those with
// four nodes make one mesh with a colour for each node. The record lives for one call.
struct FiniteElementReader {
    FiniteElementReader(StepModel& model, Arena& arena, PartScratch& scratch)
        : part(model, nullptr, arena, scratch) {}

    PartReader part; // its product, box, triangle total and times
    std::vector<FeNode> nodes;
    std::vector<FeQuad> quads;
    std::vector<double> sectionValues;
    FeIndexMap nodeMap;
    FeIndexMap sectionMap;
    double minValue = -1.0;
    double maxValue = 0.0;
    ResultMesh* resultMesh = nullptr; // in the reader's arena; null when memory runs out
};

// Reads the model into `resultMesh`. Reading stops at the first bad line, and what was read is kept; a file
// with a line that leads nowhere is given up, with a line on the console and no mesh. Returns 0.
int ReadFiniteElements(FiniteElementReader& reader);

// The colour of a node from its value: black, green to blue up to 7.8, to white up to 8, to red above.
void ColourNode(FeNode* node, double minValue, double maxValue);

} // namespace tarnwick
