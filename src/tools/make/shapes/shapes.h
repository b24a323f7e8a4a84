#pragma once

#include "tools/make/prng.h"
#include "tools/make/shapes/mesh.h"

#include <variant>

// The machine elements that the samples are made of: their dimensions, and their solids at any fineness.
namespace tarnwick::make {

// All lengths in millimetres. A shape stands on z = 0 around the z axis (a plate and a bracket: centred in x
// and y).

// A plate with a round hole in each of columns x rows cells; a hole radius of 0 gives a plain block.
struct PlateDims {
    int columns = 3;
    int rows = 2;
    double cellX = 30;
    double cellY = 30;
    double thickness = 8;
    double hole = 8;      // radius; holes and other holes take turns like the fields of a chessboard
    double otherHole = 5; // radius
};
struct GearDims {
    int teeth = 24;
    double module = 4; // pitch radius is module * teeth / 2
    double width = 18;
    double bore = 12;
    bool web = true; // rim and hub with a thinner disc between them
};
// Head down, shank up.
struct BoltDims {
    double shank = 10;  // radius
    double length = 60; // from under the head to the tip
    double head = 19;   // radius to the corners of the hexagon
    double headHeight = 13;
    double pitch = 4;
};
// A disc with a ring of holes, a neck above and a raised seat below.
struct FlangeDims {
    double outer = 50;
    double thickness = 12;
    double neck = 24;
    double bore = 14;
    double neckHeight = 26;
    int holes = 6;
    double hole = 5.5;
    double holeRing = 38;
};
// A turned part given by its steps from the lower end upward.
struct ShaftDims {
    struct Step {
        double radius;
        double length;
    };
    std::vector<Step> steps;
    double chamfer = 1.5;
};
struct WasherDims {
    double outer = 24;
    double bore = 10.5;
    double thickness = 3;
    double chamfer = 0.6;
};
// An angle with a row of holes in both legs.
struct BracketDims {
    double legX = 60;
    double legZ = 70;
    double cellY = 34;
    double thickness = 8;
    double fillet = 8;
    double hole = 6;
    int holes = 2;
};

using ShapeDims = std::variant<PlateDims, GearDims, BoltDims, FlangeDims, ShaftDims, WasherDims, BracketDims>;

enum class Shape { kPlate, kGear, kBolt, kFlange, kShaft, kWasher, kBracket };
inline constexpr int kShapeCount = 7;

inline constexpr double kSheetCell = 120;

// A shape of that sort no larger than `kSheetCell` in x and y when lying as SheetPlacement says, with more
// teeth, holes or steps the more triangles there are to spend.
ShapeDims RandomDims(Shape shape, std::size_t triangles, Prng* prng);
// Shafts lie, all others stand.
Placement SheetPlacement(const ShapeDims& dims);

// The fewest triangles of that shape.
std::size_t FewestTriangles(const ShapeDims& dims);

// The solid with as near to that many triangles as its subdivision allows, but never fewer than
// FewestTriangles.
Solid MakeSolid(const ShapeDims& dims, std::size_t triangles);

} // namespace tarnwick::make
