#include "load/load_file.h"

#include "load/file_kind.h"

#include <charconv>

namespace tarnwick {

namespace {

bool HasCommand(const LoadCommands& commands, FileKind kind) {
    switch (kind) {
    case FileKind::kStep:
        return commands.loadStepFile != nullptr;
    case FileKind::kStepXml:
        return commands.loadStpxFile != nullptr;
    case FileKind::kSummary:
        return commands.loadStpjFile != nullptr;
    case FileKind::kArchive:
        return commands.loadZipFile != nullptr;
    default:
        return false;
    }
}

// Puts the slider at the end of a range from 0 to `depth`.
void SetDepth(LoadControls& controls, std::int32_t depth) {
    controls.SetDepthRange(0, depth);
    controls.SetDepthPosition(depth);
    controls.SetDepthLabel(depth);
}

} // namespace

std::string StatusText(const SceneView& view, bool withWords) {
    char seconds[64];
    const auto end =
        std::to_chars(seconds, seconds + sizeof seconds, view.loadSeconds, std::chars_format::fixed, 3);
    const std::string_view digits(seconds, static_cast<std::size_t>(end.ptr - seconds));
    std::string text = withWords ? "Nb Triangles: " : "";
    text += std::to_string(view.loaded.drawnTriangles);
    text += "  CPU tot: ";
    text += digits;
    text += "s ";
    return text;
}

bool LoadFile(LoadDispatch& dispatch, const char* path, const char* rootName, bool useThreads) {
    // A copy: the caller may pass the very path that is replaced here.
    const std::string wanted = path;
    dispatch.currentPath = wanted;
    const FileKind kind = FileKindOf(wanted);
    SceneView& view = dispatch.view;
    LoadControls& controls = dispatch.controls;
    const LoadCommands& commands = dispatch.commands;
    if (!HasCommand(commands, kind)) { return false; }
    view.DeleteDisplayList();
    if (kind != FileKind::kSummary) { controls.ShowDepthSlider(false); }
    switch (kind) {
    case FileKind::kStep:
        commands.loadStepFile(view, wanted.c_str(), useThreads);
        break;
    case FileKind::kStepXml:
        commands.loadStpxFile(view, wanted.c_str(), rootName, useThreads);
        break;
    case FileKind::kSummary:
        commands.loadStpjFile(view, wanted.c_str());
        break;
    default:
        commands.loadZipFile(view, wanted.c_str(), rootName, useThreads);
    }
    controls.SetStatusText(StatusText(view, kind != FileKind::kSummary));
    if (kind == FileKind::kStepXml) {
        SetDepth(controls, 0);
        controls.EnableDepthSlider(false);
        controls.UpdateData();
    } else if (kind == FileKind::kSummary) {
        controls.ShowDepthSlider(true);
        controls.EnableDepthSlider(true);
        SetDepth(controls, view.loaded.maxDepth);
        controls.UpdateData();
    }
    return true;
}

void ChangeDepth(LoadDispatch& dispatch, std::int32_t depth) {
    dispatch.controls.SetDepthLabel(depth);
    dispatch.controls.UpdateData();
    if (dispatch.commands.selectDepth != nullptr) { dispatch.commands.selectDepth(dispatch.view, depth); }
    dispatch.view.selectedIndex = -1;
    dispatch.controls.SetStatusText(StatusText(dispatch.view, true));
}

} // namespace tarnwick
