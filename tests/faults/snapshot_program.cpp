// faults-snapshot FILE PICTURE: loads FILE, and writes a snapshot of a window without a window system.

#include "formats/load_commands.h"
#include "platform/within_memory.h"
#include "render/opengl_control.h"

#include <cstdio>

namespace {

using namespace tarnwick;

class NoWindow final : public WindowPort {
public:
    bool CreateContext() override { return true; }
    void SwapBuffers() override {}
    WindowSize DrawableSize() override { return {64, 48}; }
    bool IsControlKeyDown() override { return false; }
};

int Run(const char* file, const char* picture) {
    NoWindow window;
    OpenGLControl view(window);
    view.OnCreate();
    view.OnSize(OpenGLControl::kRestored, 64, 48);
    LoadStepFile(view, file, false);
    for (const UnreadFile& unread : view.loaded.unreadFiles) {
        std::fprintf(stderr, "faults-snapshot: %s %s\n", unread.path.c_str(), unread.reason);
    }
    return view.grab_GL(picture) == 1 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    int status = 1;
    if (argc == 3 && !WithinMemory([&] { status = Run(argv[1], argv[2]); })) {
        std::fputs("faults-snapshot: it needs more memory than there is\n", stderr);
    }
    return status;
}
