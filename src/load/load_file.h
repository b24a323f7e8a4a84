#pragma once

#include "load/scene_view.h"

#include <cstdint>
#include <string>

namespace tarnwick {

// What LoadFile asks of a dialog's controls. A program without a dialog prints the status text and ignores
// the rest.
class LoadControls {
public:
    virtual ~LoadControls() = default;
    // The text that tells the outcome of a load.
    virtual void SetStatusText(const std::string& text) = 0;
    virtual void ShowDepthSlider(bool visible) = 0;
    virtual void EnableDepthSlider(bool enabled) = 0;
    virtual void SetDepthRange(std::int32_t low, std::int32_t high) = 0;
    virtual void SetDepthPosition(std::int32_t position) = 0;
    virtual void SetDepthLabel(std::int32_t depth) = 0;
    // Shows the values that were set.
    virtual void UpdateData() = 0;
};

// The load command of each file kind. Null for a kind that this program doesn't load: such files are refused
// like those of an unknown extension. `rootName` may be null.
struct LoadCommands {
    void (*loadStepFile)(SceneView& view, const char* path, bool useThreads) = nullptr;
    void (*loadStpxFile)(SceneView& view, const char* path, const char* rootName, bool useThreads) = nullptr;
    void (*loadStpjFile)(SceneView& view, const char* path) = nullptr;
    void (*loadZipFile)(SceneView& view, const char* path, const char* rootName, bool useThreads) = nullptr;
    // Rebuilds the boxes of a summary file for a depth; does nothing when the view holds no such file.
    void (*selectDepth)(SceneView& view, std::int32_t depth) = nullptr;
};

// Where every request to show a file arrives.
struct LoadDispatch {
    SceneView& view;
    LoadControls& controls;
    LoadCommands commands;
    std::string currentPath = {}; // of the last request, even if that was refused
};

// Shows the file at `path` by the load command of its extension and puts the outcome into the status text.
// `rootName` names a product for the STEP XML and archive loads, or is null. For a path without a known
// extension only `currentPath` is set, and false is returned.
bool LoadFile(LoadDispatch& dispatch, const char* path, const char* rootName, bool useThreads);

// What a move of the Depth slider to `depth` does: selects the boxes of a summary file, clears the pick and
// sets the status text. The caller draws the view.
void ChangeDepth(LoadDispatch& dispatch, std::int32_t depth);

// The status text for what the view holds, "Nb Triangles: 1024  CPU tot: 0.125s "; with `withWords` false
// (summary files) without the first two words. Numbers have points in every locale.
std::string StatusText(const SceneView& view, bool withWords);

} // namespace tarnwick
