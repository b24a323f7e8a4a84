#pragma once

#include <string>

namespace tarnwick {

// The file of a snapshot of what was loaded from `loadedPath` (empty before any load): its name with the
// extension bmp in `folder`.
std::string SnapshotPath(const std::string& folder, const std::string& loadedPath);

} // namespace tarnwick
