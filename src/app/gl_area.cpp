#include "app/gl_area.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QWindow>

namespace tarnwick {

GlArea::GlArea(QWidget* parent) : QWidget(parent) {
    for (const auto attribute :
         {Qt::WA_NativeWindow, Qt::WA_PaintOnScreen, Qt::WA_NoSystemBackground, Qt::WA_OpaquePaintEvent}) {
        setAttribute(attribute);
    }
    setMouseTracking(true);
}

GlArea::~GlArea() {
    Release();
}

void GlArea::Release() {
    if (view.residentLimit == 0) { return; }
    // If the context can't be made current any more, the buffers go with it.
    if (context_ != nullptr && windowHandle() != nullptr && context_->makeCurrent(windowHandle())) {
        view.OnDestroy();
    }
}

void GlArea::Create() {
    view.OnCreate();
}

bool GlArea::CreateContext() {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
    format.setDepthBufferSize(16);
    format.setStencilBufferSize(8); // no driver offers 16
    format.setSwapInterval(0);
    winId();
    QWindow* const window = windowHandle();
    if (window == nullptr) { return false; }
    window->destroy();
    window->setSurfaceType(QSurface::OpenGLSurface);
    window->setFormat(format);
    window->create();
    context_ = new QOpenGLContext(this);
    context_->setFormat(format);
    return context_->create() && context_->makeCurrent(window);
}

void GlArea::SwapBuffers() {
    context_->swapBuffers(windowHandle());
}

WindowSize GlArea::DrawableSize() {
    const QSize device = DeviceSize();
    return {device.width(), device.height()};
}

bool GlArea::IsControlKeyDown() {
    return QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier);
}

void (*GlArea::FindFunction(const char* name))() {
    return context_->getProcAddress(name);
}

QSize GlArea::DevicePixels(QSize logical) const {
    const double ratio = devicePixelRatioF();
    return {qRound(logical.width() * ratio), qRound(logical.height() * ratio)};
}

WindowPoint GlArea::PointOf(const QMouseEvent& event) const {
    const QPointF point = event.position() * devicePixelRatioF();
    return {qFloor(point.x()), qFloor(point.y())};
}

void GlArea::paintEvent(QPaintEvent*) {
    if (!window()->isMinimized()) { view.Redraw(); }
}

void GlArea::mousePressEvent(QMouseEvent* event) {
    const WindowPoint point = PointOf(*event);
    switch (event->button()) {
    case Qt::LeftButton:
        view.OnLButtonDown(point);
        break;
    case Qt::MiddleButton:
        view.OnMButtonDown(point);
        break;
    case Qt::RightButton:
        view.OnRButtonDown(point);
        break;
    default:
        break;
    }
}

void GlArea::mouseReleaseEvent(QMouseEvent* event) {
    const WindowPoint point = PointOf(*event);
    switch (event->button()) {
    case Qt::LeftButton:
        view.OnLButtonUp(point);
        break;
    case Qt::MiddleButton:
        view.OnMButtonUp(point);
        break;
    case Qt::RightButton:
        view.OnRButtonUp(point);
        break;
    default:
        break;
    }
}

void GlArea::mouseMoveEvent(QMouseEvent* event) {
    view.OnMouseMove(PointOf(*event));
}

} // namespace tarnwick
