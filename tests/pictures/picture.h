// Pictures as the tests look at them.
#pragma once

#include "support/run_program.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick::test {

using Pixel = std::array<std::uint8_t, 4>; // red, green, blue, alpha

// Rows from the top down. Empty, of no size, when there is none.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<Pixel> pixels;

    const Pixel& At(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

Picture ReadPicture(const std::string& path);
Picture PictureOfBytes(const std::string& png);

// Runs the built program on the software renderer.
ProgramRun RunPicture(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment = {});

// Two pictures are alike when at most this part of their pixels differs, and a pixel differs when a channel
// does by more than the tolerance. Drivers and processors round differently, edges above all, and where two
// faces lie in one plane either may show; noticed_test.cpp holds what must not get through.
inline constexpr int kColourTolerance = 16; // of 255
inline constexpr double kMostDifferent = 0.0025;

// How many pixels differ by more than `tolerance` in a channel; all of them for pictures of different sizes.
int DifferentPixels(const Picture& a, const Picture& b, int tolerance = kColourTolerance);
bool Alike(const Picture& a, const Picture& b);

} // namespace tarnwick::test
