#pragma once

#include <cstddef>
#include <string>

namespace tarnwick::tools {

// How many triangles the viewer shows of a file by itself; those that it draws and nobody sees don't count.
// Says nothing about it. The readers end the program for a few kinds of files, so a process of its own does
// this.
std::size_t ShownTriangles(const std::string& file);

} // namespace tarnwick::tools
