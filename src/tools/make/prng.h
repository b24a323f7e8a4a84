#pragma once

#include <cstdint>

// A small generator of our own, since the standard library's distributions differ from one build to the next
// and the same options must give the same bytes.
namespace tarnwick::make {

class Prng {
public:
    explicit Prng(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0x632BE59BD9B4E019u) {}

    std::uint64_t Next() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    // 0 to count - 1
    int Below(int count) { return static_cast<int>(Next() % static_cast<std::uint64_t>(count)); }
    // low <= result < high
    double Range(double low, double high) {
        return low + (high - low) * (static_cast<double>(Next() >> 11) * 0x1p-53);
    }

private:
    std::uint64_t state_;
};

} // namespace tarnwick::make
