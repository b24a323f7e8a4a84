#pragma once

#include "tools/make/machine.h"
#include "tools/make/part_writer.h"

#include <optional>

namespace CLI {
class App;
}

// The kind `part`: one file with the tessellated solids of one product.
namespace tarnwick::make {

// --kind, --normals, --shared-coordinates and --pnindex.
void AddStyleOptions(CLI::App* app, PartStyle* style);

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

// Writes the whole file of one part of a machine, in that part's colour.
void WriteMachinePart(const Machine::Part& part, std::size_t triangles, PartStyle style, P21Writer* out);

// Exit status of the program: 0, or 1 with a line on standard error.
int RunPart(const PartOptions& options);
CLI::App* AddPartCommand(CLI::App* app, PartOptions* options);

} // namespace tarnwick::make
