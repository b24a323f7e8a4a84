// Context, lights, viewport and perspective.

#include "render/opengl_control.h"

#include <GL/gl.h>
#include <GL/glu.h>

namespace tarnwick {

void OpenGLControl::OnCreate() {
    dragMode = kNoDrag;
    hasContext_ = window_.CreateContext();
    if (!hasContext_) { return; }
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();

    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHT1);
    glEnable(GL_LIGHT2);
    const GLfloat position[] = {100, 0, 100, 1};
    glLightfv(GL_LIGHT1, GL_POSITION, position);
    const GLfloat dim[] = {0.1f, 0.1f, 0.1f, 1};
    glLightfv(GL_LIGHT2, GL_AMBIENT, dim);
    // The light of the pick pass. With the library's own ambient 0.2 it adds up to 1.0, so that a code
    // reaches the pixel unchanged whatever the normals are.
    const GLfloat bright[] = {0.8f, 0.8f, 0.8f, 1};
    glLightfv(GL_LIGHT3, GL_AMBIENT, bright);
    glDisable(GL_LIGHT3);

    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glClearColor(0.9f, 0.9f, 1.0f, 1.0f);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_NORMALIZE);
    InitLights();
}

void OpenGLControl::InitLights() {
    glDisable(GL_COLOR_MATERIAL);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glDisable(GL_LIGHT1);
    glDisable(GL_LIGHT0);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);

    const GLfloat ambient[] = {0.3f, 0.3f, 0.3f, 1.0f};
    const GLfloat diffuse[] = {0.8f, 0.8f, 0.8f, 1.0f};
    const GLfloat specular[] = {0.2f, 0.3f, 0.2f, 1.0f};
    // A direction, set under the identity matrix: the light moves with the eye and not with the model.
    const GLfloat position[] = {-1.0f, 0.0f, 0.5f, 0.0f};
    glLightfv(GL_LIGHT1, GL_AMBIENT, ambient);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, diffuse);
    glLightfv(GL_LIGHT1, GL_SPECULAR, specular);
    glLightfv(GL_LIGHT1, GL_POSITION, position);
    glEnable(GL_LIGHT1);

    const GLfloat black[] = {0, 0, 0, 1};
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, black);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_NORMALIZE);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
}

void OpenGLControl::OnSize(int type, int width, int height) {
    viewWidth = width;
    viewHeight = height;
    if (!hasContext_ || width < 1 || height < 1 || type == kMinimised) { return; }
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(40.0, static_cast<double>(width) / height, 1.001, 600.0);
    glTranslatef(0, 0, -25);
    glViewport(0, 0, width, height);
    // The projection matrix stays selected until the next frame selects the modelview matrix.
}

} // namespace tarnwick
