// In place of the graphics library: calls that do nothing and need no memory. The view is one of 64 by 48
// pixels, all of one colour.

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cstddef>

extern "C" {

void glGetIntegerv(GLenum name, GLint* values) {
    constexpr GLint kViewport[4] = {0, 0, 64, 48};
    if (name == GL_VIEWPORT) {
        std::copy_n(kViewport, 4, values);
    } else if (name == GL_MAX_VIEWPORT_DIMS) {
        std::fill_n(values, 2, 16384);
    } else {
        values[0] = GL_BACK;
    }
}
GLenum glGetError() {
    return GL_NO_ERROR;
}
const GLubyte* glGetString(GLenum name) {
    return name == GL_RENDERER ? reinterpret_cast<const GLubyte*>("none") : nullptr;
}
void glGetFloatv(GLenum, GLfloat* values) {
    std::fill_n(values, 16, 0.0f);
}
void glGetDoublev(GLenum, GLdouble* values) {
    std::fill_n(values, 16, 0.0);
}
void glReadPixels(GLint, GLint, GLsizei width, GLsizei height, GLenum format, GLenum, void* pixels) {
    const int channels = format == GL_RGBA ? 4 : 3;
    std::fill_n(static_cast<unsigned char*>(pixels), static_cast<std::size_t>(channels * width * height),
                static_cast<unsigned char>(99));
}

void glAlphaFunc(GLenum, GLclampf) {}
void glBegin(GLenum) {}
void glBlendFunc(GLenum, GLenum) {}
void glClear(GLbitfield) {}
void glClearColor(GLclampf, GLclampf, GLclampf, GLclampf) {}
void glColor3f(GLfloat, GLfloat, GLfloat) {}
void glColor4f(GLfloat, GLfloat, GLfloat, GLfloat) {}
void glColor4fv(const GLfloat*) {}
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
void glLineWidth(GLfloat) {}
void glLoadIdentity() {}
void glLoadMatrixd(const GLdouble*) {}
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
