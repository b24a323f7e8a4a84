#pragma once

#include <GL/gl.h>

namespace tarnwick {

// Forgets the errors that the graphics library has noted, so that the next one is of the calls that follow.
// A context that was lost may give errors without end, so no more than a hundred are taken.
inline void DropErrors() {
    for (int i = 0; i < 100 && glGetError() != GL_NO_ERROR; ++i) {}
}

} // namespace tarnwick
