#include "tools/make/shapes/shapes.h"

#include <algorithm>

namespace tarnwick::make {

namespace {

int MoreWith(std::size_t triangles, std::size_t each, int least, int most) {
    const std::size_t more = std::min<std::size_t>(triangles / each, 1000);
    return std::clamp(least + static_cast<int>(more), least, most);
}

PlateDims RandomPlate(std::size_t triangles, Prng* prng) {
    PlateDims d;
    d.columns = MoreWith(triangles, 2500, 2 + prng->Below(2), 6);
    d.rows = std::max(1, d.columns - 1 - prng->Below(2));
    d.cellX = 104.0 / d.columns;
    d.cellY = std::min(d.cellX * 1.1, 104.0 / d.rows);
    d.thickness = prng->Range(6, 14);
    d.hole = d.cellX * prng->Range(0.26, 0.36);
    d.otherHole = d.hole * prng->Range(0.5, 0.8);
    return d;
}

GearDims RandomGear(std::size_t triangles, Prng* prng) {
    GearDims d;
    d.teeth = MoreWith(triangles, 800, 14 + prng->Below(5), 48);
    const double outer = prng->Range(38, 54);
    d.module = outer / (d.teeth / 2.0 + 1);
    d.width = prng->Range(14, 26);
    d.bore = outer * prng->Range(0.14, 0.22);
    d.web = triangles > 1500;
    return d;
}

BoltDims RandomBolt(Prng* prng) {
    BoltDims d;
    d.shank = prng->Range(9, 13);
    d.length = prng->Range(55, 95);
    d.head = d.shank * 1.95;
    d.headHeight = d.shank * 1.3;
    d.pitch = d.shank * 0.36;
    return d;
}

FlangeDims RandomFlange(std::size_t triangles, Prng* prng) {
    FlangeDims d;
    d.outer = prng->Range(42, 54);
    d.holes = MoreWith(triangles, 3000, 5 + prng->Below(2), 12);
    d.holeRing = d.outer * 0.79;
    d.hole = d.outer * std::min(0.11, 0.75 / d.holes);
    d.neck = d.outer * 0.52;
    d.bore = d.outer * prng->Range(0.26, 0.34);
    d.thickness = prng->Range(9, 13);
    d.neckHeight = prng->Range(20, 34);
    return d;
}

ShaftDims RandomShaft(Prng* prng) {
    ShaftDims d;
    const double widest = prng->Range(14, 20);
    const double length = prng->Range(95, 112);
    // Thick in the middle, thinner towards the ends, with a groove for a retaining ring.
    double parts[] = {0.16, 0.03, 0.13, 0.28, 0.05, 0.2, 0.15};
    double radii[] = {0.55, 0.46, 0.55, 0.8, 1.0, 0.72, 0.5};
    for (int i = 0; i < 7; ++i) { d.steps.push_back({widest * radii[i], length * parts[i]}); }
    if (prng->Below(2) == 1) { std::reverse(d.steps.begin(), d.steps.end()); }
    return d;
}

WasherDims RandomWasher(Prng* prng) {
    WasherDims d;
    d.outer = prng->Range(24, 44);
    d.bore = d.outer * prng->Range(0.42, 0.56);
    d.thickness = prng->Range(4, 8);
    d.chamfer = 1;
    return d;
}

BracketDims RandomBracket(std::size_t triangles, Prng* prng) {
    BracketDims d;
    d.holes = MoreWith(triangles, 5000, 2, 4);
    d.cellY = 100.0 / d.holes * prng->Range(0.8, 1);
    d.legX = prng->Range(58, 74);
    d.legZ = prng->Range(58, 84);
    d.thickness = prng->Range(7, 10);
    d.fillet = prng->Range(6, 10);
    d.hole = std::min(d.cellY, 40.0) * prng->Range(0.2, 0.28);
    return d;
}

} // namespace

ShapeDims RandomDims(Shape shape, std::size_t triangles, Prng* prng) {
    switch (shape) {
    case Shape::kPlate:
        return RandomPlate(triangles, prng);
    case Shape::kGear:
        return RandomGear(triangles, prng);
    case Shape::kBolt:
        return RandomBolt(prng);
    case Shape::kFlange:
        return RandomFlange(triangles, prng);
    case Shape::kShaft:
        return RandomShaft(prng);
    case Shape::kWasher:
        return RandomWasher(prng);
    case Shape::kBracket:
        return RandomBracket(triangles, prng);
    }
    return PlateDims{};
}

Placement SheetPlacement(const ShapeDims& dims) {
    const auto* shaft = std::get_if<ShaftDims>(&dims);
    if (shaft == nullptr) { return {}; }
    double length = 0;
    double widest = 0;
    for (const ShaftDims::Step& step : shaft->steps) {
        length += step.length;
        widest = std::max(widest, step.radius);
    }
    return {{-length / 2, 0, widest}, {1, 0, 0}, {0, 0, -1}};
}

} // namespace tarnwick::make
