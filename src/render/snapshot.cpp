// The snapshot: what the window shows, as a 24-bit bitmap file.

#include "render/snapshot.h"
#include "platform/console.h"
#include "platform/paths.h"
#include "platform/whole_file.h"
#include "render/opengl_control.h"
#include "text/one_line.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

namespace tarnwick {

namespace {

constexpr std::size_t kHeaderBytes = 54;

// More than the pixels need: rows are padded by whole pixels, not by bytes, and two bytes follow. Readers of
// these files expect this size.
std::size_t ImageBytes(int width, int height) {
    const int pad = (4 - width % 4) % 4;
    return 3 * static_cast<std::size_t>(width + pad) * static_cast<std::size_t>(height) + 2;
}

std::array<unsigned char, kHeaderBytes> Header(int width, int height, std::size_t imageBytes) {
    std::array<unsigned char, kHeaderBytes> header{};
    const auto put = [&header](std::size_t offset, int bytes, std::size_t value) {
        for (int i = 0; i < bytes; ++i) {
            header[offset + static_cast<std::size_t>(i)] = static_cast<unsigned char>(value >> (8 * i));
        }
    };
    header[0] = 'B';
    header[1] = 'M';
    put(2, 4, imageBytes + kHeaderBytes);
    put(10, 4, kHeaderBytes); // where the pixels start
    put(14, 4, 40);           // bytes of the rest of the header
    put(18, 4, static_cast<std::size_t>(width));
    put(22, 4, static_cast<std::size_t>(height)); // positive: rows run bottom-up
    put(26, 2, 1);                                // planes
    put(28, 2, 24);                               // bits a pixel
    put(34, 4, imageBytes);
    put(38, 4, 2835); // pixels a metre
    put(42, 4, 2835);
    return header;
}

bool AllZero(const unsigned char* bytes, std::size_t count) {
    return std::all_of(bytes, bytes + count, [](unsigned char byte) { return byte == 0; });
}

} // namespace

std::string SnapshotPath(const std::string& folder, const std::string& loadedPath) {
    std::string name = NameOf(loadedPath);
    if (name.empty()) { name = "toto.bmp"; }
    const std::size_t dot = name.rfind('.');
    return folder + '/' + name.substr(0, dot) + ".bmp";
}

int OpenGLControl::grab_GL(const char* path) {
    if (!hasContext_) { return 0; }
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    const int width = viewport[2];
    const int height = viewport[3];
    const std::size_t imageBytes = ImageBytes(width, height);
    const std::unique_ptr<unsigned char[]> image(new (std::nothrow) unsigned char[imageBytes]());
    if (image == nullptr) {
        OutputPrint("[Error] : grab_GL(), Cannot create Memory_Sapce for pImageData.\n");
        return 0;
    }
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_SKIP_ROWS, 0);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_PACK_SWAP_BYTES, 1); // has no effect on bytes
    ReadScreen(width, height, image.get(), imageBytes);
    std::fill_n(image.get() + imageBytes - 2, 2, static_cast<unsigned char>(0));

    WholeFile file(path);
    if (!file.IsOpen()) {
        OutputPrint("[Error] : grab_GL(), Cannot open %s for writting.\n", OneLine(path).Text());
        return 0;
    }
    const auto header = Header(width, height, imageBytes);
    file.Write(header.data(), header.size());
    file.Write(image.get(), imageBytes);
    const int error = file.Close();
    if (error != 0) {
        OutputPrint("[Error] : grab_GL(), Cannot write %s: %s\n", OneLine(path).Text(), std::strerror(error));
        return 0;
    }
    return 1;
}

void OpenGLControl::ReadScreen(int width, int height, unsigned char* pixels, std::size_t bytes) {
    // The viewport may extend beyond the window. Those pixels are undefined and stay zero: a driver that
    // still has a larger window's size would read past the end of its buffer.
    const WindowSize window = window_.DrawableSize();
    if (window.width < width || window.height < height) {
        glPixelStorei(GL_PACK_ROW_LENGTH, width);
        width = std::min(width, window.width);
        height = std::min(height, window.height);
    }
    GLint readBuffer = GL_BACK;
    glGetIntegerv(GL_READ_BUFFER, &readBuffer);
    glReadBuffer(GL_FRONT);
    glReadPixels(0, 0, width, height, GL_BGR_EXT, GL_UNSIGNED_BYTE, pixels);
    // Some software drivers can't read the front buffer and return black. A frame is never all black, since
    // its background is grey.
    if (AllZero(pixels, bytes)) {
        DrawScene(kDisplay);
        glReadBuffer(GL_BACK);
        glReadPixels(0, 0, width, height, GL_BGR_EXT, GL_UNSIGNED_BYTE, pixels);
        glPopMatrix(); // the one that DrawScene pushed
    }
    glReadBuffer(static_cast<GLenum>(readBuffer));
}

} // namespace tarnwick
