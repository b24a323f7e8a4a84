#pragma once

#include <cstddef>
#include <string>

namespace tarnwick::tools {

// How many triangles of a file the viewer shows by itself, without those that can't be seen. Writes nothing
// to the console. The readers end the program on some files, so call it in a process of its own.
std::size_t ShownTriangles(const std::string& file);

} // namespace tarnwick::tools
