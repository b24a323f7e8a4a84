#pragma once

#include "load/scene_view.h"

namespace tarnwick {

// Whether the containers of a part and the root's name stay when the next scene comes, for picks in it.
enum class PartRecords { kDropped, kKept };

// Drops what the view shows, the pick and the memory of the scene. Counts, times and box stay as they are.
void ResetScene(SceneView& view, PartRecords partRecords);

// Sets `centre`, `modelSize` and `eye` from the box of what is loaded, in 32-bit floats. A box without extent
// counts as one of size 10 around the origin.
void SetUpView(SceneView& view);

// Sets the view as it is before its first load, but for what ResetScene left: for a file of which there is
// nothing to show.
void ShowNothing(SceneView& view);

} // namespace tarnwick
