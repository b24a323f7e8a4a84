#include "support/capture.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdlib>

namespace tarnwick::test {

StreamCapture::StreamCapture(std::FILE* stream) : stream_(stream) {
    // Goes with its last handle.
    char folder[MAX_PATH];
    char name[MAX_PATH];
    if (GetTempPathA(MAX_PATH, folder) == 0 || GetTempFileNameA(folder, "cap", 0, name) == 0) {
        std::abort();
    }
    file_ = _open(name, _O_RDWR | _O_CREAT | _O_TRUNC | _O_BINARY | _O_TEMPORARY, 0600);
    std::fflush(stream_);
    saved_ = _dup(_fileno(stream_));
    if (file_ < 0 || saved_ < 0 || _dup2(file_, _fileno(stream_)) < 0) { std::abort(); }
    _setmode(_fileno(stream_), _O_BINARY);
}

StreamCapture::~StreamCapture() {
    std::fflush(stream_);
    _dup2(saved_, _fileno(stream_));
    _close(saved_);
    _close(file_);
}

std::string StreamCapture::Take() {
    std::fflush(stream_);
    std::string text;
    char piece[4096];
    _lseek(file_, 0, SEEK_SET);
    for (;;) {
        const int got = _read(file_, piece, sizeof piece);
        if (got <= 0) { break; }
        text.append(piece, static_cast<std::size_t>(got));
    }
    if (!text.empty() && _chsize(file_, 0) != 0) { std::abort(); }
    _lseek(file_, 0, SEEK_SET);
    return text;
}

} // namespace tarnwick::test
