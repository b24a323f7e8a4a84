#include "tools/make/palette.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarnwick::make {

namespace {

constexpr std::array<Colour, 8> kFirst{{{0.62, 0.65, 0.70},
                                        {0.80, 0.62, 0.28},
                                        {0.24, 0.42, 0.68},
                                        {0.72, 0.24, 0.20},
                                        {0.30, 0.55, 0.36},
                                        {0.86, 0.52, 0.16},
                                        {0.36, 0.38, 0.42},
                                        {0.50, 0.34, 0.62}}};

// Hue in turns, 0 and 1 being red.
Colour FromHue(double hue, double saturation, double value) {
    const auto channel = [&](double shift) {
        const double k = std::fmod(hue + shift, 1.0) * 6;
        return value * (1 - saturation * std::clamp(std::min(k, 4 - k), 0.0, 1.0));
    };
    return {channel(5.0 / 6), channel(3.0 / 6), channel(1.0 / 6)};
}

} // namespace

Colour PaletteColour(int number) {
    if (number < static_cast<int>(kFirst.size())) { return kFirst[static_cast<std::size_t>(number)]; }
    // Steps of the golden ratio never come back to a hue.
    return FromHue(std::fmod(number * 0.6180339887498949, 1.0), 0.45 + 0.1 * (number % 4),
                   0.9 - 0.1 * (number % 3));
}

} // namespace tarnwick::make
