#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace tarnwick {

// The characters that a text may have: places in it are counted in 32 bits.
inline constexpr std::uint64_t kLargestText = std::numeric_limits<std::int32_t>::max();

// A writable block for the bytes of one file. Its owner keeps it for the next file, since fresh pages for
// every file of an assembly would take half of the processor time. Used by one thread.
class TextBlock {
public:
    // Readable bytes after the asked size, so that a number may be taken eight characters at a time.
    static constexpr std::size_t kPadding = 64;

    TextBlock() = default;
    TextBlock(const TextBlock&) = delete;
    TextBlock& operator=(const TextBlock&) = delete;
    ~TextBlock() { Release(); }

    // A block of at least `bytes` and the padding, with arbitrary content; the former block's content is
    // lost. Null when memory runs out.
    char* Get(std::size_t bytes);

    // Gives the memory back.
    void Release();

private:
    char* block_ = nullptr;
    std::size_t capacity_ = 0;
};

} // namespace tarnwick
