#include "support/capture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace tarnwick::test {

StreamCapture::StreamCapture(std::FILE* stream) : stream_(stream), file_(memfd_create("capture", 0)) {
    std::fflush(stream_);
    saved_ = dup(fileno(stream_));
    if (file_ < 0 || saved_ < 0 || dup2(file_, fileno(stream_)) < 0) { std::abort(); }
}

StreamCapture::~StreamCapture() {
    std::fflush(stream_);
    dup2(saved_, fileno(stream_));
    close(saved_);
    close(file_);
}

std::string StreamCapture::Take() {
    std::fflush(stream_);
    std::string text;
    char piece[4096];
    off_t from = 0;
    for (;;) {
        const ssize_t got = pread(file_, piece, sizeof piece, from);
        if (got <= 0) { break; }
        text.append(piece, static_cast<std::size_t>(got));
        from += got;
    }
    if (from > 0) {
        if (ftruncate(file_, 0) != 0) { std::abort(); }
        lseek(file_, 0, SEEK_SET);
    }
    return text;
}

} // namespace tarnwick::test
