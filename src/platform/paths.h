#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tarnwick {

// The path up to and including its last separator: "/", and on Windows "\\" too. The first character isn't
// looked at; empty without one.
std::string FolderOf(std::string_view path);

// What follows the last separator: all of the path without one.
std::string NameOf(std::string_view path);

// A path of the standard library and back, with "/" between folders: its own way from text takes UTF-8 for
// another encoding on Windows.
std::filesystem::path PathOf(std::string_view text);
std::string TextOf(const std::filesystem::path& path);

} // namespace tarnwick
