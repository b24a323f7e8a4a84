// faults-load-list [--no-threads] PATH...: loads the files one after the other into one view, as the viewer
// does, and prints the scene after each.

#include "formats/load_commands.h"
#include "load/no_controls.h"
#include "platform/console.h"
#include "platform/within_memory.h"
#include "report/report.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

using namespace tarnwick;

class StatusOnly final : public NoControls {
public:
    void SetStatusText(const std::string& text) override { status = text; }

    std::string status;
};

void Show(LoadDispatch& dispatch, StatusOnly& controls, const char* path, bool useThreads) {
    const bool loaded = LoadFile(dispatch, path, nullptr, useThreads);
    const std::string report = SceneReport(dispatch.view, path, loaded ? &controls.status : nullptr, true);
    std::fwrite(report.data(), 1, report.size(), stdout);
    for (const UnreadFile& file : dispatch.view.loaded.unreadFiles) {
        std::fprintf(stderr, "faults-load-list: %s %s\n", file.path.c_str(), file.reason);
    }
}

} // namespace

int main(int argc, char** argv) {
    EnableOutput(false);
    SceneView view;
    StatusOnly controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    bool useThreads = true;
    bool shown = true;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--no-threads") == 0) {
            useThreads = false;
        } else if (!WithinMemory([&] { Show(dispatch, controls, argv[i], useThreads); })) {
            std::fprintf(stderr, "faults-load-list: %s needs more memory than there is\n", argv[i]);
            shown = false;
        }
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("faults-load-list: standard output can't be written\n", stderr);
        shown = false;
    }
    return shown ? 0 : 1;
}
