#pragma once

#include <QRect>

namespace tarnwick {

// Dialog units to pixels, for a base of 6 by 13 pixels with any font: a unit is a quarter of the base across
// and an eighth of it down, rounded.
constexpr int AcrossPixels(int units) {
    return (units * 6 + 2) / 4;
}
constexpr int DownPixels(int units) {
    return (units * 13 + 4) / 8;
}

constexpr QSize kDialogSize(AcrossPixels(612), DownPixels(479));

constexpr QRect PixelRect(int x, int y, int width, int height) {
    return {AcrossPixels(x), DownPixels(y), AcrossPixels(width), DownPixels(height)};
}

} // namespace tarnwick
