#include "offscreen/offscreen_window.h"

#include "render/drop_errors.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace tarnwick {

struct OffscreenWindow::Library {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
};

namespace {

// With smoothing, at most so many pixels are drawn to a side, and so many in all.
constexpr int kLongestDrawn = 16384;
constexpr double kMostDrawn = 64e6;

constexpr const char* kNoDriver =
    "no graphics driver can be loaded that draws without a display, not even the software one (Debian: "
    "libgl1-mesa-dri)";
constexpr const char* kNoRoom = "the graphics library has no room for a picture of that size";

// Whether the driver can keep what it compiles for the next time. If it can't it complains, and as root it
// makes a home folder.
bool HasCacheFolder() {
    const char* folder = std::getenv("XDG_CACHE_HOME");
    if (folder == nullptr) { folder = std::getenv("HOME"); }
    return folder != nullptr && access(folder, W_OK) == 0;
}

// The platform that needs nothing but a driver; EGL_NO_DISPLAY when the library doesn't have it.
EGLDisplay OpenDisplay() {
    using Open = EGLDisplay (*)(EGLenum, void*, const EGLint*);
    const auto open = reinterpret_cast<Open>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (open == nullptr) { return EGL_NO_DISPLAY; }
    EGLDisplay const display = open(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    return display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr) != EGL_FALSE
               ? display
               : EGL_NO_DISPLAY;
}

// A kind of buffer with the colours of a usual window; null when there is none. The library lists deeper
// colours first, which would be rounded differently.
EGLConfig FindConfig(EGLDisplay display) {
    const EGLint wanted[] = {EGL_SURFACE_TYPE,
                             EGL_PBUFFER_BIT,
                             EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT,
                             EGL_RED_SIZE,
                             8,
                             EGL_GREEN_SIZE,
                             8,
                             EGL_BLUE_SIZE,
                             8,
                             EGL_ALPHA_SIZE,
                             8,
                             EGL_DEPTH_SIZE,
                             24,
                             EGL_SAMPLES,
                             0,
                             EGL_NONE};
    EGLConfig configs[64];
    EGLint count = 0;
    if (eglChooseConfig(display, wanted, configs, 64, &count) == EGL_FALSE) { return nullptr; }
    for (EGLint i = 0; i < count; ++i) {
        EGLint red = 0;
        EGLint samples = 0;
        eglGetConfigAttrib(display, configs[i], EGL_RED_SIZE, &red);
        eglGetConfigAttrib(display, configs[i], EGL_SAMPLES, &samples);
        if (red == 8 && samples == 0) { return configs[i]; }
    }
    return nullptr;
}

// The mean of each square of `times` by `times` pixels.
std::vector<std::uint8_t> Shrunk(const std::vector<std::uint8_t>& pixels, WindowSize size, int times,
                                 int channels) {
    const auto width = static_cast<std::size_t>(size.width);
    const auto height = static_cast<std::size_t>(size.height);
    const auto side = static_cast<std::size_t>(times);
    const auto step = static_cast<std::size_t>(channels);
    const auto count = static_cast<unsigned>(times * times);
    std::vector<std::uint8_t> small(width * height * step);
    std::vector<unsigned> sums(width * step);
    for (std::size_t y = 0; y < height; ++y) {
        std::fill(sums.begin(), sums.end(), count / 2);
        for (std::size_t row = y * side; row < (y + 1) * side; ++row) {
            const std::uint8_t* next = pixels.data() + row * width * side * step;
            for (std::size_t x = 0; x < width; ++x) {
                for (std::size_t k = 0; k < side; ++k) {
                    for (std::size_t c = 0; c < step; ++c) { sums[x * step + c] += *next++; }
                }
            }
        }
        for (std::size_t i = 0; i < sums.size(); ++i) {
            small[y * sums.size() + i] = static_cast<std::uint8_t>(sums[i] / count);
        }
    }
    return small;
}

} // namespace

OffscreenWindow::OffscreenWindow(WindowSize size, int times) : size_(size), times_(times) {
    const double pixels = static_cast<double>(size.width) * size.height;
    while (times_ > 1 && (std::max(size.width, size.height) * times_ > kLongestDrawn ||
                          pixels * times_ * times_ > kMostDrawn)) {
        --times_;
    }
}

OffscreenWindow::~OffscreenWindow() {
    if (library_ == nullptr || library_->display == EGL_NO_DISPLAY) { return; }
    eglMakeCurrent(library_->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroySurface(library_->display, library_->surface);
    eglDestroyContext(library_->display, library_->context);
    // The display stays: drivers leak what they know about it when it ends, and are unloaded then.
}

bool OffscreenWindow::Fail(const char* why) {
    failure = why;
    return false;
}

bool OffscreenWindow::CreateContext() {
    // The library needn't complain: the caller tells a failure in one sentence.
    setenv("EGL_LOG_LEVEL", "fatal", 0);
    if (!HasCacheFolder()) { setenv("MESA_SHADER_CACHE_DISABLE", "true", 0); }
    library_ = std::make_unique<Library>();
    EGLDisplay const display = library_->display = OpenDisplay();
    if (display == EGL_NO_DISPLAY || eglBindAPI(EGL_OPENGL_API) == EGL_FALSE) { return Fail(kNoDriver); }
    EGLConfig const config = FindConfig(display);
    if (config == nullptr) { return Fail(kNoDriver); }
    library_->context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    if (library_->context == EGL_NO_CONTEXT) { return Fail(kNoDriver); }
    const WindowSize drawn = DrawableSize();
    const EGLint size[] = {EGL_WIDTH, drawn.width, EGL_HEIGHT, drawn.height, EGL_NONE};
    library_->surface = eglCreatePbufferSurface(display, config, size);
    if (library_->surface == EGL_NO_SURFACE ||
        eglMakeCurrent(display, library_->surface, library_->surface, library_->context) == EGL_FALSE) {
        return Fail(kNoRoom);
    }
    GLint largest[2] = {};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, largest);
    if (drawn.width > largest[0] || drawn.height > largest[1]) { return Fail(kNoRoom); }
    glLineWidth(static_cast<GLfloat>(times_)); // one pixel of the picture
    return true;
}

void OffscreenWindow::KeepCoverage() {
    const auto blend = reinterpret_cast<PFNGLBLENDFUNCSEPARATEPROC>(eglGetProcAddress("glBlendFuncSeparate"));
    if (blend != nullptr) { blend(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA); }
}

WindowPoint OffscreenWindow::PointOf(WindowPoint place) const {
    return {place.x * times_ + times_ / 2, place.y * times_ + times_ / 2};
}

std::vector<std::uint8_t> OffscreenWindow::Pixels(int channels) const {
    const WindowSize drawn{size_.width * times_, size_.height * times_};
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(drawn.width) *
                                     static_cast<std::size_t>(drawn.height) *
                                     static_cast<std::size_t>(channels));
    DropErrors();
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, drawn.width, drawn.height, channels == 4 ? GL_RGBA : GL_RGB, GL_UNSIGNED_BYTE,
                 pixels.data());
    if (glGetError() != GL_NO_ERROR) { return {}; }
    return times_ == 1 ? pixels : Shrunk(pixels, size_, times_, channels);
}

} // namespace tarnwick
