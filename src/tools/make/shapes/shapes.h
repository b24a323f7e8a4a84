// The machine elements that the samples are made of: their dimensions, and their solids at any fineness.
#pragma once

#include "tools/make/prng.h"
#include "tools/make/shapes/mesh.h"

#include <variant>

namespace tarnwick::make {

// All lengths in millimetres. A shape stands on z = 0 around the z axis (a plate and a bracket: centred in x
// and y).

// A plate with a round hole in each of columns x rows cells; a hole radius of 0 gives a plain block.
struct PlateDims {
    int columns = 3, rows = 2;
    double cellX = 30, cellY = 30, thickness = 8;
    double hole = 8, otherHole = 5; // radii, in turn like the fields of a chessboard
};
struct GearDims {
    int teeth = 24;
    double module = 4, width = 18, bore = 12; // pitch radius is module * teeth / 2
    bool web = true;                          // rim and hub with a thinner disc between them
};
// Head down, shank up.
struct BoltDims {
    double shank = 10, length = 60;    // radius, length from under the head to the tip
    double head = 19, headHeight = 13; // radius to the corners of the hexagon
    double pitch = 4;
};
// A disc with a ring of holes, a neck above and a raised seat below.
struct FlangeDims {
    double outer = 50, thickness = 12, neck = 24, bore = 14, neckHeight = 26;
    int holes = 6;
    double hole = 5.5, holeRing = 38;
};
// A turned part given by its steps from the lower end upward.
struct ShaftDims {
    struct Step {
        double radius, length;
    };
    std::vector<Step> steps;
    double chamfer = 1.5;
};
struct WasherDims {
    double outer = 24, bore = 10.5, thickness = 3, chamfer = 0.6;
};
// An angle with a row of holes in both legs.
struct BracketDims {
    double legX = 60, legZ = 70, cellY = 34, thickness = 8, fillet = 8, hole = 6;
    int holes = 2;
};

using ShapeDims = std::variant<PlateDims, GearDims, BoltDims, FlangeDims, ShaftDims, WasherDims, BracketDims>;

enum class Shape { Plate, Gear, Bolt, Flange, Shaft, Washer, Bracket };
constexpr int shapeCount = 7;

// A shape of that sort no larger than `sheetCell` in x and y when lying as SheetPlacement says, with more
// teeth, holes or steps the more triangles there are to spend.
ShapeDims RandomDims(Shape shape, std::size_t triangles, Prng* prng);
constexpr double sheetCell = 120;
// Shafts lie, all others stand.
Placement SheetPlacement(const ShapeDims& dims);

// The fewest triangles of that shape.
std::size_t FewestTriangles(const ShapeDims& dims);

// The solid with as near to that many triangles as its subdivision allows, but never fewer than
// FewestTriangles.
Solid MakeSolid(const ShapeDims& dims, std::size_t triangles);

} // namespace tarnwick::make
