#pragma once

#include <string>

namespace tarnwick {

// The path of a snapshot: the name of `loadedPath` (empty before any load) with the extension bmp in
// `folder`.
std::string SnapshotPath(const std::string& folder, const std::string& loadedPath);

} // namespace tarnwick
