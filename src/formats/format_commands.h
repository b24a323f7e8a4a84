#pragma once

#include "load/load_commands.h"
#include "load/load_file.h"
#include "load/scene_view.h"

// The load commands of the formats other than P21. Each drops what the view shows, loads, sets up the view
// and draws a frame. What a P21 load left beside the scene (containers, the root's name) stays.
namespace tarnwick {

// Shows a STEP XML document with all its parts. `rootName`, the name of a child of its root to show in its
// place, may be null. `useThreads` is 0 or 1.
void LoadStpxFile(SceneView& view, const char* path, const char* rootName, int useThreads);

// Shows the boxes of a summary file.
void LoadStpjFile(SceneView& view, const char* path);

// Shows an archive of STEP XML documents and parts. With `useThreads` 0 nothing in it is read.
void LoadZIPFile(SceneView& view, const char* path, const char* rootName, int useThreads);

// Replaces the boxes of the summary file in the view by those of a depth. Does nothing when it holds no such
// file.
void SelectShownDepth(SceneView& view, std::int32_t depth);

// The commands of all file kinds.
inline constexpr LoadCommands kLoadCommands{.loadStepFile = LoadStepFile,
                                            .loadStpxFile = LoadStpxFile,
                                            .loadStpjFile = LoadStpjFile,
                                            .loadZipFile = LoadZIPFile,
                                            .selectDepth = SelectShownDepth};

} // namespace tarnwick
