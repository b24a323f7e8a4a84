#include "text/line_marks.h"

#include "platform/within_memory.h"

#include <algorithm>
#include <cstring>

namespace tarnwick {

void LineMarks::Make(std::size_t size) {
    if (!WithinMemory([this, size] { words_.assign(size / kWordCharacters + 1, 0); })) { words_.clear(); }
}

void LineMarks::Mark(const char* text, std::size_t from, std::size_t to) {
    // Where lines are short, one word in eight is looked at, and all blocks of the others count as marked.
    constexpr int kShort = 32;
    constexpr int kUnseen = 7;
    int unseen = 0;
    while (from < to) {
        std::uint64_t* const word = &Word(from / kBlock);
        if (unseen > 0) {
            --unseen;
            *word = ~std::uint64_t{0};
            from += kWordCharacters;
            continue;
        }
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < kWordBlocks && from < to; ++i, from += kBlock) {
            bits |= std::uint64_t{AnyUpTo<'\n'>(text + from)} << i;
        }
        *word = bits;
        if (std::popcount(bits) > kShort) { unseen = kUnseen; }
    }
}

bool LineMarks::AreFew() const {
    std::size_t count = 0;
    for (const std::uint64_t word : words_) { count += static_cast<std::size_t>(std::popcount(word)); }
    return count < BlockCount() / 8;
}

const char* LineMarks::LineEnd(const char* text, const char* from, const char* end) const {
    const std::size_t size = static_cast<std::size_t>(end - text);
    std::size_t place = static_cast<std::size_t>(from - text);
    while (place < size) {
        const std::size_t block = place / kBlock;
        const std::size_t last = IsEmpty() ? size : std::min((block + 1) * kBlock, size);
        if (const void* const found = std::memchr(text + place, '\n', last - place)) {
            return static_cast<const char*>(found);
        }
        place = IsEmpty() ? size : Next(block + 1) * kBlock;
    }
    return end;
}

} // namespace tarnwick
