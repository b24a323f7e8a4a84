#pragma once

#include <string>
#include <string_view>

// Files and folders by their names, which are UTF-8 where the system's own are UTF-16.
namespace tarnwick {

// Whether the system can have a file of that name below a folder.
bool CanNameFile(std::string_view name);

bool IsRegularFile(const std::string& path);

// Whether both exist and are the same file, whatever their names.
bool AreSameFile(const std::string& a, const std::string& b);

// The absolute path; the path as it is where the system can't tell.
std::string AbsolutePath(const std::string& path);

// One path for all names of a file: absolute, with links followed as far as there are files; the path as it
// is where the system can't tell.
std::string RealPath(const std::string& path);

// Makes the folder and those above it that aren't there; false, with *why in words, when that fails.
bool MakeFolders(const std::string& path, std::string* why);

// Makes one folder that only the user may look into, where there is none of that name.
void MakePrivateFolder(const std::string& path);

// Removes the file. Returns 0 when there is none of that name any more, else an errno.
int RemoveFile(const std::string& path);

} // namespace tarnwick
