#pragma once

#include "load/scene_view.h"
#include "product/safe_indices.h"
#include "render/resident_arrays.h"
#include "render/window_port.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace tarnwick {

// A place in the window in device pixels, y downwards.
struct WindowPoint {
    int x = 0;
    int y = 0;
};

// The drawing window, independent of the window system: its owner calls the handlers and implements the
// ports. There is no camera record. The modelview and projection matrices of the graphics library are the
// view; the mouse changes them in place, so a new model appears under the rotation, pan and zoom of the one
// before. Everything runs on the one thread that has the context.
class OpenGLControl final : public SceneView {
public:
    enum DragMode : std::uint32_t { kRotate = 0, kZoom = 1, kPan = 2, kNoDrag = 3 };
    // Why a size changed, as OnSize takes it.
    enum SizeType { kRestored = 0, kMinimised = 1, kMaximised = 2 };

    explicit OpenGLControl(WindowPort& window) : window_(window) {}

    // Makes the context, its lights and its fixed states.
    void OnCreate();
    // Gives back what the graphics library keeps. Call it while the context is still current.
    void OnDestroy() { resident_.Drop(); }
    // Sets viewport and perspective. A zoom of the perspective is lost.
    void OnSize(int type, int width, int height);
    void OnLButtonDown(WindowPoint point);
    void OnMButtonDown(WindowPoint point);
    void OnRButtonDown(WindowPoint point);
    // The end of a drag; when the button comes up exactly where it went down, also a pick.
    void OnLButtonUp(WindowPoint point);
    void OnMButtonUp(WindowPoint point);
    void OnRButtonUp(WindowPoint point);
    void OnMouseMove(WindowPoint point);

    // Draws a frame and sets `framesPerSecond`.
    void Redraw() override;
    void DeleteDisplayList() override { resident_.Drop(); }
    void ShowProgress(std::int32_t filesRead, std::int32_t filesKnown) override;

    // Selects the face, placed part or box at the point, or nothing, and draws again if that is a change.
    void PickAt(WindowPoint point);

    // Writes what the window shows to a bitmap file. Returns 1; or 0, told on standard output, when that
    // fails.
    int grab_GL(const char* path);

    DialogPort* dialog = nullptr; // the dialog around the window; null for none
    std::int32_t viewWidth = 0;   // as last given to OnSize
    std::int32_t viewHeight = 0;
    double lastVector[3] = {};   // of the trackball while rotating and panning; x, y in pixels while zooming
    WindowPoint pressPoint = {}; // where the left button went down
    std::uint32_t dragMode = kNoDrag;
    std::int32_t wireframe = 0;                     // 1 draws lines, any other value fills
    float background[4] = {0.8f, 0.8f, 0.8f, 1.0f}; // red, green, blue, alpha

    // A frame scales `modelSize` to this: the f32 just below 36.31.
    static constexpr float apparentSize = 36.309998f;

    // The most bytes of arrays that the graphics library keeps from frame to frame. With 0 it keeps none, and
    // each frame hands it all of them.
    std::size_t residentLimit = 0;
    // Half of what the smallest cards of today have; the other half is for the desktop and for frames.
    static constexpr std::size_t usualResidentLimit = std::size_t{1} << 30;

    std::string selectedText; // "#" and the number of the picked face, or the name of the picked product
    std::int32_t selectedContainerType = 0; // of the last picked face: 1 solid, 2 shell, 0 none

private:
    enum Pass { kDisplay = 0, kPick = 1 };
    struct TrackballPoint {
        double x, y, z;
    };

    // The cube that is shown while nothing is loaded: x, y, distance, rotations about x and y.
    static constexpr float cubeTransform[5] = {0, 0, 10, 0, 0};
    static constexpr float cubeShade = 0.5f;

    void InitLights();
    TrackballPoint TrackballVector(WindowPoint point) const;
    void StartVector(WindowPoint point);
    void EndDrag() { dragMode = kNoDrag; }

    void DrawFrame(Pass pass);
    // The frame without the swap that shows it.
    void DrawScene(Pass pass);
    void DrawFaces(Pass pass);
    void DrawMesh(const StepFaceB& mesh);
    void DrawResultMesh();
    void DrawBoxes(Pass pass);
    void DrawCube(Pass pass) const;

    void TellPickedFace();
    void TellMaterial() const;
    void TellPickedProduct(const ProductNode* product);
    void ReadScreen(int width, int height, unsigned char* pixels, std::size_t bytes);

    WindowPort& window_;
    bool hasContext_ = false;
    SafeIndices safe_; // for the scene of `safeScene_`
    std::uint32_t safeScene_ = 0;
    bool safeKnown_ = false;
    ResidentArrays resident_;
};

} // namespace tarnwick
