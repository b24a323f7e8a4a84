#pragma once

#include "load/loaded_scene.h"

#include <cstdint>

namespace tarnwick {

// What is shown, and from which eye point. The drawing window is built on it; a program without a window uses
// it alone. Used by the thread that runs a load command, and between loads by the one that draws.
struct SceneView {
    SceneView() = default;
    SceneView(const SceneView&) = delete;
    SceneView& operator=(const SceneView&) = delete;
    virtual ~SceneView() = default;

    // Draws one frame and sets `framesPerSecond`. Does nothing without a window.
    virtual void Redraw() {}
    // Gives back what the graphics library keeps of the scene. Every load calls it first.
    virtual void DeleteDisplayList() {}
    // Shows the user how far a load of many files has come. Called on the thread of the load, now and then.
    virtual void ShowProgress(std::int32_t /*filesRead*/, std::int32_t /*filesKnown*/) {}

    LoadedScene loaded; // by the last load

    float centre[3] = {};            // of the box
    float modelSize = 120;           // sum of the box's three extents; never 0
    float eye[3] = {};               // start position of the camera; for the scene report alone
    double loadSeconds = 0;          // of the whole load command, up to the first frame
    std::int32_t boxMode = 0;        // whether STEP XML shows as boxes; no command sets it to more than 0
    std::int32_t selectedIndex = -1; // picked index, -1 for none
    std::int32_t selectedFaceId = 0; // of the picked face; these four are 0 when nothing is picked
    std::int32_t selectedExactFaceId = 0;
    std::int32_t selectedContainerId = 0;
    std::int32_t selectedExactContainerId = 0;
    double framesPerSecond = 0;    // by the last frame; for measuring, no code reads it
    std::uint32_t sceneNumber = 0; // counts the scenes: what is kept about one holds for its number only
};

} // namespace tarnwick
