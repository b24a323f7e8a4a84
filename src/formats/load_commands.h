#pragma once

#include "load/load_file.h"
#include "load/scene_view.h"

// The load commands of all file kinds. Each drops what the view shows, loads, sets up the view and draws a
// frame; what stays of the scene before, after a failed load, differs: see the head of load_commands.cpp.
namespace tarnwick {

// Shows a P21 file.
void LoadStepFile(SceneView& view, const char* path, bool useThreads);

// Shows a STEP XML document with all its parts. `rootName`, the name of a child of its root to show in its
// place, may be null.
void LoadStpxFile(SceneView& view, const char* path, const char* rootName, bool useThreads);

// Shows the boxes of a summary file.
void LoadStpjFile(SceneView& view, const char* path);

// Shows an archive of STEP XML documents and parts. Without `useThreads` nothing in it is read.
void LoadZIPFile(SceneView& view, const char* path, const char* rootName, bool useThreads);

// Replaces the boxes of the summary file in the view by those of a depth. Does nothing when the view has no
// such file.
void SelectShownDepth(SceneView& view, std::int32_t depth);

inline constexpr LoadCommands kLoadCommands{.loadStepFile = LoadStepFile,
                                            .loadStpxFile = LoadStpxFile,
                                            .loadStpjFile = LoadStpjFile,
                                            .loadZipFile = LoadZIPFile,
                                            .selectDepth = SelectShownDepth};

} // namespace tarnwick
