#pragma once

#include <string>

// Where things lie on this machine.
namespace tarnwick::tools {

// Where the outcome of a file goes: a folder of its own in the user's cache, named by the hash of the file's
// real path.
std::string PreparedFolder(const std::string& file);

// The path of a program of ours: beside this one, or its bare name, for PATH.
std::string OwnProgram(const std::string& name);

// Removes what this process has begun to write there and not finished. Files that others write stay.
void RemoveUnfinished(const std::string& folder);

} // namespace tarnwick::tools
