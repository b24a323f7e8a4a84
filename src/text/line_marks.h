#pragma once

#include "text/char_bits.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarnwick {

// Where a large text may have line ends, a bit for each of its blocks: a search for them needn't go through
// memory once more. The bits are set while a block is still in the cache of the thread that has read it.
// Without bits nothing is known about the text.
class LineMarks {
public:
    static constexpr std::size_t kBlock = kCharBlock;
    static constexpr std::size_t kWordBlocks = 64;                       // whose bits are in one word
    static constexpr std::size_t kWordCharacters = kBlock * kWordBlocks; // the characters that these have

    // Room for the bits of a text of `size` characters, none set; no bits where memory runs out.
    void Make(std::size_t size);
    void Clear() { words_.clear(); }
    bool IsEmpty() const { return words_.empty(); }

    // Sets the bit of each block from `from`, a multiple of kWordCharacters, to `to` (exclusive) that
    // has a line feed or NUL, and perhaps of others. kBlock characters after the text must be readable.
    // Several threads may mark different stretches at a time.
    void Mark(const char* text, std::size_t from, std::size_t to);
    // Sets the bit of one character's block, such as that of the NUL after the text.
    void MarkAt(std::size_t place) { Word(place / kBlock) |= Bit(place / kBlock); }

    // Whether most lines are many blocks long, so that it pays to pass over those between their ends.
    bool AreFew() const;
    // The blocks that have a bit: those of the text, and a few more.
    std::size_t BlockCount() const { return words_.size() * kWordBlocks; }
    // The first marked block from `block` on; BlockCount() where there is none. Any thread may call this and
    // LineEnd when nobody marks any more.
    std::size_t Next(std::size_t block) const {
        if (block >= BlockCount()) { return BlockCount(); }
        std::size_t word = block / kWordBlocks;
        const std::uint64_t rest = words_[word] & (~std::uint64_t{0} << block % kWordBlocks);
        if (rest != 0) { return word * kWordBlocks + static_cast<std::size_t>(std::countr_zero(rest)); }
        while (++word < words_.size() && words_[word] == 0) {}
        return word * kWordBlocks +
               (word < words_.size() ? static_cast<std::size_t>(std::countr_zero(words_[word])) : 0);
    }

    // The first line feed from `from` to `end`, where the text ends; `end` where there is none.
    const char* LineEnd(const char* text, const char* from, const char* end) const;

private:
    std::uint64_t& Word(std::size_t block) { return words_[block / kWordBlocks]; }
    static std::uint64_t Bit(std::size_t block) { return std::uint64_t{1} << block % kWordBlocks; }

    std::vector<std::uint64_t> words_;
};

} // namespace tarnwick
