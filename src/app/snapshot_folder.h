#pragma once

#include <string>

namespace tarnwick {

// The folder of snapshots, Pictures/Tarnwick in the user's home. Makes what is missing of it, for the user
// alone.
std::string SnapshotFolder();

} // namespace tarnwick
