#pragma once

#include "tools/make/shapes/shapes.h"
#include "write/p21_writer.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick::make {

enum class FaceKind { kFaces, kStrips, kFans, kSets };
enum class NormalKind { kNone, kOne, kAll };

// How the solids of a part are written.
struct PartStyle {
    FaceKind kind = FaceKind::kFaces;
    NormalKind normals = NormalKind::kAll;
    int colours = 1;
    int firstColour = 0; // of the palette
    bool transparent = false;
    bool material = false;
    bool sharedCoordinates = false;
    bool pnindex = false;
    std::uint64_t seed = 1;
};

// What a part consists of.
struct PartPlan {
    struct Item {
        ShapeDims dims;
        Placement placement;
        std::size_t triangles = 0; // 0: its share of those of all
        int colour = -1;           // of the palette; -1: the colours of the style in turn
    };
    std::string id;
    std::string name;
    std::vector<Item> items;   // one solid each
    std::size_t triangles = 0; // of all together
    std::size_t faces = 0;     // of all together; 0 leaves each shape the faces it has
};

struct PartCounts {
    std::size_t triangles = 0;
    std::size_t faces = 0;
    std::size_t solids = 0;
};

// Writes a whole file with the tessellated solids of one product. Memory follows the largest solid, not the
// part.
PartCounts WritePart(const PartPlan& plan, const PartStyle& style, P21Writer* out);

} // namespace tarnwick::make
