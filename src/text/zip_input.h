#pragma once

#include "platform/opened_file.h"

#include <minizip/ioapi.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarnwick {

// The access of the library to an archive: a file that is open already, through a block of its own. A file
// that the library opens itself leaks when the library runs out of memory.
class ZipInput {
public:
    // The file must outlive it.
    explicit ZipInput(const OpenedFile& file) : file_(file), block_(kBlock) {}
    ZipInput(const ZipInput&) = delete;
    ZipInput& operator=(const ZipInput&) = delete;

    // The library's functions, which refer to this object.
    zlib_filefunc64_def Functions();

private:
    std::size_t Read(unsigned char* out, std::size_t bytes);
    long Seek(std::uint64_t offset, int origin);

    static constexpr std::size_t kBlock = std::size_t{1} << 14;

    const OpenedFile& file_;
    std::vector<unsigned char> block_;
    std::uint64_t blockStart_ = 0;
    std::size_t blockBytes_ = 0;
    std::uint64_t position_ = 0;
    bool failed_ = false; // since the last Seek
};

} // namespace tarnwick
