#pragma once

#include "tools/make/shapes/shapes.h"
#include "write/p21_writer.h"
#include "write/product.h"

#include <optional>

namespace CLI {
class App;
}

// The kind `part`: one file with the tessellated solids of one product.
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

// --kind, --normals, --shared-coordinates and --pnindex.
void AddStyleOptions(CLI::App* app, PartStyle* style);

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

// Writes a whole file. Memory follows the largest solid, not the part.
PartCounts WritePart(const PartPlan& plan, const PartStyle& style, P21Writer* out);

struct PartOptions {
    std::string out;
    std::size_t triangles = 20000;
    std::size_t faces = 0;
    std::size_t solids = 0;     // 0: one for each 20,000 triangles
    int colours = 0;            // 0: one for each solid, up to 8
    std::optional<Shape> shape; // none: all of them in turn
    std::size_t machine = 0; // triangles for each part of a machine that is written as one part; 0: a sheet
    std::string name;        // of the product; empty: that of the shape
    bool compress = false;
    PartStyle style;
};

// Empty when the options go together, else what is wrong with them.
std::string CheckPartOptions(const PartOptions& options);

// Solids in rows on a sheet, one to a cell of kSheetCell and a little between; or a machine, with a solid for
// each use of a part.
PartPlan PlanPart(const PartOptions& options);

// Exit status of the program: 0, or 1 with a line on standard error.
int RunPart(const PartOptions& options);
CLI::App* AddPartCommand(CLI::App* app, PartOptions* options);

} // namespace tarnwick::make
