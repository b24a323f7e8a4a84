#include "text/zip_input.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tarnwick {

namespace {

ZipInput& InputOf(void* stream) {
    return *static_cast<ZipInput*>(stream);
}

} // namespace

zlib_filefunc64_def ZipInput::Functions() {
    zlib_filefunc64_def functions{};
    functions.opaque = this;
    functions.zopen64_file = [](void* opaque, const void*, int) { return opaque; };
    functions.zread_file = [](void*, void* stream, void* out, uLong bytes) {
        return static_cast<uLong>(InputOf(stream).Read(static_cast<unsigned char*>(out), bytes));
    };
    functions.zwrite_file = [](void*, void*, const void*, uLong) { return uLong{0}; };
    functions.ztell64_file = [](void*, void* stream) { return ZPOS64_T{InputOf(stream).position_}; };
    functions.zseek64_file = [](void*, void* stream, ZPOS64_T offset, int origin) {
        return InputOf(stream).Seek(offset, origin);
    };
    functions.zclose_file = [](void*, void*) { return 0; };
    functions.zerror_file = [](void*, void* stream) { return InputOf(stream).failed_ ? 1 : 0; };
    return functions;
}

std::size_t ZipInput::Read(unsigned char* out, std::size_t bytes) {
    std::size_t done = 0;
    while (done < bytes) {
        const bool isInBlock = position_ >= blockStart_ && position_ - blockStart_ < blockBytes_;
        if (!isInBlock) {
            int error = 0;
            blockStart_ = position_;
            blockBytes_ = file_.ReadAt(position_, block_.data(), block_.size(), &error);
            if (error != 0) {
                blockBytes_ = 0;
                failed_ = true;
                errno = error;
            }
            if (blockBytes_ == 0) { break; }
        }
        const auto from = static_cast<std::size_t>(position_ - blockStart_);
        const std::size_t here = std::min(bytes - done, blockBytes_ - from);
        std::memcpy(out + done, block_.data() + from, here);
        done += here;
        position_ += here;
    }
    return done;
}

long ZipInput::Seek(std::uint64_t offset, int origin) {
    failed_ = false;
    switch (origin) {
    case ZLIB_FILEFUNC_SEEK_CUR:
        position_ += offset;
        return 0;
    case ZLIB_FILEFUNC_SEEK_END:
        position_ = file_.Size() + offset;
        return 0;
    default:
        position_ = offset;
        return 0;
    }
}

} // namespace tarnwick
