// Every sample drawn by the graphics library from its own copy of the arrays and from ours: the same pixels
// and the same picks. It takes a real library, and no display.

#include "formats/load_commands.h"
#include "load/load_file.h"
#include "load/no_controls.h"
#include "platform/console.h"
#include "render/opengl_control.h"

#include <gtest/gtest.h>

#include <EGL/egl.h>
#include <GL/gl.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 300;
constexpr int kHeight = 210;

using Pixels = std::vector<unsigned char>;

// A buffer that is nowhere shown. The context is the thread's until the program ends.
class BufferWindow final : public WindowPort {
public:
    bool CreateContext() override {
        setenv("EGL_PLATFORM", "surfaceless", 0);
        EGLDisplay const display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
        const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_BIT,   EGL_DEPTH_SIZE,  16,
                                 EGL_NONE};
        const EGLint size[] = {EGL_WIDTH, kWidth, EGL_HEIGHT, kHeight, EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (eglInitialize(display, nullptr, nullptr) == EGL_FALSE ||
            eglBindAPI(EGL_OPENGL_API) == EGL_FALSE ||
            eglChooseConfig(display, wanted, &config, 1, &count) == EGL_FALSE || count == 0) {
            return false;
        }
        EGLSurface const surface = eglCreatePbufferSurface(display, config, size);
        EGLContext const context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
        return eglMakeCurrent(display, surface, surface, context) != EGL_FALSE;
    }
    void SwapBuffers() override {}
    WindowSize DrawableSize() override { return {kWidth, kHeight}; }
    bool IsControlKeyDown() override { return false; }
    void (*FindFunction(const char* name))() override { return eglGetProcAddress(name); }
};

Pixels ReadPicture() {
    Pixels pixels(std::size_t{4} * kWidth * kHeight);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

// What a scene looks like, filled and in lines, whole and with each thing that was picked, and what was
// picked.
struct Seen {
    std::vector<Pixels> pictures;
    std::vector<std::int32_t> picks;

    bool operator==(const Seen&) const = default;
};

class ResidentPictures : public ::testing::TestWithParam<std::string> {
protected:
    ResidentPictures() {
        static BufferWindow window;
        static std::unique_ptr<OpenGLControl> only = [] {
            auto made = std::make_unique<OpenGLControl>(window);
            made->OnCreate();
            made->OnSize(OpenGLControl::kRestored, kWidth, kHeight);
            return made;
        }();
        view = only.get();
    }
    ~ResidentPictures() override { view->OnDestroy(); }

    // Places where something is to be seen, and the corner.
    static std::vector<WindowPoint> Places(const Pixels& picture) {
        std::vector<WindowPoint> drawn;
        for (int row = 0; row < kHeight; ++row) {
            for (int x = 0; x < kWidth; ++x) {
                const unsigned char* const pixel = picture.data() + 4 * (row * kWidth + x);
                const unsigned char* const corner = picture.data();
                if (!std::equal(pixel, pixel + 3, corner)) { drawn.push_back({x, kHeight - row}); }
            }
        }
        std::vector<WindowPoint> places{{0, kHeight}};
        for (std::size_t part = 1; part < 4 && !drawn.empty(); ++part) {
            places.push_back(drawn[drawn.size() * part / 4]);
        }
        return places;
    }

    Seen Look() {
        Seen seen;
        view->selectedIndex = -1;
        for (const int wireframe : {0, 1}) {
            view->wireframe = wireframe;
            view->Redraw();
            seen.pictures.push_back(ReadPicture());
            std::vector<WindowPoint> places = Places(seen.pictures.front());
            if (wireframe == 1) { places.resize(std::min(places.size(), std::size_t{2})); } // lines take long
            for (const WindowPoint place : places) {
                view->PickAt(place);
                // The pick's own picture where nothing else was picked, else that of the selection.
                seen.pictures.push_back(ReadPicture());
                seen.picks.insert(seen.picks.end(), {view->selectedIndex, view->selectedFaceId});
            }
        }
        return seen;
    }

    // Looks at the scene from our arrays, from buffers, and from buffers for some of it.
    void ExpectTheSame(const std::string& what) {
        view->residentLimit = 0;
        const Seen plain = Look();
        for (const std::size_t limit : {OpenGLControl::usualResidentLimit, std::size_t{100000}}) {
            view->DeleteDisplayList();
            view->residentLimit = limit;
            EXPECT_TRUE(Look() == plain) << what << ", at most " << limit << " bytes";
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        }
        view->DeleteDisplayList();
        view->residentLimit = 0;
        picked =
            picked || std::any_of(plain.picks.begin(), plain.picks.end(), [](auto pick) { return pick > 0; });
        hasShape = hasShape || Places(plain.pictures.front()).size() > 1;
    }

    OpenGLControl* view;
    bool hasShape = false; // not the background alone
    bool picked = false;
};

TEST_P(ResidentPictures, AreTheSamePixelByPixel) {
    if (glGetString(GL_RENDERER) == nullptr) { GTEST_SKIP() << "no context of the graphics library"; }
    NoControls controls;
    LoadDispatch dispatch{*view, controls, kLoadCommands};
    const std::string path = std::string(TARNWICK_SAMPLES) + '/' + GetParam();
    EnableOutput(false);
    ASSERT_TRUE(LoadFile(dispatch, path.c_str(), nullptr, true));
    ASSERT_GT(view->loaded.drawnTriangles, 0);
    ExpectTheSame("as loaded");
    for (std::int32_t depth = 0; depth <= view->loaded.maxDepth && view->loaded.maxDepth > 0; ++depth) {
        ChangeDepth(dispatch, depth);
        ExpectTheSame("at depth " + std::to_string(depth));
    }
    EXPECT_TRUE(hasShape);
    EXPECT_TRUE(picked || view->loaded.resultMesh != nullptr);
}

std::vector<std::string> Samples() {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(TARNWICK_SAMPLES)) {
        const std::string kind = entry.path().extension();
        if (kind.starts_with(".stp")) { names.push_back(fs::relative(entry.path(), TARNWICK_SAMPLES)); }
    }
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(OfSamples, ResidentPictures, ::testing::ValuesIn(Samples()), [](const auto& sample) {
    std::string name = sample.param;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; },
        '_');
    return name;
});

} // namespace
} // namespace tarnwick::test
