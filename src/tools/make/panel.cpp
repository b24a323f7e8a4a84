#include "tools/make/panel.h"

#include "tools/make/prng.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarnwick::make {

namespace {

constexpr double kPanelLength = 900;
constexpr double kPanelRadius = 400;
constexpr double kPanelAngle = 160 * std::numbers::pi / 180;

// As many columns as make the quads about square; a number near by that leaves no incomplete row is better.
int ColumnsFor(int quads) {
    const double ideal = std::sqrt(quads * kPanelLength / (kPanelRadius * kPanelAngle));
    const int best = std::max(1, static_cast<int>(ideal + 0.5));
    for (int distance = 0; distance < best / 3; ++distance) {
        for (const int columns : {best - distance, best + distance}) {
            if (quads % columns == 0) { return columns; }
        }
    }
    return std::min(best, quads);
}

double Bell(double x, double width) {
    return std::exp(-(x * x) / (width * width));
}

} // namespace

Panel::Panel(int quads, std::uint64_t seed)
    : columns_(ColumnsFor(quads)), rows_((quads + columns_ - 1) / columns_) {
    Prng prng(seed);
    bulgeAlong_ = prng.Range(0.42, 0.58);
    bulgeAround_ = prng.Range(0.42, 0.58);
    bulgeHeight_ = prng.Range(90, 150);
}

double Panel::Bulge(double along, double around) const {
    return Bell(along - bulgeAlong_, 0.26) * Bell(around - bulgeAround_, 0.3);
}

double Panel::Beads(double along) const {
    return Bell(along - 0.07, 0.03) + Bell(along - 0.93, 0.03);
}

Vec3 Panel::Point(int column, int row) const {
    const double along = static_cast<double>(column) / columns_;
    const double around = static_cast<double>(row) / rows_;
    const double radius = kPanelRadius + bulgeHeight_ * Bulge(along, around) + 22 * Beads(along);
    const double angle = std::numbers::pi / 2 - kPanelAngle / 2 + kPanelAngle * around;
    return {kPanelLength * (along - 0.5), radius * std::cos(angle), radius * std::sin(angle)};
}

int Panel::Thickness(int column, int row) const {
    const double along = static_cast<double>(column) / columns_;
    const double around = static_cast<double>(row) / rows_;
    const double t = std::clamp(Bulge(along, around) + 0.5 * Beads(along), 0.0, 1.0);
    // The limits at 7.8 and 8.0 mm are close together; the middle of the range goes slowly from one to the
    // other.
    double thickness = 5;
    if (t > 0.6) {
        thickness = 8 + 4 * (t - 0.6) / 0.4;
    } else if (t > 0.42) {
        thickness = 7.8 + 0.2 * (t - 0.42) / 0.18;
    } else if (t > 0.04) {
        thickness = 5 + 2.8 * (t - 0.04) / 0.38;
    }
    return static_cast<int>(std::lround(thickness * 100));
}

} // namespace tarnwick::make
