// The calls of the graphics library that a frame makes, doing nothing: what is left of a frame is the drawing
// window's own time.

#include <GL/gl.h>
#include <GL/glu.h>

extern "C" {

void glAlphaFunc(GLenum, GLclampf) {}
void glBegin(GLenum) {}
void glBlendFunc(GLenum, GLenum) {}
void glClear(GLbitfield) {}
void glClearColor(GLclampf, GLclampf, GLclampf, GLclampf) {}
void glColor3f(GLfloat, GLfloat, GLfloat) {}
void glColor4f(GLfloat, GLfloat, GLfloat, GLfloat) {}
void glColor4fv(const GLfloat*) {}
void glColorMaterial(GLenum, GLenum) {}
void glColorPointer(GLint, GLenum, GLsizei, const GLvoid*) {}
void glDisable(GLenum) {}
void glDisableClientState(GLenum) {}
void glDrawElements(GLenum, GLsizei, GLenum, const GLvoid*) {}
void glEnable(GLenum) {}
void glEnableClientState(GLenum) {}
void glEnd() {}
void glFinish() {}
GLenum glGetError() {
    return GL_NO_ERROR;
}
void glGetFloatv(GLenum, GLfloat*) {}
void glGetIntegerv(GLenum, GLint*) {}
const GLubyte* glGetString(GLenum) {
    return reinterpret_cast<const GLubyte*>("no library");
}
void glLightModeli(GLenum, GLint) {}
void glLightfv(GLenum, GLenum, const GLfloat*) {}
void glLoadIdentity() {}
void glMaterialfv(GLenum, GLenum, const GLfloat*) {}
void glMatrixMode(GLenum) {}
void glMultMatrixf(const GLfloat*) {}
void glNormal3f(GLfloat, GLfloat, GLfloat) {}
void glNormalPointer(GLenum, GLsizei, const GLvoid*) {}
void glOrtho(GLdouble, GLdouble, GLdouble, GLdouble, GLdouble, GLdouble) {}
void glPixelStorei(GLenum, GLint) {}
void glPolygonMode(GLenum, GLenum) {}
void glPopAttrib() {}
void glPopMatrix() {}
void glPushAttrib(GLbitfield) {}
void glPushMatrix() {}
void glReadBuffer(GLenum) {}
void glReadPixels(GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, GLvoid*) {}
void glRotatef(GLfloat, GLfloat, GLfloat, GLfloat) {}
void glScalef(GLfloat, GLfloat, GLfloat) {}
void glTranslatef(GLfloat, GLfloat, GLfloat) {}
void gluPerspective(GLdouble, GLdouble, GLdouble, GLdouble) {}
void glVertex3f(GLfloat, GLfloat, GLfloat) {}
void glVertexPointer(GLint, GLenum, GLsizei, const GLvoid*) {}
void glViewport(GLint, GLint, GLsizei, GLsizei) {}

} // extern "C"
