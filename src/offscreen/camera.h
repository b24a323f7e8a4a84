#pragma once

#include "offscreen/framing.h"
#include "render/opengl_control.h"

namespace tarnwick {

// The lens of the window whose context is current. Call it on the window's thread, after its OnSize.
Lens CurrentLens();

// Turns the model from the view in which a new one appears. Drops what the mouse has changed.
void Turn(const Rotation& rotation);

// The same, and frames the model, whatever the box of the scene is: sets the view's `centre` and `modelSize`.
void TurnFramed(OpenGLControl& view, const Rotation& rotation, const Framing& framing);

} // namespace tarnwick
