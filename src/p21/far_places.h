#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarnwick {

// Where characters stand in a text, coarsely: for walks that don't find theirs nearby. Without it every line
// of a file that lacks a character would be a walk to the one line that has it. What is asked for first is
// made then, in one pass over the text; nothing is made for a text whose walks are short. Used by one
// thread.
class FarPlaces {
public:
    // How far a walk goes by itself.
    static constexpr std::ptrdiff_t kNear = 4096;

    // For the text from `text` to `end`, which is kept by the caller.
    FarPlaces(const char* text, const char* end) : text_(text), end_(end) {}

    // The next `c` at or after `from`; null where there is none.
    const char* Find(const char* from, char c);

    // The next comma at or after `from` that is at depth 0 or less, when `from` is at `depth` and each
    // parenthesis behind it counts; null where there is none.
    const char* FindComma(const char* from, std::int64_t depth);

    // To be called when `c` has been written over another character of the text. A NUL that is written over
    // a "#" needs no call.
    void NoteWritten(char c);

private:
    static constexpr std::size_t kFanOut = 16;

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
    std::size_t BlockCount() const { return text_ == end_ ? 0 : BlockOf(end_ - 1) + 1; }
    void MakeLevels();

    const char* text_;
    const char* end_;
    // For each character that was asked for: the first block from this one on that holds it, the count of
    // blocks for none.
    std::array<std::vector<std::uint32_t>, 256> blocksWith_;
    std::vector<std::vector<Stretch>> levels_; // the first is that of the blocks, the last has one stretch
};

} // namespace tarnwick
