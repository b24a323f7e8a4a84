#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace tarnwick {

// The eight characters at `p`, the first in the lowest byte on every machine.
inline std::uint64_t LoadEight(const char* p) {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    if constexpr (std::endian::native == std::endian::big) { word = __builtin_bswap64(word); }
    return word;
}

} // namespace tarnwick
