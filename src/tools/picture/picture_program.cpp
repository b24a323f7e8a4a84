#include "tools/picture/picture_program.h"

#include "formats/load_commands.h"
#include "load/no_controls.h"
#include "offscreen/camera.h"
#include "offscreen/offscreen_window.h"
#include "platform/console.h"
#include "platform/sanitizers.h"
#include "text/one_line.h"
#include "tools/picture/png_file.h"
#include "tools/picture/prepared_path.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace tarnwick::tools {

namespace {

constexpr double kBytesOfMegabyte = 1e6;
// The share of the time limit that is left for drawing where a file must be prepared.
constexpr double kForDrawing = 0.2;

void Say(const std::string& text) {
    std::fprintf(stderr, "tarnwick-picture: %s\n", OnOneLine(text).c_str());
}

bool IsTooLarge(const PictureOptions& options) {
    struct stat status;
    return options.sizeLimit > 0 && stat(options.path.c_str(), &status) == 0 &&
           static_cast<double>(status.st_size) > options.sizeLimit * kBytesOfMegabyte;
}

bool IsGivenUp(const UnreadFile& file) {
    return file.reason == std::string_view(kGivenUpReason);
}

// Tells what could not be read, except for the file itself where it was opened and then given up: SayNothing
// tells what helps then.
void SayUnread(const SceneView& view) {
    for (const UnreadFile& file : view.loaded.unreadFiles) {
        if (!file.productName.empty()) {
            Say(file.path + ", the file of product '" + file.productName + "', " + file.reason);
        } else if (!IsGivenUp(file)) {
            Say(file.path + " " + file.reason);
        }
    }
}

// Why there is nothing to draw, unless SayUnread has told it.
void SayNothing(const PictureOptions& options, const SceneView& view) {
    const bool isTold =
        std::any_of(view.loaded.unreadFiles.begin(), view.loaded.unreadFiles.end(),
                    [](const UnreadFile& file) { return file.productName.empty() && !IsGivenUp(file); });
    if (isTold) { return; }
    Say(options.path +
        " has nothing that the viewer shows: tarnwick-prepare brings any STEP file into its form");
}

// Whether the file is of a kind that is loaded.
bool Load(OpenGLControl& view, const PictureOptions& options, const std::string& path) {
    NoControls controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    const char* const rootName = options.product ? options.product->c_str() : nullptr;
    if (!LoadFile(dispatch, path.c_str(), rootName, true)) { return false; }
    if (options.depth) {
        ChangeDepth(dispatch, std::clamp(*options.depth, 0, std::max(view.loaded.maxDepth, 0)));
    }
    return true;
}

bool LoadPrepared(OpenGLControl& view, const PictureOptions& options) {
    std::string why;
    const std::string path = PreparedPath(options.path, options.timeLimit * (1 - kForDrawing), &why);
    if (path.empty()) {
        Say(options.path + ": " + why);
        return false;
    }
    const bool isShown = Load(view, options, path) && view.loaded.drawnTriangles > 0;
    SayUnread(view);
    if (!isShown) { SayNothing(options, view); }
    return isShown;
}

bool LoadInto(OpenGLControl& view, const PictureOptions& options) {
    const bool isLoaded = Load(view, options, options.path);
    if (options.prepare && view.loaded.drawnTriangles < 1) { return LoadPrepared(view, options); }
    if (!isLoaded) {
        Say(options.path +
            " isn't of a kind that the viewer shows, by its extension: tarnwick-prepare brings any "
            "STEP file into its form");
        return false;
    }
    SayUnread(view);
    if (view.loaded.drawnTriangles < 1) {
        SayNothing(options, view);
        return false;
    }
    return true;
}

// A driver may crash where memory runs out. A sanitizer tells more about that than we do.
void TellOfABrokenDriver() {
#ifndef TARNWICK_ADDRESS_SANITIZER
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        std::signal(number, [](int) {
            constexpr char kText[] =
                "tarnwick-picture: the graphics driver broke down, perhaps for want of memory\n";
            [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kText, sizeof kText - 1);
            std::_Exit(1);
        });
    }
#endif
}

// One view, or the frames of a turntable in it.
std::vector<Rotation> RotationsOf(const PictureOptions& options, const NamedView& named) {
    std::vector<Rotation> rotations;
    for (int frame = 0; frame < options.turntable; ++frame) {
        rotations.push_back(Combined(named.rotation, About(2, 360.0 * frame / options.turntable)));
    }
    if (rotations.empty()) { rotations.push_back(named.rotation); }
    return rotations;
}

void Pick(OpenGLControl& view, WindowPoint place) {
    ShowErrorsOnly(false);
    view.PickAt(place);
    ShowErrorsOnly(true);
}

// Writes to the end, whatever the time limit.
int WriteInTime(const std::vector<std::uint8_t>& bytes, const std::string& name) {
    sigset_t alarm;
    sigset_t before;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    pthread_sigmask(SIG_BLOCK, &alarm, &before);
    const int error = WriteBytes(bytes, name);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return error;
}

bool WritePicture(const OffscreenWindow& window, const PictureOptions& options, const std::string& name) {
    const int channels = options.background[3] < 1 ? 4 : 3;
    std::vector<std::uint8_t> pixels = window.Pixels(channels);
    if (channels == 4) { DivideByAlpha(&pixels); }
    const std::vector<std::uint8_t> bytes =
        pixels.empty() ? pixels : PngBytes(pixels, options.size, channels);
    if (bytes.empty()) {
        Say("the picture needs more memory than there is");
        return false;
    }
    const int error = WriteInTime(bytes, name);
    if (error != 0) {
        Say((name == "-" ? "standard output" : name) + " can't be written: " + std::strerror(error));
    }
    return error == 0;
}

// The pictures of one view; false when one isn't written, which is told.
bool MakeView(OpenGLControl& view, const OffscreenWindow& window, const PictureOptions& options,
              const NamedView& named) {
    const std::vector<Rotation> rotations = RotationsOf(options, named);
    std::optional<Framing> framing;
    if (options.fit) {
        framing = FitDrawn(view, rotations, CurrentLens());
        if (!framing) {
            SayNothing(options, view);
            return false;
        }
    }
    int frame = 0;
    for (const Rotation& rotation : rotations) {
        if (framing) {
            TurnFramed(view, rotation, *framing);
        } else {
            Turn(rotation);
        }
        if (options.pick) { Pick(view, window.PointOf(*options.pick)); }
        view.Redraw();
        if (!WritePicture(window, options, FileName(options, named.name, frame))) { return false; }
        ++frame;
    }
    return true;
}

} // namespace

int MakePictures(const PictureOptions& options) {
    EnableOutput(false);
    ShowErrorsOnly(true);
    if (IsTooLarge(options)) {
        Say(options.path + " is larger than the limit");
        return 1;
    }
    OffscreenWindow window(options.size, static_cast<int>(std::lround(std::sqrt(options.samples))));
    OpenGLControl view(window);
    // The context comes after the load, whose first frame nobody sees.
    if (!LoadInto(view, options)) { return 1; }
    TellOfABrokenDriver();
    view.OnCreate();
    if (window.failure != nullptr) {
        Say(window.failure);
        return 1;
    }
    const WindowSize drawn = window.DrawableSize();
    view.OnSize(OpenGLControl::kRestored, drawn.width, drawn.height);
    view.wireframe = options.wireframe ? 1 : 0;
    std::copy(options.background.begin(), options.background.end(), view.background);
    if (options.background[3] < 1) { window.KeepCoverage(); }
    const bool isWritten =
        std::all_of(options.views.begin(), options.views.end(),
                    [&](const NamedView& named) { return MakeView(view, window, options, named); });
    return isWritten ? 0 : 1;
}

} // namespace tarnwick::tools
