#pragma once

#include "load/scene_view.h"

namespace tarnwick {

// Drops what the view shows, and the pick with it.
void ResetScene(SceneView& view);

// Sets `centre`, `modelSize` and `eye` from the view's `box`, in 32-bit floats. A box without extent counts
// as one of size 10 around the origin.
void SetUpView(SceneView& view);

// Draws one frame and takes its time.
void DrawTimedFrame(SceneView& view);

// Shows a P21 file. After a failed load the view holds no scene, and its counts and times still are those of
// the load before. `useThreads` is 0 or 1.
void LoadStepFile(SceneView& view, const char* path, int useThreads);

} // namespace tarnwick
