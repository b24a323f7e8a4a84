// The same for what makes a graphics library without a window: it has one buffer, and nothing is drawn in it.

#define EGL_NO_X11
#include <EGL/egl.h>

#include <cstring>

namespace {

int something = 0; // has an address, as displays and contexts are told

EGLDisplay GetPlatformDisplay(EGLenum, void*, const EGLint*) {
    return &something;
}

} // namespace

extern "C" {

__eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* name) {
    const bool isKnown = std::strcmp(name, "eglGetPlatformDisplayEXT") == 0;
    return isKnown ? reinterpret_cast<__eglMustCastToProperFunctionPointerType>(GetPlatformDisplay) : nullptr;
}
EGLBoolean eglInitialize(EGLDisplay, EGLint*, EGLint*) {
    return EGL_TRUE;
}
EGLBoolean eglBindAPI(EGLenum) {
    return EGL_TRUE;
}
EGLBoolean eglChooseConfig(EGLDisplay, const EGLint*, EGLConfig* configs, EGLint, EGLint* count) {
    configs[0] = &something;
    *count = 1;
    return EGL_TRUE;
}
EGLBoolean eglGetConfigAttrib(EGLDisplay, EGLConfig, EGLint attribute, EGLint* value) {
    *value = attribute == EGL_RED_SIZE ? 8 : 0;
    return EGL_TRUE;
}
EGLContext eglCreateContext(EGLDisplay, EGLConfig, EGLContext, const EGLint*) {
    return &something;
}
EGLSurface eglCreatePbufferSurface(EGLDisplay, EGLConfig, const EGLint*) {
    return &something;
}
EGLBoolean eglMakeCurrent(EGLDisplay, EGLSurface, EGLSurface, EGLContext) {
    return EGL_TRUE;
}
EGLBoolean eglDestroyContext(EGLDisplay, EGLContext) {
    return EGL_TRUE;
}
EGLBoolean eglDestroySurface(EGLDisplay, EGLSurface) {
    return EGL_TRUE;
}

} // extern "C"
