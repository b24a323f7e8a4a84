// The time of a frame beside that of the graphics library alone for the same arrays, in a buffer without a
// window, from our arrays and from buffers of the library. With the name of a file, also a frame of that.
// Built against a library that does nothing (tests/support/silent_gl.cpp), it tells the drawing window's own
// time.

#include "formats/load_commands.h"
#include "load/load_file.h"
#include "load/no_controls.h"
#include "platform/console.h"
#include "render/opengl_control.h"

#include <benchmark/benchmark.h>

#ifndef TARNWICK_NO_LIBRARY
#include <EGL/egl.h>
#endif
#include <GL/gl.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <vector>

namespace {

using namespace tarnwick;

constexpr int kWidth = 898;
constexpr int kHeight = 628;

// A buffer of the size of the drawing area; nothing is shown.
class BufferWindow final : public WindowPort {
public:
#ifdef TARNWICK_NO_LIBRARY
    bool CreateContext() override {
        return true;
    }
#else
    bool CreateContext() override {
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
#endif
    void SwapBuffers() override {}
    WindowSize DrawableSize() override {
        return {kWidth, kHeight};
    }
    bool IsControlKeyDown() override {
        return false;
    }
#ifndef TARNWICK_NO_LIBRARY
    void (*FindFunction(const char* name))() override {
        return eglGetProcAddress(name);
    }
#endif
};

// Faces of `steps` by `steps` squares each, side by side, in a plane of 10 by 10.
struct Scene {
    std::deque<std::vector<float>> floats;
    std::deque<std::vector<std::uint32_t>> indices;
    std::deque<StepFaceB> faces;
    std::vector<StepFaceB*> meshes;
    std::deque<std::vector<float>> matrices;
    std::deque<DrawItem> items;
    std::vector<DrawItem*> pointers;
    DrawList list{};

    Scene(int faceCount, int steps, int itemCount) {
        const int across = static_cast<int>(std::ceil(std::sqrt(faceCount)));
        for (int i = 0; i < faceCount; ++i) {
            AddFace(static_cast<float>(i % across), static_cast<float>(i / across),
                    10.0f / static_cast<float>(across), steps);
        }
        const int itemsAcross = static_cast<int>(std::ceil(std::sqrt(itemCount)));
        for (int i = 0; i < itemCount; ++i) {
            DrawItem& item = items.emplace_back();
            item.meshes = meshes.data();
            item.meshCount = faceCount;
            if (itemCount > 1) {
                const float scale = 1.0f / static_cast<float>(itemsAcross);
                auto& matrix = matrices.emplace_back(16, 0.0f);
                matrix[0] = matrix[5] = matrix[10] = scale;
                matrix[12] = 10 * scale * static_cast<float>(i % itemsAcross);
                matrix[13] = 10 * scale * static_cast<float>(i / itemsAcross);
                matrix[15] = 1;
                item.matrix = matrix.data();
            }
            pointers.push_back(&item);
        }
        list.items = pointers.data();
        list.count = itemCount;
    }

    void AddFace(float column, float row, float size, int steps) {
        auto& vertices = floats.emplace_back();
        auto& normals = floats.emplace_back();
        auto& triangles = indices.emplace_back();
        for (int y = 0; y <= steps; ++y) {
            for (int x = 0; x <= steps; ++x) {
                const float step = size / static_cast<float>(steps);
                vertices.insert(vertices.end(), {column * size + step * static_cast<float>(x),
                                                 row * size + step * static_cast<float>(y), 0});
                normals.insert(normals.end(), {0, 0, 1});
            }
        }
        const auto width = static_cast<std::uint32_t>(steps + 1);
        for (std::uint32_t y = 0; y + 1 < width; ++y) {
            for (std::uint32_t x = 0; x + 1 < width; ++x) {
                const std::uint32_t corner = y * width + x;
                triangles.insert(triangles.end(), {corner, corner + 1, corner + width, corner + width,
                                                   corner + 1, corner + width + 1});
            }
        }
        StepFaceB& face = faces.emplace_back();
        face.vertexCount = face.normalCount = static_cast<std::int32_t>(vertices.size() / 3);
        face.triangleCount = static_cast<std::int32_t>(triangles.size() / 3);
        face.vertices = vertices.data();
        face.normals = normals.data();
        face.triangles = triangles.data();
        const float colour[4] = {0.6f, 0.7f, 0.8f, 1.0f};
        std::copy(std::begin(colour), std::end(colour), face.colour);
        meshes.push_back(&face);
    }
};

const Scene& FacesScene() {
    static const Scene scene(1000, 22, 1); // 968 triangles each
    return scene;
}
const Scene& PartsScene() {
    static const Scene scene(10, 2, 10000); // 80 triangles each
    return scene;
}

OpenGLControl& View() {
    static BufferWindow window;
    static OpenGLControl view(window);
    static const bool ready = [] {
        view.OnCreate();
        view.OnSize(OpenGLControl::kRestored, kWidth, kHeight);
        if (glGetString(GL_RENDERER) == nullptr) {
            std::fprintf(stderr, "no context of the graphics library\n");
            std::exit(2);
        }
        std::printf("%s\n", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
        return true;
    }();
    static_cast<void>(ready);
    return view;
}

void Show(const Scene& scene) {
    OpenGLControl& view = View();
    static DrawList shown;
    shown = scene.list;
    view.loaded.drawList = &shown;
    view.loaded.drawnTriangles = 1;
    const float box[6] = {0, 10, 0, 10, 0, 0};
    std::copy(std::begin(box), std::end(box), view.loaded.box);
    view.centre[0] = view.centre[1] = 5;
    view.modelSize = 20;
    ++view.sceneNumber;
    view.Redraw(); // the states, and the first look at the scene
    view.Redraw();
}

void Frame(benchmark::State& state, const Scene& scene) {
    Show(scene);
    for (auto _ : state) { View().Redraw(); }
}

// The arrays are in buffers of the library.
void ResidentFrame(benchmark::State& state, const Scene& scene) {
    View().residentLimit = OpenGLControl::usualResidentLimit;
    Frame(state, scene);
    View().residentLimit = 0;
    View().DeleteDisplayList();
}

// A frame of a file as the viewer shows it.
void FileFrame(benchmark::State& state, const char* path, std::size_t residentLimit) {
    OpenGLControl& view = View();
    NoControls controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    EnableOutput(false);
    LoadFile(dispatch, path, nullptr, true);
    if (view.loaded.drawnTriangles == 0) { return state.SkipWithError("nothing to draw"); }
    view.residentLimit = residentLimit;
    view.Redraw();
    for (auto _ : state) { view.Redraw(); }
    view.residentLimit = 0;
    view.DeleteDisplayList();
}

// The same calls of the library from a flat list, and nothing around them.
void LibraryAlone(benchmark::State& state, const Scene& scene) {
    Show(scene);
    for (auto _ : state) {
        glPushMatrix();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glScalef(36.31f / 20, 36.31f / 20, 36.31f / 20);
        glTranslatef(-5, -5, 0);
        for (const DrawItem& item : scene.items) {
            glPushMatrix();
            if (item.matrix != nullptr) { glMultMatrixf(item.matrix); }
            for (const StepFaceB& face : scene.faces) {
                glColor4fv(face.colour);
                glVertexPointer(3, GL_FLOAT, 0, face.vertices);
                glNormalPointer(GL_FLOAT, 0, face.normals);
                glDrawElements(GL_TRIANGLES, 3 * face.triangleCount, GL_UNSIGNED_INT, face.triangles);
            }
            glPopMatrix();
        }
        glFinish();
        glPopMatrix();
    }
}

void FacesFrame(benchmark::State& state) {
    Frame(state, FacesScene());
}
void FacesResidentFrame(benchmark::State& state) {
    ResidentFrame(state, FacesScene());
}
void FacesLibraryAlone(benchmark::State& state) {
    LibraryAlone(state, FacesScene());
}
void PartsFrame(benchmark::State& state) {
    Frame(state, PartsScene());
}
void PartsResidentFrame(benchmark::State& state) {
    ResidentFrame(state, PartsScene());
}
void PartsLibraryAlone(benchmark::State& state) {
    LibraryAlone(state, PartsScene());
}

// What a new scene costs once: every index of a million triangles is compared with its face's vertices.
void FirstLook(benchmark::State& state) {
    SafeIndices safe;
    for (auto _ : state) {
        safe.Check(&FacesScene().list, nullptr);
        benchmark::DoNotOptimize(safe);
    }
}

BENCHMARK(FacesFrame)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(FacesResidentFrame)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(FacesLibraryAlone)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PartsFrame)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PartsResidentFrame)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PartsLibraryAlone)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(FirstLook)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    setenv("EGL_PLATFORM", "surfaceless", 0); // no display is needed
    benchmark::Initialize(&argc, argv);
    if (argc > 1) { // a file
        const auto add = [path = argv[1]](const char* name, std::size_t limit) {
            benchmark::RegisterBenchmark(name, FileFrame, path, limit)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        };
        add("FileFrame", 0);
        add("FileResidentFrame", OpenGLControl::usualResidentLimit);
    }
    benchmark::RunSpecifiedBenchmarks();
}
