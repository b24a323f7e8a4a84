#include "offscreen/offscreen_window.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <cstddef>
#include <cstdlib>

namespace tarnwick {

struct OffscreenWindow::Library {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
};

namespace {

constexpr const char* kNoDriver =
    "there is no graphics driver here that draws without a display, not even the software one";
constexpr const char* kNoRoom = "the graphics library has no room for a picture of that size";

// The platform that needs nothing but a driver; null where the library doesn't know it.
EGLDisplay OpenDisplay() {
    using Open = EGLDisplay (*)(EGLenum, void*, const EGLint*);
    const auto open = reinterpret_cast<Open>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (open == nullptr) { return EGL_NO_DISPLAY; }
    EGLDisplay const display = open(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    return display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr) != EGL_FALSE
               ? display
               : EGL_NO_DISPLAY;
}

// A kind of buffer with the depth of colour of a usual window; null when there is none with so many samples.
EGLConfig FindConfig(EGLDisplay display, int samples) {
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
                             samples > 1 ? samples : 0,
                             EGL_NONE};
    // Deeper colours come first; they would be rounded differently from those of a window.
    EGLConfig configs[64];
    EGLint count = 0;
    if (eglChooseConfig(display, wanted, configs, 64, &count) == EGL_FALSE) { return nullptr; }
    for (EGLint i = 0; i < count; ++i) {
        EGLint red = 0;
        EGLint has = 0;
        eglGetConfigAttrib(display, configs[i], EGL_RED_SIZE, &red);
        eglGetConfigAttrib(display, configs[i], EGL_SAMPLES, &has);
        if (red == 8 && (samples > 1 || has <= 1)) { return configs[i]; }
    }
    return nullptr;
}

} // namespace

OffscreenWindow::OffscreenWindow(WindowSize size, int samples) : size_(size), samples_(samples) {}

OffscreenWindow::~OffscreenWindow() {
    if (library_ == nullptr || library_->display == EGL_NO_DISPLAY) { return; }
    eglMakeCurrent(library_->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglTerminate(library_->display); // and with it its context and surface
    eglReleaseThread();
}

bool OffscreenWindow::Fail(const char* why) {
    failure = why;
    return false;
}

bool OffscreenWindow::CreateContext() {
    // Where the library has something to say, the caller says it in one sentence.
    setenv("EGL_LOG_LEVEL", "fatal", 0);
    library_ = std::make_unique<Library>();
    EGLDisplay const display = library_->display = OpenDisplay();
    if (display == EGL_NO_DISPLAY || eglBindAPI(EGL_OPENGL_API) == EGL_FALSE) { return Fail(kNoDriver); }
    EGLConfig config = nullptr;
    for (int samples = samples_; config == nullptr && samples > 0; samples /= 2) {
        config = FindConfig(display, samples);
    }
    if (config == nullptr) { return Fail(kNoDriver); }
    library_->context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    if (library_->context == EGL_NO_CONTEXT) { return Fail(kNoDriver); }
    const EGLint size[] = {EGL_WIDTH, size_.width, EGL_HEIGHT, size_.height, EGL_NONE};
    library_->surface = eglCreatePbufferSurface(display, config, size);
    if (library_->surface == EGL_NO_SURFACE ||
        eglMakeCurrent(display, library_->surface, library_->surface, library_->context) == EGL_FALSE) {
        return Fail(kNoRoom);
    }
    GLint largest[2] = {};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, largest);
    return (size_.width <= largest[0] && size_.height <= largest[1]) || Fail(kNoRoom);
}

void OffscreenWindow::KeepCoverage() {
    const auto blend = reinterpret_cast<PFNGLBLENDFUNCSEPARATEPROC>(eglGetProcAddress("glBlendFuncSeparate"));
    if (blend != nullptr) { blend(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA); }
}

std::vector<std::uint8_t> OffscreenWindow::Pixels(int channels) const {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(size_.width) *
                                     static_cast<std::size_t>(size_.height) *
                                     static_cast<std::size_t>(channels));
    while (glGetError() != GL_NO_ERROR) {}
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, size_.width, size_.height, channels == 4 ? GL_RGBA : GL_RGB, GL_UNSIGNED_BYTE,
                 pixels.data());
    if (glGetError() != GL_NO_ERROR) { pixels.clear(); }
    return pixels;
}

} // namespace tarnwick
