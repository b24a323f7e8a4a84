#pragma once

#include <cstddef>
#include <cstdint>

namespace tarnwick {

// A regular file, opened for reading at any place. Several threads may read from it at a time.
class OpenedFile {
public:
    OpenedFile() = default;
    explicit OpenedFile(const char* path);
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;
    ~OpenedFile();

    // False for what can't be opened or is no regular file: a folder or a pipe can't be read whole.
    bool IsOpen() const { return file_ >= 0; }
    // The errno when the system couldn't open a file that may be there, such as when too many are open. 0 for
    // one that is open, isn't there, isn't meant for us or is no regular file.
    int Failure() const { return failure_; }
    std::uint64_t Size() const { return size_; }

    // Reads `bytes` bytes from `offset` on; returns how many there were. Where the system couldn't read on,
    // *error is its errno, else 0.
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes, int* error) const;

private:
    std::intptr_t file_ = -1; // descriptor or handle
    int failure_ = 0;
    std::uint64_t size_ = 0;
};

} // namespace tarnwick
