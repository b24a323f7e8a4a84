#pragma once

#include "load/scene_view.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// What LoadFile does to the controls of a dialog, one function an operation. A program without a dialog
// prints the status text and ignores the rest.
class LoadControls {
public:
    virtual ~LoadControls() = default;
    // The text of the status control, 1008.
    virtual void SetStatusText(const std::string& text) = 0;
    virtual void ShowDepthSlider(bool visible) = 0;
    virtual void EnableDepthSlider(bool enabled) = 0;
    virtual void SetDepthRange(std::int32_t low, std::int32_t high) = 0;
    virtual void SetDepthPosition(std::int32_t position) = 0;
    virtual void SetDepthLabel(std::int32_t depth) = 0;
    // Brings the controls up to date with the dialog's data.
    virtual void UpdateData() = 0;
};

// The load command of each file kind; null for a kind that this program doesn't load, which is then refused
// like an unknown extension. `rootName` may be null.
struct LoadCommands {
    void (*loadStepFile)(SceneView& view, const char* path, int useThreads) = nullptr;
    void (*loadStpxFile)(SceneView& view, const char* path, const char* rootName, int useThreads) = nullptr;
    void (*loadStpjFile)(SceneView& view, const char* path) = nullptr;
    void (*loadZipFile)(SceneView& view, const char* path, const char* rootName, int useThreads) = nullptr;
    // Rebuilds the boxes of a summary file for a depth; does nothing when the view holds no such file.
    void (*selectDepth)(SceneView& view, std::int32_t depth) = nullptr;
};

// Where a request to show a file comes in.
struct LoadDispatch {
    SceneView& view;
    LoadControls& controls;
    LoadCommands commands;
    std::string currentPath = {}; // of the last request, also of one that was refused
};

// The most arguments that SplitArguments tells apart; the rest of the text is dropped.
inline constexpr std::size_t kMostArguments = 10;

// Splits the text of a path or of a command line into arguments: an argument may stand in double quotes, and
// the first one, unquoted, may have blanks up to its first ".". `text` is converted to UTF-8.
std::vector<std::string> SplitArguments(const std::wstring& text);

// The text of one control line from program arguments: each in double quotes, so that blanks in them survive.
std::wstring JoinArguments(const std::vector<std::string>& arguments);

// The extension of a path, by which it is loaded, in small letters; empty for a path that has none, whose
// only "." is its first character, or with 9 characters and more.
std::string ExtensionOf(std::string_view path);

// Shows the file at `path` by the load command of its extension and puts the outcome into the status text.
// `rootName` names a product for the STEP XML and archive loads, or is null. A path without a known extension
// does nothing.
void LoadFile(LoadDispatch& dispatch, const char* path, const char* rootName, int useThreads);

// What a move of the Depth slider to `depth` does: other boxes for a summary file, no pick, and the status
// text anew. The caller has the view drawn.
void ChangeDepth(LoadDispatch& dispatch, std::int32_t depth);

// The status text for what the view holds, "Nb Triangles: 1024  CPU tot: 0.125s "; with `withWords` false
// (summary files) the number stands alone. Numbers have points in every locale.
std::string StatusText(const SceneView& view, bool withWords);

} // namespace tarnwick
