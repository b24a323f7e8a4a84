// A graphics library that does nothing and needs no memory: a view of 64 by 48 pixels, all of one colour.

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cstddef>

extern "C" {

void glGetIntegerv(GLenum name, GLint* values) {
    if (name != GL_VIEWPORT) {
        values[0] = GL_BACK;
        return;
    }
    const GLint viewport[4] = {0, 0, 64, 48};
    std::copy_n(viewport, 4, values);
}
GLenum glGetError() {
    return GL_NO_ERROR;
}
const GLubyte* glGetString(GLenum) {
    return nullptr;
}
void glGetFloatv(GLenum, GLfloat* values) {
    std::fill_n(values, 16, 0.0f);
}
void glReadPixels(GLint, GLint, GLsizei width, GLsizei height, GLenum, GLenum, void* pixels) {
    std::fill_n(static_cast<unsigned char*>(pixels), static_cast<std::size_t>(3 * width * height),
                static_cast<unsigned char>(99));
}

void glAlphaFunc(GLenum, GLclampf) {}
void glBegin(GLenum) {}
void glBlendFunc(GLenum, GLenum) {}
void glClear(GLbitfield) {}
void glClearColor(GLclampf, GLclampf, GLclampf, GLclampf) {}
void glColor3f(GLfloat, GLfloat, GLfloat) {}
void glColor4f(GLfloat, GLfloat, GLfloat, GLfloat) {}
void glColorMaterial(GLenum, GLenum) {}
void glColorPointer(GLint, GLenum, GLsizei, const void*) {}
void glDisable(GLenum) {}
void glDisableClientState(GLenum) {}
void glDrawElements(GLenum, GLsizei, GLenum, const void*) {}
void glEnable(GLenum) {}
void glEnableClientState(GLenum) {}
void glEnd() {}
void glFinish() {}
void glLightModeli(GLenum, GLint) {}
void glLightfv(GLenum, GLenum, const GLfloat*) {}
void glLoadIdentity() {}
void glMaterialfv(GLenum, GLenum, const GLfloat*) {}
void glMatrixMode(GLenum) {}
void glMultMatrixf(const GLfloat*) {}
void glNormal3f(GLfloat, GLfloat, GLfloat) {}
void glNormalPointer(GLenum, GLsizei, const void*) {}
void glOrtho(GLdouble, GLdouble, GLdouble, GLdouble, GLdouble, GLdouble) {}
void glPixelStorei(GLenum, GLint) {}
void glPolygonMode(GLenum, GLenum) {}
void glPopAttrib() {}
void glPopMatrix() {}
void glPushAttrib(GLbitfield) {}
void glPushMatrix() {}
void glReadBuffer(GLenum) {}
void glRotatef(GLfloat, GLfloat, GLfloat, GLfloat) {}
void glScalef(GLfloat, GLfloat, GLfloat) {}
void glTranslatef(GLfloat, GLfloat, GLfloat) {}
void glVertex3f(GLfloat, GLfloat, GLfloat) {}
void glVertexPointer(GLint, GLenum, GLsizei, const void*) {}
void glViewport(GLint, GLint, GLsizei, GLsizei) {}
void gluPerspective(GLdouble, GLdouble, GLdouble, GLdouble) {}

} // extern "C"
