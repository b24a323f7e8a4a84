#pragma once

#include "tools/make/prng.h"
#include "write/p21_writer.h"

namespace CLI {
class App;
}

// The kind `fem`: a shell of four-noded finite elements whose thickness varies from corner to corner.
namespace tarnwick::make {

struct FemOptions {
    std::string out;
    int quads = 2000;
    bool compress = false;
    std::uint64_t seed = 1;
};

// A barrel-shaped panel with a bulge and two beads across it. Its thickness is colour-coded by viewers with
// fixed limits, and reaches below, between and above them.
class Panel {
public:
    explicit Panel(const FemOptions& options);

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

void WriteFem(const FemOptions& options, P21Writer* out);

// Exit status of the program: 0, or 1 with a line on standard error.
int RunFem(const FemOptions& options);
CLI::App* AddFemCommand(CLI::App* app, FemOptions* options);

} // namespace tarnwick::make
