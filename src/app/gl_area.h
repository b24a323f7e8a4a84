#pragma once

#include "render/opengl_control.h"

#include <QWidget>

class QOpenGLContext;

namespace tarnwick {

// The native child window in which OpenGLControl draws. It hands the events over in device pixels, so that a
// click hits what is under it at any scale factor.
//
// A native widget, not a window container: drops on it reach the dialog, and a click leaves the focus where
// it was.
class GlArea final : public QWidget, public WindowPort {
public:
    explicit GlArea(QWidget* parent);
    ~GlArea() override;

    // Creates the window's context for the current geometry. Call once, before the dialog is shown.
    void Create();
    // Gives back what the graphics library keeps for the view. Call it before the dialog closes, which takes
    // the window of the context away.
    void Release();
    // The size that the view draws in.
    QSize DeviceSize() const { return DevicePixels(size()); }
    QSize DevicePixels(QSize logical) const;

    bool CreateContext() override;
    void SwapBuffers() override;
    WindowSize DrawableSize() override;
    bool IsControlKeyDown() override;
    void (*FindFunction(const char* name))() override;

    OpenGLControl view{*this};

protected:
    QPaintEngine* paintEngine() const override { return nullptr; }
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    WindowPoint PointOf(const QMouseEvent& event) const;

    QOpenGLContext* context_ = nullptr;
};

} // namespace tarnwick
