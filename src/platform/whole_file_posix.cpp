#include "platform/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tarnwick {

namespace {

constexpr mode_t kAllMayReadAndWrite = 0666; // less the user's umask
constexpr int kMostNames = 100;
// The system writes no more at once.
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;

int Number(std::intptr_t file) {
    return static_cast<int>(file);
}

} // namespace

WholeFile::WholeFile(const char* path, Empty empty) : path_(), neighbour_() {
    const std::size_t length = std::strlen(path);
    const char* const slash = std::strrchr(path, '/');
    const int folder = slash != nullptr ? static_cast<int>(slash + 1 - path) : 0;
    if (length >= kPathRoom) {
        error_ = ENAMETOOLONG;
        return;
    }
    std::memcpy(path_, path, length + 1);
    struct stat status;
    const bool exists = lstat(path, &status) == 0;
    if (exists && (!S_ISREG(status.st_mode) || (empty == Empty::kFilled && status.st_size == 0))) {
        file_ = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kAllMayReadAndWrite);
        if (file_ < 0) { Fail(); }
        return;
    }
    if (exists && access(path, W_OK) != 0) { // a new file must not get round that
        Fail();
        return;
    }
    for (int number = 0; number < kMostNames && file_ < 0; ++number) {
        const int written = std::snprintf(neighbour_, kPathRoom, "%.*s.tarnwick-%ld-%d", folder, path,
                                          static_cast<long>(getpid()), number);
        if (written < 0 || static_cast<std::size_t>(written) >= kPathRoom) {
            errno = ENAMETOOLONG;
            break;
        }
        file_ = open(neighbour_, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kAllMayReadAndWrite);
        if (file_ < 0 && errno != EEXIST) { break; }
    }
    if (file_ < 0) {
        Fail();
        neighbour_[0] = '\0';
    } else if (exists && fchmod(Number(file_), status.st_mode & 07777) != 0) {
        Fail();
    }
}

void WholeFile::Write(const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0 && error_ == 0) {
        const ssize_t written = write(Number(file_), next, std::min(count, kLargestPiece));
        if (written < 0) {
            if (errno != EINTR) { Fail(); }
            continue;
        }
        next += written;
        count -= static_cast<std::size_t>(written);
    }
}

void WholeFile::GoTo(std::uint64_t offset) {
    if (error_ == 0 && lseek(Number(file_), static_cast<off_t>(offset), SEEK_SET) < 0) { Fail(); }
}

int WholeFile::Close() {
    if (file_ < 0) { return error_; }
    // Half a text in a linked file is worse than none.
    struct stat status;
    const bool inPlace = neighbour_[0] == '\0';
    if (inPlace && error_ != 0 && fstat(Number(file_), &status) == 0 && S_ISREG(status.st_mode)) {
        if (ftruncate(Number(file_), 0) != 0) { Fail(); }
    }
    if (close(Number(file_)) != 0) { Fail(); }
    file_ = -1;
    if (inPlace) { return error_; }
    if (error_ == 0 && rename(neighbour_, path_) != 0) { Fail(); }
    if (error_ != 0) { unlink(neighbour_); }
    return error_;
}

} // namespace tarnwick
