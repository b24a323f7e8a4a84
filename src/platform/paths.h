#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

// The path up to and including its last separator: "/", and on Windows "\\" too. The first character isn't
// looked at; empty without one.
std::string FolderOf(std::string_view path);

// What follows the last separator: all of the path without one.
std::string NameOf(std::string_view path);

} // namespace tarnwick
