#include "tools/load/load_program.h"

#include "check/check_path.h"
#include "formats/load_commands.h"
#include "formats/prepare_hint.h"
#include "load/no_controls.h"
#include "platform/console.h"
#include "platform/flush_output.h"
#include "platform/standard_streams.h"
#include "platform/whole_file.h"
#include "platform/within_memory.h"
#include "report/report.h"
#include "text/one_line.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::tools {

namespace {

// Keeps the status text and ignores all other controls.
class StatusOnly final : public NoControls {
public:
    void SetStatusText(const std::string& text) override { status = text; }

    std::string status;
};

// Moves the Depth slider, within its range, as a user would.
void MoveSlider(LoadDispatch& dispatch, std::int32_t position) {
    ChangeDepth(dispatch, std::clamp(position, 0, std::max(dispatch.view.loaded.maxDepth, 0)));
}

// Tells why a text couldn't be written, by its errno. True for 0, which is no error.
bool TellUnwritten(const char* name, int error) {
    if (error != 0) {
        std::fprintf(stderr, "tarnwick-load: %s can't be written: %s\n", OneLine(name).Text(),
                     std::strerror(error));
    }
    return error == 0;
}

} // namespace

bool OutputIsWritten() {
    return TellUnwritten("standard output", FlushOutput());
}

namespace {

// Standard output, or a file. Needs no memory of the heap.
class ReportOutput final : public ByteSink {
public:
    explicit ReportOutput(const std::string& name) : name_(name) {
        if (name != "-") { file_.emplace(name.c_str()); }
    }

    void Write(std::string_view bytes) override {
        if (file_) {
            file_->Write(bytes.data(), bytes.size());
        } else {
            std::fwrite(bytes.data(), 1, bytes.size(), stdout);
        }
    }
    // Where a byte was lost, also tells why.
    bool Close() override { return file_ ? TellUnwritten(name_.c_str(), file_->Close()) : OutputIsWritten(); }

private:
    const std::string& name_;
    std::optional<WholeFile> file_;
};

// Writes a report by write(sink). False, and told, when that fails, also for lack of memory: there may be
// enough for what comes after it.
template <class Write>
bool Report(const std::string& name, Write write) {
    bool written = false;
    const bool hadMemory = WithinMemory([&] {
        ReportOutput output(name);
        write(&output);
        written = output.Close();
    });
    if (!hadMemory) { std::fputs("tarnwick-load: the report needs more memory than there is\n", stderr); }
    return written;
}

void SayUnread(const SceneView& view) {
    for (const UnreadFile& file : view.loaded.unreadFiles) {
        const std::string path = OnOneLine(file.path);
        if (file.productName.empty()) {
            std::fprintf(stderr, "tarnwick-load: %s %s\n", path.c_str(), file.reason);
        } else {
            std::fprintf(stderr, "tarnwick-load: %s, the file of product '%s', %s\n", path.c_str(),
                         OneLine(file.productName).Text(), file.reason);
        }
    }
}

// Names the command that helps where nothing is shown. There may be no memory for that.
void SayWhatHelps(const SceneView& view, bool loaded, const std::string& path) {
    WithinMemory([&] {
        const std::string hint = PrepareHint(view, loaded, path);
        if (!hint.empty()) { std::fprintf(stderr, "tarnwick-load: %s\n", hint.c_str()); }
    });
}

// Whether standard output is a terminal whose user hasn't asked for no colours.
bool HasColours() {
    const char* const refused = std::getenv("NO_COLOR");
    return (refused == nullptr || *refused == '\0') && IsColourTerminal();
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
        written = Report(options.jsonFile, [&](ByteSink* sink) {
            WriteSceneReport(view, dispatch.currentPath, status, options.arrays, sink);
        });
    }
    if (!loaded) {
        std::fprintf(stderr, "tarnwick-load: %s: not a kind of file that can be loaded, by its extension\n",
                     OneLine(dispatch.currentPath).Text());
    } else if (!jsonOnOutput) {
        std::printf("%s\n", status->c_str());
    }
    SayUnread(view);
    SayWhatHelps(view, loaded, dispatch.currentPath);
    written = OutputIsWritten() && written;
    return written && view.loaded.drawnTriangles >= 1 ? 0 : 1;
}

int PrintIndex(const LoadOptions& options) {
    ReaderWorkspace workspace;
    StepModel model(workspace, options.path);
    const int result = model.Read();
    const bool written =
        Report("-", [&](ByteSink* sink) { sink->Write(IndexReport(model, result, options.entities)); });
    if (result == StepModel::kNotOpened) {
        std::fprintf(stderr, "tarnwick-load: %s can't be opened\n", OneLine(options.path).Text());
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
    const CheckTextOptions text{.isVerbose = options.verbose, .colours = HasColours()};
    const bool written = Report(asJson ? options.jsonFile : "-", [&](ByteSink* sink) {
        sink->Write(asJson ? CheckJson(report) : CheckText(report, text));
    });
    return written && report.findings.empty() ? 0 : 1;
}

} // namespace tarnwick::tools
