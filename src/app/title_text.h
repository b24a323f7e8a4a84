#pragma once

#include "load/scene_view.h"

#include <string>

namespace tarnwick {

// Why the very file that was to be shown couldn't be read, as a phrase; null when it could.
const char* OwnUnreadReason(const SceneView& view);

// The title bar of a dialog that shows the file at `path` (empty for none): the file, the program, and what
// the user should know about the load that the status text doesn't tell.
std::string TitleText(const std::string& path, const SceneView& view);

// The title bar during a load of many files.
std::string ProgressTitle(const std::string& path, std::int32_t filesRead, std::int32_t filesKnown);

// The title bar after a file of a kind that can't be shown: what was shown before still is.
std::string RefusedTitle(const std::string& titleBefore, const std::string& refusedPath);

} // namespace tarnwick
