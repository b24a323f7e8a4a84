#include "platform/opened_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace tarnwick {

namespace {

// Whether open failed because of the path, not because the system lacks something.
bool IsOfThePath(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case EISDIR:
    case EACCES:
    case EPERM:
    case ELOOP:
    case ENAMETOOLONG:
    case ENXIO:
        return true;
    default:
        return false;
    }
}

} // namespace

OpenedFile::OpenedFile(const char* path) {
    // Otherwise opening a pipe would wait for its other end.
    const int file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status;
    if (file < 0) {
        failure_ = IsOfThePath(errno) ? 0 : errno;
        return;
    }
    const bool known = fstat(file, &status) == 0;
    if (!known) { failure_ = errno; }
    if (!known || !S_ISREG(status.st_mode)) {
        close(file);
        return;
    }
    file_ = file;
    size_ = static_cast<std::uint64_t>(status.st_size);
}

OpenedFile::~OpenedFile() {
    if (file_ >= 0) { close(static_cast<int>(file_)); }
}

std::size_t OpenedFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes, int* error) const {
    const int file = static_cast<int>(file_);
    std::size_t done = 0;
    *error = 0;
    while (done < bytes) {
        const ssize_t got =
            pread(file, static_cast<char*>(buffer) + done, bytes - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) { continue; }
        if (got < 0) { *error = errno; }
        if (got <= 0) { break; }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

} // namespace tarnwick
