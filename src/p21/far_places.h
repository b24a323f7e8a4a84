#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarnwick {

// Where a text has which characters, by blocks, for walks that come far: without it, where only one line of a
// file has some character, the walk from every other line would scan the text up to it. The table of a
// character is made by one pass over the text when it is first asked for; a text whose walks are short has
// none. Used by one thread.
class FarPlaces {
public:
    // How far a walk goes by itself.
    static constexpr std::ptrdiff_t kNear = 4096;

    // For the text from `text` to `end`, which the caller keeps.
    FarPlaces(const char* text, const char* end) : text_(text), end_(end) {}

    // The next `c` at or after `from`; null where there is none.
    const char* Find(const char* from, char c);

    // The next character at or after `from` that is no blank, and no line feed either with `lineFeeds`; null
    // where there is none.
    const char* FindOther(const char* from, bool lineFeeds);

    // The next comma at or after `from` that is at depth 0 or less, when `from` is at `depth` and each
    // parenthesis after it counts; null where there is none.
    const char* FindComma(const char* from, std::int64_t depth);

    // To be called when the character at `place` was written over another; neither is a blank or a line feed.
    void NoteWritten(const char* place);

private:
    static constexpr std::size_t kFanOut = 16;

    // For each block the first one from it on that holds what is looked for, the count of blocks for none;
    // one more entry for the end. Empty until it is asked for. May still name a block whose last such
    // character was written over.
    using BlocksWith = std::vector<std::uint32_t>;

    // What parentheses do in a stretch of the text: a block, or kFanOut neighbours of the level below.
    struct Stretch {
        std::int64_t rise = 0;              // of the depth, from its start to its end
        std::int64_t leastComma = kNoComma; // depth of the lowest comma, from the depth at its start
    };
    static constexpr std::int64_t kNoComma = std::int64_t{1} << 40;

    std::size_t BlockOf(const char* p) const { return static_cast<std::size_t>((p - text_) / kNear); }
    const char* Start(std::size_t block) const { return text_ + static_cast<std::ptrdiff_t>(block) * kNear; }
    const char* End(std::size_t block) const {
        return end_ - Start(block) > kNear ? Start(block) + kNear : end_;
    }
    std::size_t BlockCount() const { return BlockOf(end_ - 1) + 1; } // of a text that isn't empty
    template <class FindIn>
    const char* FindBy(BlocksWith* with, const char* from, FindIn findIn);
    Stretch StretchOf(std::size_t level, std::size_t place) const;
    void MakeLevels();

    const char* text_;
    const char* end_;
    std::array<BlocksWith, 256> withCharacter_;
    BlocksWith withOther_[2];                  // without line feeds, and with them
    std::vector<std::vector<Stretch>> levels_; // the first is that of the blocks, the last has one stretch
};

} // namespace tarnwick
