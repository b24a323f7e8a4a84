#pragma once

#include "offscreen/framing.h"
#include "render/opengl_control.h"

namespace tarnwick {

// Of the window whose context is current, on its thread, after its OnSize: how it projects.
Lens CurrentLens();

// Turns the model from the view in which a new one appears. Drops what the mouse made of the view.
void Turn(const Rotation& rotation);

// The same for `view`, and frames the model, whatever the box of the scene is: sets the view's `centre` and
// `modelSize`.
void TurnFramed(OpenGLControl& view, const Rotation& rotation, const Framing& framing);

} // namespace tarnwick
