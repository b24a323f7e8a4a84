// Reads and sets the matrices of the graphics library, in which the drawing window keeps its view.

#include "offscreen/camera.h"

#include <GL/gl.h>

#include <algorithm>
#include <limits>

namespace tarnwick {

namespace {

void SetModelView(const Rotation& rotation, double across, double up) {
    GLdouble matrix[16] = {};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            matrix[4 * column + row] = rotation[3 * row + column];
        }
    }
    matrix[12] = across;
    matrix[13] = up;
    matrix[15] = 1;
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(matrix);
}

} // namespace

Lens CurrentLens() {
    // A point is seen within the picture where x * m[0] and y * m[5] aren't beyond z * m[11] + m[15].
    GLdouble m[16] = {};
    glGetDoublev(GL_PROJECTION_MATRIX, m);
    return {-m[11] / m[0], -m[11] / m[5], -m[15] / m[11]};
}

void Turn(const Rotation& rotation) {
    SetModelView(rotation, 0, 0);
}

void TurnFramed(OpenGLControl& view, const Rotation& rotation, const Framing& framing) {
    constexpr auto kLargest = static_cast<double>(std::numeric_limits<float>::max());
    for (int axis = 0; axis < 3; ++axis) {
        view.centre[axis] = static_cast<float>(std::clamp(framing.centre[axis], -kLargest, kLargest));
    }
    view.modelSize = static_cast<float>(
        std::min(static_cast<double>(OpenGLControl::apparentSize) / framing.scale, kLargest));
    SetModelView(rotation, framing.across, framing.up);
}

} // namespace tarnwick
