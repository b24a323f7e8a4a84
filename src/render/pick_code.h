#pragma once

#include <cstdint>

namespace tarnwick {

// A 24-bit index as a colour that the pick pass paints and reads back: red is bits 16 to 23, green 8 to 15,
// blue 0 to 7. White is the background, so index 16777215 counts as nothing.
struct PickColour {
    float red, green, blue;
};

inline PickColour PickColourOf(std::uint32_t code) {
    const auto part = [code](int shift) { return static_cast<float>((code >> shift) & 255) / 255.0f; };
    return {part(16), part(8), part(0)};
}

// The index that the four bytes of a pixel encode, or -1 for the background.
inline std::int32_t PickedIndex(const unsigned char rgba[4]) {
    if (rgba[0] == 255 && rgba[1] == 255 && rgba[2] == 255 && rgba[3] == 255) { return -1; }
    return rgba[0] * 65536 + rgba[1] * 256 + rgba[2];
}

} // namespace tarnwick
