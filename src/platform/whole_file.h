#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace tarnwick {

// A file that is written whole or not at all. The bytes go into a file beside it, which takes its name only
// when all of them are there; a pipe, a device or a link is written in place. Needs no memory of the heap.
class WholeFile {
public:
    // What becomes of an empty file of that name. A service that asks for a file may have made it and read
    // through a handle of its own; then the file must be filled, not replaced.
    enum class Empty { kReplaced, kFilled };

    explicit WholeFile(const char* path, Empty empty = Empty::kReplaced);
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;
    // Drops what wasn't closed.
    ~WholeFile() { Drop(); }

    bool IsOpen() const { return file_ >= 0; }
    // The errno of the first failure so far, or 0.
    int Error() const { return error_; }
    void Write(const void* bytes, std::size_t count);
    // Goes on writing `offset` bytes after the start of the file.
    void GoTo(std::uint64_t offset);
    // Gives the file its name. Returns 0, or the errno of the first failure; then it isn't there, or still is
    // what it was before.
    int Close();
    // Gives the file up, if it is open.
    void Drop() {
        if (!IsOpen()) { return; }
        error_ = ECANCELED;
        Close();
    }

private:
    // Keeps errno, unless something has failed before.
    void Fail() {
        if (error_ == 0) { error_ = errno; }
    }

    static constexpr std::size_t kPathRoom = 4096;

    char path_[kPathRoom];
    char neighbour_[kPathRoom]; // empty when the file is written in place
    std::intptr_t file_ = -1;   // descriptor or handle
    int error_ = 0;
};

} // namespace tarnwick
