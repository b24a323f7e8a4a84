#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

// The path up to and including its last separator: "/", and on Windows "\\" too. The first character isn't
// looked at; empty without one.
std::string FolderOf(std::string_view path);

} // namespace tarnwick
