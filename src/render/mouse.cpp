// Mouse drags as changes of the matrices.

#include "platform/console.h"
#include "render/opengl_control.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

namespace tarnwick {

OpenGLControl::TrackballPoint OpenGLControl::TrackballVector(WindowPoint point) const {
    // A window can be resized to nothing during a drag, which must not lead to a division by zero.
    const double width = std::max(viewWidth, 1);
    const double height = std::max(viewHeight, 1);
    const double x = (2.0 * point.x - width) / width;
    const double y = (height - 2.0 * point.y) / height;
    float d = static_cast<float>(std::sqrt(x * x + y * y));
    if (!(d < 1.0f)) { d = 1.0f; }
    // A little more than 1, to keep z above 0 on the rim.
    const float z = static_cast<float>(std::sqrt(1.001 - d * d));
    const double length = std::sqrt(x * x + y * y + static_cast<double>(z) * z);
    return {x / length, y / length, z / length};
}

void OpenGLControl::StartVector(WindowPoint point) {
    const TrackballPoint v = TrackballVector(point);
    lastVector[0] = v.x;
    lastVector[1] = v.y;
    lastVector[2] = v.z;
}

void OpenGLControl::OnLButtonDown(WindowPoint point) {
    if (window_.IsControlKeyDown()) { ConsolePrint("Control clic\n"); }
    dragMode = kRotate;
    StartVector(point);
    pressPoint = point;
    if (hasContext_) { glMatrixMode(GL_MODELVIEW); }
}

void OpenGLControl::OnMButtonDown(WindowPoint point) {
    dragMode = kPan;
    StartVector(point);
}

void OpenGLControl::OnRButtonDown(WindowPoint point) {
    dragMode = kZoom;
    lastVector[0] = point.x;
    lastVector[1] = point.y;
    if (hasContext_) { glMatrixMode(GL_PROJECTION); }
}

void OpenGLControl::OnLButtonUp(WindowPoint point) {
    EndDrag();
    if (point.x == pressPoint.x && point.y == pressPoint.y) { PickAt(point); }
}

void OpenGLControl::OnMButtonUp(WindowPoint) {
    EndDrag();
}

void OpenGLControl::OnRButtonUp(WindowPoint) {
    EndDrag();
}

void OpenGLControl::OnMouseMove(WindowPoint point) {
    if (!hasContext_) { return; }
    double* const last = lastVector;
    GLfloat former[16]; // the matrix onto which a drag multiplies its change
    switch (dragMode) {
    case kRotate: {
        const TrackballPoint v = TrackballVector(point);
        const double dx = v.x - last[0];
        const double dy = v.y - last[1];
        const double dz = v.z - last[2];
        const auto speed = static_cast<float>(std::sqrt(dx * dx + dy * dy + dz * dz));
        if (speed > 0.0001) {
            // Multiplied from the left, so that the model turns about the axes of the screen.
            glGetFloatv(GL_MODELVIEW_MATRIX, former);
            glLoadIdentity();
            glRotatef(speed * 90.0f, static_cast<float>(last[1] * v.z - last[2] * v.y),
                      static_cast<float>(last[2] * v.x - last[0] * v.z),
                      static_cast<float>(last[0] * v.y - last[1] * v.x));
            glMultMatrixf(former);
            Redraw();
        }
        last[0] = v.x;
        last[1] = v.y;
        last[2] = v.z;
        break;
    }
    case kZoom: {
        // Scales the selected matrix: the projection at a drag's first move, since the button selected it,
        // and the modelview afterwards, since every frame ends with that one selected.
        const auto f = static_cast<float>(1 + 0.008 * ((point.y - last[1]) + (point.x - last[0])));
        glScalef(f, f, f);
        Redraw();
        last[0] = point.x;
        last[1] = point.y;
        break;
    }
    case kPan: {
        const TrackballPoint v = TrackballVector(point);
        glGetFloatv(GL_MODELVIEW_MATRIX, former);
        glLoadIdentity();
        glTranslatef(static_cast<float>((v.x - last[0]) * 10), static_cast<float>((v.y - last[1]) * 10), 0);
        glMultMatrixf(former);
        Redraw();
        last[0] = v.x;
        last[1] = v.y;
        last[2] = v.z;
        break;
    }
    default:
        std::fill(last, last + 3, 0.0);
        break;
    }
    glGetFloatv(GL_MODELVIEW_MATRIX, former); // its value isn't used
}

} // namespace tarnwick
