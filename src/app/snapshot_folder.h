#pragma once

#include <string>

namespace tarnwick {

// The folder of snapshots, Pictures/Tarnwick in the user's home, made for the user alone where it is missing.
std::string SnapshotFolder();

} // namespace tarnwick
