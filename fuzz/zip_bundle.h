#pragma once

#include <string>
#include <string_view>

namespace tarnwick::fuzz {

// Writes an archive whose members are the texts after the lines "@@name" of a bundle; those of "@@=name" are
// stored.
void WriteZip(const std::string& path, std::string_view bundle);

} // namespace tarnwick::fuzz
