#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tarnwick {

// The path up to and including its last separator: "/", and on Windows "\\" too. Empty without one, or where
// that is the first character.
std::string FolderOf(std::string_view path);

// What follows the last separator: all of the path without one.
std::string NameOf(std::string_view path);

// A path of the standard library, and back to text with "/" between folders. The library's own conversion
// takes UTF-8 for another encoding on Windows.
std::filesystem::path PathOf(std::string_view text);
std::string TextOf(const std::filesystem::path& path);

} // namespace tarnwick
