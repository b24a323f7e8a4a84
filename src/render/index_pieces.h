#pragma once

#include <algorithm>
#include <cstddef>

namespace tarnwick {

// The most indices to draw at once, since the graphics library counts them in 31 bits: both whole triangles
// and whole quads.
inline constexpr std::size_t kMostIndicesAtOnce = std::size_t{3} << 29;

// Calls draw(first, here) for pieces of `count` indices in turn; once for 0 indices.
template <class Draw>
void ForIndexPieces(std::size_t count, Draw draw) {
    std::size_t first = 0;
    do {
        const std::size_t here = std::min(count - first, kMostIndicesAtOnce);
        draw(first, here);
        first += here;
    } while (first < count);
}

} // namespace tarnwick
