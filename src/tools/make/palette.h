#pragma once

#include "write/p21_style.h"

namespace tarnwick::make {

// Any number of colours that can be told apart: paints and metals first, then hues.
Colour PaletteColour(int number);

} // namespace tarnwick::make
