#pragma once

#include <atomic>
#include <cstddef>
#include <string>

namespace tarnwick::prepare {

// The triangles in a file and in all files that it refers to.
struct ShapeCount {
    std::size_t placed = 0; // each as often as its part is used
    // False where there is more to show, such as exact bodies, or something is missing or can't be read.
    bool isAll = false;
};

// Reads as Prepare does and writes nothing. Gives up where `cancel` becomes true, with isAll false. Any
// thread.
ShapeCount CountShape(const std::string& path, const std::atomic<bool>* cancel);

} // namespace tarnwick::prepare
