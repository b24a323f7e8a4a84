#include "gl_recorder.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iomanip>
#include <map>
#include <sstream>

namespace {

using Matrix = std::array<float, 16>;
constexpr Matrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

struct Buffer {
    std::size_t bytes = 0;
    std::map<std::size_t, const void*> sources; // what was copied to each place
};

struct State {
    std::vector<std::string> calls;
    std::map<const void*, std::string> names;
    std::vector<Matrix> stacks[2] = {{kIdentity}, {kIdentity}}; // modelview, projection
    std::size_t selected = 0;
    GLint viewport[4] = {};
    GLenum readBuffer = GL_BACK;
    unsigned char pixel[4] = {255, 255, 255, 255};
    bool writesPixel = true;
    unsigned char frontByte = 7;
    unsigned char backByte = 9;
    const char* version = "2.1";
    std::map<GLuint, Buffer> buffers;
    GLuint bound[2] = {}; // for arrays, for indices
    int buffersMade = 0;
    int refusedFrom = 0;
    GLenum error = GL_NO_ERROR;

    Matrix& Top() { return stacks[selected].back(); }
};

State state;

struct Enum {
    GLenum value;
};

std::ostream& operator<<(std::ostream& out, Enum name) {
    static const std::map<GLenum, const char*> names = {
#define NAMED(x) {x, #x}
        NAMED(GL_LIGHTING),
        NAMED(GL_LIGHT0),
        NAMED(GL_LIGHT1),
        NAMED(GL_LIGHT2),
        NAMED(GL_LIGHT3),
        NAMED(GL_DEPTH_TEST),
        NAMED(GL_CULL_FACE),
        NAMED(GL_BLEND),
        NAMED(GL_ALPHA_TEST),
        NAMED(GL_NORMALIZE),
        NAMED(GL_COLOR_MATERIAL),
        NAMED(GL_TEXTURE_2D),
        NAMED(GL_MODELVIEW),
        NAMED(GL_PROJECTION),
        NAMED(GL_VERTEX_ARRAY),
        NAMED(GL_NORMAL_ARRAY),
        NAMED(GL_COLOR_ARRAY),
        NAMED(GL_FRONT_AND_BACK),
        NAMED(GL_FRONT),
        NAMED(GL_BACK),
        NAMED(GL_FILL),
        NAMED(GL_LINE),
        NAMED(GL_GREATER),
        NAMED(GL_QUADS),
        NAMED(GL_FLOAT),
        NAMED(GL_UNSIGNED_INT),
        NAMED(GL_UNSIGNED_BYTE),
        NAMED(GL_RGBA),
        NAMED(GL_BGR_EXT),
        NAMED(GL_AMBIENT),
        NAMED(GL_DIFFUSE),
        NAMED(GL_SPECULAR),
        NAMED(GL_POSITION),
        NAMED(GL_AMBIENT_AND_DIFFUSE),
        NAMED(GL_LIGHT_MODEL_TWO_SIDE),
        NAMED(GL_SRC_ALPHA),
        NAMED(GL_ONE_MINUS_SRC_ALPHA),
        NAMED(GL_MODELVIEW_MATRIX),
        NAMED(GL_VIEWPORT),
        NAMED(GL_READ_BUFFER),
        NAMED(GL_ENABLE_BIT),
        NAMED(GL_PACK_ALIGNMENT),
        NAMED(GL_PACK_ROW_LENGTH),
        NAMED(GL_PACK_SKIP_ROWS),
        NAMED(GL_PACK_SKIP_PIXELS),
        NAMED(GL_PACK_SWAP_BYTES),
        NAMED(GL_ARRAY_BUFFER),
        NAMED(GL_ELEMENT_ARRAY_BUFFER),
#undef NAMED
    };
    const auto found = names.find(name.value);
    return found != names.end() ? out << found->second : out << "0x" << std::hex << name.value << std::dec;
}

// GL_TRIANGLES is 4, a value that other names have too.
const char* Polygons(GLenum mode) {
    return mode == GL_TRIANGLES ? "GL_TRIANGLES" : "GL_QUADS";
}

// The array that was copied to a place of the bound buffer, or the array itself while none is bound.
const void* Source(GLenum target, const void* array) {
    const GLuint buffer = state.bound[target == GL_ARRAY_BUFFER ? 0 : 1];
    if (buffer == 0) { return array; }
    const auto& sources = state.buffers.at(buffer).sources;
    const auto found = sources.find(reinterpret_cast<std::size_t>(array));
    return found != sources.end() ? found->second : &state; // which has no name
}

std::string ArrayName(const void* array) {
    const auto found = state.names.find(array);
    return found != state.names.end() ? found->second : array == nullptr ? "null" : "unknown array";
}

std::string Floats(const GLfloat* values, int count) {
    std::ostringstream text;
    for (int i = 0; i < count; ++i) { text << (i == 0 ? "" : " ") << values[i]; }
    return text.str();
}

template <class... Arguments>
void Record(const char* function, Arguments... arguments) {
    std::ostringstream call;
    call << std::setprecision(8) << function << '(';
    [[maybe_unused]] const char* separator = "";
    ((call << separator << arguments, separator = ", "), ...);
    call << ')';
    state.calls.push_back(call.str());
}

void Multiply(const Matrix& b) {
    const Matrix a = state.Top();
    Matrix& out = state.Top();
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < 4; ++r) {
            double sum = 0;
            for (std::size_t k = 0; k < 4; ++k) {
                sum += static_cast<double>(a[4 * k + r]) * static_cast<double>(b[4 * c + k]);
            }
            out[4 * c + r] = static_cast<float>(sum);
        }
    }
}

Buffer& Bound(GLenum target) {
    return state.buffers.at(state.bound[target == GL_ARRAY_BUFFER ? 0 : 1]);
}

// The functions that are found by their names.
void GenBuffers(GLsizei count, GLuint* buffers) {
    for (GLsizei i = 0; i < count; ++i) {
        buffers[i] = static_cast<GLuint>(++state.buffersMade);
        state.buffers[buffers[i]] = {};
        Record("glGenBuffers", buffers[i]);
    }
}
void DeleteBuffers(GLsizei count, const GLuint* buffers) {
    for (GLsizei i = 0; i < count; ++i) {
        Record("glDeleteBuffers", buffers[i]);
        state.buffers.erase(buffers[i]);
        for (GLuint& bound : state.bound) { bound = bound == buffers[i] ? 0 : bound; }
    }
}
void BindBuffer(GLenum target, GLuint buffer) {
    Record("glBindBuffer", Enum{target}, buffer);
    state.bound[target == GL_ARRAY_BUFFER ? 0 : 1] = buffer;
}
void BufferData(GLenum target, GLsizeiptr bytes, const void* data, GLenum) {
    Record("glBufferData", Enum{target}, bytes, data == nullptr ? "empty" : "data");
    if (state.refusedFrom > 0 && state.buffersMade >= state.refusedFrom) {
        state.error = GL_OUT_OF_MEMORY;
        return;
    }
    Bound(target).bytes = static_cast<std::size_t>(bytes);
}
void BufferSubData(GLenum target, GLintptr offset, GLsizeiptr bytes, const void* data) {
    Record("glBufferSubData", Enum{target}, offset, bytes, ArrayName(data));
    Buffer& buffer = Bound(target);
    if (static_cast<std::size_t>(offset + bytes) <= buffer.bytes) {
        buffer.sources[static_cast<std::size_t>(offset)] = data;
    }
}

} // namespace

namespace gl_recorder {

std::vector<std::string> Take() {
    std::vector<std::string> calls = std::move(state.calls);
    state.calls.clear();
    return calls;
}
void Reset() {
    state = State{};
}
void Name(const void* array, const std::string& name) {
    state.names[array] = name;
}
void SetPixel(unsigned char red, unsigned char green, unsigned char blue, unsigned char alpha) {
    const unsigned char pixel[4] = {red, green, blue, alpha};
    std::memcpy(state.pixel, pixel, 4);
}
void WritePixel(bool writes) {
    state.writesPixel = writes;
}
void SetFrontByte(unsigned char byte) {
    state.frontByte = byte;
}
void SetBackByte(unsigned char byte) {
    state.backByte = byte;
}
std::vector<float> ModelView() {
    return {state.stacks[0].back().begin(), state.stacks[0].back().end()};
}
std::vector<float> Projection() {
    return {state.stacks[1].back().begin(), state.stacks[1].back().end()};
}
void SetModelView(const std::vector<float>& matrix) {
    std::copy(matrix.begin(), matrix.end(), state.stacks[0].back().begin());
}
std::size_t PushedMatrices() {
    return state.stacks[0].size() + state.stacks[1].size() - 2;
}
bool ModelViewIsSelected() {
    return state.selected == 0;
}
void SetVersion(const char* version) {
    state.version = version;
}
void RefuseBuffersFrom(int number) {
    state.refusedFrom = number;
}
std::size_t Buffers() {
    return state.buffers.size();
}
std::size_t BufferBytes() {
    std::size_t bytes = 0;
    for (const auto& [number, buffer] : state.buffers) { bytes += buffer.bytes; }
    return bytes;
}
void (*FindFunction(const char* name))() {
    const std::map<std::string, void (*)()> functions = {
        {"glGenBuffers", reinterpret_cast<void (*)()>(GenBuffers)},
        {"glDeleteBuffers", reinterpret_cast<void (*)()>(DeleteBuffers)},
        {"glBindBuffer", reinterpret_cast<void (*)()>(BindBuffer)},
        {"glBufferData", reinterpret_cast<void (*)()>(BufferData)},
        {"glBufferSubData", reinterpret_cast<void (*)()>(BufferSubData)},
    };
    const auto found = functions.find(name);
    return found != functions.end() ? found->second : nullptr;
}

} // namespace gl_recorder

extern "C" {

void glAlphaFunc(GLenum function, GLclampf limit) {
    Record("glAlphaFunc", Enum{function}, limit);
}
void glEnable(GLenum what) {
    Record("glEnable", Enum{what});
}
void glDisable(GLenum what) {
    Record("glDisable", Enum{what});
}
void glMatrixMode(GLenum mode) {
    Record("glMatrixMode", Enum{mode});
    state.selected = mode == GL_PROJECTION ? 1 : 0;
}
void glPushMatrix() {
    Record("glPushMatrix");
    state.stacks[state.selected].push_back(state.Top());
}
void glPopMatrix() {
    Record("glPopMatrix");
    state.stacks[state.selected].pop_back();
}
void glLoadIdentity() {
    Record("glLoadIdentity");
    state.Top() = kIdentity;
}
void glTranslatef(GLfloat x, GLfloat y, GLfloat z) {
    Record("glTranslatef", x, y, z);
    Multiply({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1});
}
void glScalef(GLfloat x, GLfloat y, GLfloat z) {
    Record("glScalef", x, y, z);
    Multiply({x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1});
}
void glRotatef(GLfloat degrees, GLfloat x, GLfloat y, GLfloat z) {
    Record("glRotatef", degrees, x, y, z);
    const double length =
        std::sqrt(static_cast<double>(x) * x + static_cast<double>(y) * y + static_cast<double>(z) * z);
    if (length == 0) { return; }
    const double u = x / length;
    const double v = y / length;
    const double w = z / length;
    const double c = std::cos(degrees * M_PI / 180);
    const double s = std::sin(degrees * M_PI / 180);
    const double rotation[16] = {u * u * (1 - c) + c,
                                 v * u * (1 - c) + w * s,
                                 w * u * (1 - c) - v * s,
                                 0,
                                 u * v * (1 - c) - w * s,
                                 v * v * (1 - c) + c,
                                 w * v * (1 - c) + u * s,
                                 0,
                                 u * w * (1 - c) + v * s,
                                 v * w * (1 - c) - u * s,
                                 w * w * (1 - c) + c,
                                 0,
                                 0,
                                 0,
                                 0,
                                 1};
    Matrix matrix;
    for (std::size_t i = 0; i < 16; ++i) { matrix[i] = static_cast<float>(rotation[i]); }
    Multiply(matrix);
}
void glMultMatrixf(const GLfloat* matrix) {
    Record("glMultMatrixf", Floats(matrix, 16));
    Matrix copy;
    std::copy_n(matrix, 16, copy.begin());
    Multiply(copy);
}
void glOrtho(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble nearest,
             GLdouble farthest) {
    Record("glOrtho", left, right, bottom, top, nearest, farthest);
}
void gluPerspective(GLdouble angle, GLdouble aspect, GLdouble nearest, GLdouble farthest) {
    Record("gluPerspective", angle, aspect, nearest, farthest);
    const double f = 1 / std::tan(angle * M_PI / 360);
    Multiply({static_cast<float>(f / aspect), 0, 0, 0, 0, static_cast<float>(f), 0, 0, 0, 0,
              static_cast<float>((farthest + nearest) / (nearest - farthest)), -1, 0, 0,
              static_cast<float>(2 * farthest * nearest / (nearest - farthest)), 0});
}
void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    Record("glViewport", x, y, width, height);
    const GLint viewport[4] = {x, y, width, height};
    std::memcpy(state.viewport, viewport, sizeof viewport);
}
void glClearColor(GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha) {
    Record("glClearColor", red, green, blue, alpha);
}
void glClear(GLbitfield mask) {
    Record("glClear", mask == (GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT) ? "colour and depth" : "other");
}
void glPushAttrib(GLbitfield mask) {
    Record("glPushAttrib", Enum{mask});
}
void glPopAttrib() {
    Record("glPopAttrib");
}
void glEnableClientState(GLenum array) {
    Record("glEnableClientState", Enum{array});
}
void glDisableClientState(GLenum array) {
    Record("glDisableClientState", Enum{array});
}
void glPolygonMode(GLenum face, GLenum mode) {
    Record("glPolygonMode", Enum{face}, Enum{mode});
}
void glColor4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
    Record("glColor4f", red, green, blue, alpha);
}
void glColor3f(GLfloat red, GLfloat green, GLfloat blue) {
    Record("glColor3f", red, green, blue);
}
void glNormal3f(GLfloat x, GLfloat y, GLfloat z) {
    Record("glNormal3f", x, y, z);
}
void glVertex3f(GLfloat x, GLfloat y, GLfloat z) {
    Record("glVertex3f", x, y, z);
}
void glBegin(GLenum mode) {
    Record("glBegin", Polygons(mode));
}
void glEnd() {
    Record("glEnd");
}
void glFinish() {
    Record("glFinish");
}
void glVertexPointer(GLint size, GLenum type, GLsizei stride, const GLvoid* array) {
    Record("glVertexPointer", size, Enum{type}, stride, ArrayName(Source(GL_ARRAY_BUFFER, array)));
}
void glNormalPointer(GLenum type, GLsizei stride, const GLvoid* array) {
    Record("glNormalPointer", Enum{type}, stride, ArrayName(Source(GL_ARRAY_BUFFER, array)));
}
void glColorPointer(GLint size, GLenum type, GLsizei stride, const GLvoid* array) {
    Record("glColorPointer", size, Enum{type}, stride, ArrayName(Source(GL_ARRAY_BUFFER, array)));
}
void glDrawElements(GLenum mode, GLsizei count, GLenum type, const GLvoid* place) {
    const void* const indices = Source(GL_ELEMENT_ARRAY_BUFFER, place);
    const auto found = state.names.find(indices);
    if (found != state.names.end() || count == 0) {
        Record("glDrawElements", Polygons(mode), count, Enum{type}, count == 0 ? "none" : found->second);
        return;
    }
    // An array of the drawing window's own: told by what it holds.
    std::ostringstream values;
    for (GLsizei i = 0; i < count; ++i) {
        values << (i == 0 ? "" : " ") << static_cast<const GLuint*>(indices)[i];
    }
    Record("glDrawElements", Polygons(mode), count, Enum{type}, values.str());
}
void glLightfv(GLenum light, GLenum name, const GLfloat* values) {
    Record("glLightfv", Enum{light}, Enum{name}, Floats(values, 4));
}
void glLightModeli(GLenum name, GLint value) {
    Record("glLightModeli", Enum{name}, value);
}
void glMaterialfv(GLenum face, GLenum name, const GLfloat* values) {
    Record("glMaterialfv", Enum{face}, Enum{name}, Floats(values, 4));
}
void glColorMaterial(GLenum face, GLenum mode) {
    Record("glColorMaterial", Enum{face}, Enum{mode});
}
void glBlendFunc(GLenum source, GLenum destination) {
    Record("glBlendFunc", Enum{source}, Enum{destination});
}
void glGetIntegerv(GLenum name, GLint* values) {
    Record("glGetIntegerv", Enum{name});
    if (name == GL_VIEWPORT) {
        std::memcpy(values, state.viewport, sizeof state.viewport);
    } else if (name == GL_READ_BUFFER) {
        *values = static_cast<GLint>(state.readBuffer);
    }
}
GLenum glGetError() {
    const GLenum error = state.error;
    state.error = GL_NO_ERROR;
    return error;
}
const GLubyte* glGetString(GLenum) {
    return reinterpret_cast<const GLubyte*>(state.version);
}
void glGetFloatv(GLenum name, GLfloat* values) {
    Record("glGetFloatv", Enum{name});
    if (name == GL_MODELVIEW_MATRIX) {
        std::copy(state.stacks[0].back().begin(), state.stacks[0].back().end(), values);
    }
}
void glReadBuffer(GLenum buffer) {
    Record("glReadBuffer", Enum{buffer});
    state.readBuffer = buffer;
}
void glPixelStorei(GLenum name, GLint value) {
    Record("glPixelStorei", Enum{name}, value);
}
void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type,
                  GLvoid* pixels) {
    Record("glReadPixels", x, y, width, height, Enum{format}, Enum{type});
    if (width == 1 && height == 1 && format == GL_RGBA) {
        if (type == GL_UNSIGNED_BYTE && state.writesPixel) { std::memcpy(pixels, state.pixel, 4); }
        return;
    }
    // As with an alignment of four: the rows of three bytes a pixel are filled up to a multiple of it.
    const auto row = (3 * static_cast<std::size_t>(width) + 3) / 4 * 4;
    std::memset(pixels, state.readBuffer == GL_FRONT ? state.frontByte : state.backByte,
                row * static_cast<std::size_t>(height));
}

} // extern "C"
