#pragma once

#include "render/window_port.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick::tools {

// The bytes of a PNG file. `pixels`: rows from the bottom up, of `channels` bytes a pixel: 3 for red, green,
// blue; 4 with the alpha, by which the colours are not multiplied. Empty when memory is short.
std::vector<std::uint8_t> PngBytes(const std::vector<std::uint8_t>& pixels, WindowSize size, int channels);

// Undoes the multiplication of red, green and blue by alpha, in place.
void DivideByAlpha(std::vector<std::uint8_t>* rgba);

// Writes the bytes whole or not at all; to standard output for "-". Returns 0, or the errno of the first
// failure.
int WriteBytes(const std::vector<std::uint8_t>& bytes, const std::string& name);

} // namespace tarnwick::tools
