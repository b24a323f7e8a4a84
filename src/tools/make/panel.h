#pragma once

#include "write/placement.h"

#include <cstdint>

namespace tarnwick::make {

// A barrel-shaped panel with a bulge and two beads across it. Its thickness is colour-coded by viewers with
// fixed limits, and reaches below, between and above them.
class Panel {
public:
    // At least one quad.
    Panel(int quads, std::uint64_t seed);

    int Columns() const { return columns_; } // quads along the axis
    int Rows() const { return rows_; }       // quads around it; the last row may be incomplete
    Vec3 Point(int column, int row) const;
    // Hundredths of a millimetre.
    int Thickness(int column, int row) const;

private:
    double Bulge(double along, double around) const;
    double Beads(double along) const;

    int columns_ = 1;
    int rows_ = 1;
    double bulgeAlong_;
    double bulgeAround_;
    double bulgeHeight_;
};

} // namespace tarnwick::make
