#include "tools/load/load_program.h"

#include "check/check_path.h"
#include "formats/load_commands.h"
#include "load/no_controls.h"
#include "platform/console.h"
#include "report/report.h"
#include "text/one_line.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace tarnwick::tools {

namespace {

// A dialog of one control: the status text.
class StatusOnly final : public NoControls {
public:
    void SetStatusText(const std::string& text) override { status = text; }

    std::string status;
};

// Moves the Depth slider as far as its range goes, with all that follows from it.
void MoveSlider(LoadDispatch& dispatch, std::int32_t position) {
    ChangeDepth(dispatch, std::clamp(position, 0, std::max(dispatch.view.loaded.maxDepth, 0)));
}

bool WriteReport(const std::string& report, const std::string& name) {
    const bool toStandardOutput = name == "-";
    std::FILE* const file = toStandardOutput ? stdout : std::fopen(name.c_str(), "wb");
    bool written = file != nullptr && std::fwrite(report.data(), 1, report.size(), file) == report.size();
    if (file != nullptr) {
        written = (toStandardOutput ? std::fflush(file) : std::fclose(file)) == 0 && written;
    }
    if (!written) { std::fprintf(stderr, "tarnwick-load: %s can't be written\n", name.c_str()); }
    return written;
}

void SayUnread(const SceneView& view) {
    for (const UnreadFile& file : view.loaded.unreadFiles) {
        const std::string path = OnOneLine(file.path);
        if (file.productName.empty()) {
            std::fprintf(stderr, "tarnwick-load: %s %s\n", path.c_str(), file.reason);
        } else {
            std::fprintf(stderr, "tarnwick-load: %s, the file of product '%s', %s\n", path.c_str(),
                         OnOneLine(file.productName).c_str(), file.reason);
        }
    }
}

} // namespace

int LoadAndReport(const LoadOptions& options) {
    const bool jsonOnOutput = options.jsonFile == "-";
    EnableOutput(!jsonOnOutput);
    SceneView view;
    StatusOnly controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    const char* const rootName = options.product ? options.product->c_str() : nullptr;
    bool loaded = false;
    for (int i = 0; i < options.repeat; ++i) {
        loaded = LoadFile(dispatch, options.path.c_str(), rootName, !options.noThreads);
    }
    if (options.depth && loaded) { MoveSlider(dispatch, *options.depth); }
    const std::string* const status = loaded ? &controls.status : nullptr;
    bool written = true;
    if (!options.jsonFile.empty()) {
        written =
            WriteReport(SceneReport(view, dispatch.currentPath, status, options.arrays), options.jsonFile);
    }
    if (!loaded) {
        std::fprintf(stderr, "tarnwick-load: %s: not a kind of file that can be loaded, by its extension\n",
                     dispatch.currentPath.c_str());
    } else if (!jsonOnOutput) {
        std::printf("%s\n", status->c_str());
    }
    SayUnread(view);
    return written && view.loaded.drawnTriangles >= 1 ? 0 : 1;
}

int PrintIndex(const LoadOptions& options) {
    ReaderWorkspace workspace;
    StepModel model(workspace, options.path);
    const int result = model.Read();
    const bool written = WriteReport(IndexReport(model, result, options.entities), "-");
    if (result == StepModel::kNotOpened) {
        std::fprintf(stderr, "tarnwick-load: %s can't be opened\n", options.path.c_str());
    }
    return written && result == StepModel::kRead ? 0 : 1;
}

int PrintCheck(const LoadOptions& options) {
    EnableOutput(false);
    SceneView view;
    StatusOnly controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    const char* const rootName = options.product ? options.product->c_str() : nullptr;
    const CheckReport report = CheckPath(dispatch, options.path, rootName, !options.noThreads);
    const bool asJson = !options.jsonFile.empty();
    const bool written =
        WriteReport(asJson ? CheckJson(report) : CheckText(report), asJson ? options.jsonFile : "-");
    return written && report.findings.empty() ? 0 : 1;
}

} // namespace tarnwick::tools
