#include "load/load_file.h"

#include <charconv>
#include <cstdio>

namespace tarnwick {

std::string ExtensionOf(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos || dot == 0) { return {}; }
    std::string extension(path.substr(dot + 1));
    if (extension.size() >= 9) { return {}; }
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') { c = static_cast<char>(c - 'A' + 'a'); }
    }
    return extension;
}

std::string StatusText(const SceneView& view, bool withWords) {
    char seconds[64];
    const auto end =
        std::to_chars(seconds, seconds + sizeof seconds, view.loadSeconds, std::chars_format::fixed, 3);
    const std::string_view digits(seconds, static_cast<std::size_t>(end.ptr - seconds));
    std::string text = withWords ? "Nb Triangles: " : "";
    text += std::to_string(view.drawnTriangles);
    text += "  CPU tot: ";
    if (digits.size() < 5) { text.append(5 - digits.size(), ' '); }
    text += digits;
    text += "s ";
    return text;
}

void LoadFile(LoadDispatch& dispatch, const char* path, const char* rootName, int useThreads) {
    // A copy first: the caller may pass the very path that is replaced here.
    const std::string wanted = path;
    dispatch.currentPath = wanted;
    const std::string extension = ExtensionOf(wanted);
    SceneView& view = dispatch.view;
    LoadControls& controls = dispatch.controls;
    const LoadCommands& commands = dispatch.commands;
    if ((extension == "stp" || extension == "stpz") && commands.loadStepFile != nullptr) {
        view.DeleteDisplayList();
        controls.ShowDepthSlider(false);
        commands.loadStepFile(view, wanted.c_str(), useThreads);
        controls.SetStatusText(StatusText(view, true));
    } else if ((extension == "stpx" || extension == "stpxz") && commands.loadStpxFile != nullptr) {
        view.DeleteDisplayList();
        controls.ShowDepthSlider(false);
        commands.loadStpxFile(view, wanted.c_str(), rootName, useThreads);
        controls.SetStatusText(StatusText(view, true));
        controls.SetDepthRange(0, 0);
        controls.SetDepthPosition(0);
        controls.SetDepthLabel(0);
        controls.EnableDepthSlider(false);
        controls.UpdateData();
    } else if (extension == "stpj" && commands.loadStpjFile != nullptr) {
        view.DeleteDisplayList();
        commands.loadStpjFile(view, wanted.c_str());
        controls.SetStatusText(StatusText(view, false));
        controls.ShowDepthSlider(true);
        controls.EnableDepthSlider(true);
        controls.SetDepthRange(0, view.maxDepth);
        controls.SetDepthPosition(view.maxDepth);
        controls.SetDepthLabel(view.maxDepth);
        controls.UpdateData();
    } else if (extension == "stpa" && commands.loadZipFile != nullptr) {
        view.DeleteDisplayList();
        controls.ShowDepthSlider(false);
        commands.loadZipFile(view, wanted.c_str(), rootName, useThreads);
        controls.SetStatusText(StatusText(view, true));
    }
}

void ChangeDepth(LoadDispatch& dispatch, std::int32_t depth) {
    dispatch.controls.SetDepthLabel(depth);
    dispatch.controls.UpdateData();
    if (dispatch.commands.selectDepth != nullptr) { dispatch.commands.selectDepth(dispatch.view, depth); }
    dispatch.view.selectedIndex = -1;
    dispatch.controls.SetStatusText(StatusText(dispatch.view, true));
}

} // namespace tarnwick
