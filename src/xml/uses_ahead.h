#pragma once

#include "platform/arena.h"
#include "platform/helpers.h"
#include "product/scene_records.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarnwick {

// The uses of parts in a STEP XML document and their placements, read in pieces by several threads ahead of
// the document itself, which takes each one where it comes to it. What is written otherwise than usual, or
// for which memory runs out, isn't there, and the document reads it by itself.
class UsesAhead {
public:
    static constexpr std::size_t kPieceBytes = std::size_t{512} << 10;

    // An element from its "<" to the next one after it.
    struct Use {
        std::uint32_t tag;      // where its "<" stands, from the start of the piece
        std::uint32_t next;     // where the next tag's "<" stands, likewise
        Occurrence* occurrence; // of a ViewOccurrenceRelationship; null for an Occurrence
        const char* uid;        // of an Occurrence
        std::uint32_t length;   // of its uid
    };

    // For the text from `start` to the sentinel that PrepareText has written at `end`.
    UsesAhead(const char* start, const char* end, std::size_t pieceBytes);

    // Reads pieces until none is left; for Helpers::kMost threads that help.
    void ReadPieces();

    // What was read ahead at `tag`, or null. Valid until the next call. The tags ascend; those of one thread,
    // whose document it is. A piece that nobody has begun is left to it.
    const Use* Take(const char* tag) {
        const auto place = static_cast<std::size_t>(tag - pieceStart_);
        while (next_ < usesEnd_ && next_->tag < place) { ++next_; }
        if (next_ < usesEnd_ && next_->tag == place) [[likely]] { return next_++; }
        return place < pieceSize_ ? nullptr : TakeInFurtherPiece(tag);
    }
    // The text of `use`, which was taken last, ends there.
    const char* NextTag(const Use& use) const { return pieceStart_ + use.next; }

    // No further piece is begun.
    void Stop() { nextPiece_ = pieces_.size(); }

    // Gives the occurrences to `arena` once all threads have ended. False when memory for the note of it runs
    // out.
    bool HandOver(Arena* arena);

private:
    enum class State { kFree, kTaken, kRead };
    struct Piece {
        std::atomic<State> state = State::kFree;
        std::vector<Use> uses; // in the order of the text
    };
    // The memory of one thread.
    struct Memory {
        Arena occurrences;
        Arena uids;
    };

    static bool Claim(Piece* piece);
    bool ReadOneMore(Memory* memory);
    void ReadPiece(std::size_t number, Memory* memory);
    void ReadUses(const char* start, Memory* memory, std::vector<Use>* uses) const;
    const Use* TakeInFurtherPiece(const char* tag);

    const char* const start_;
    const char* const end_;
    const std::size_t pieceBytes_;
    std::vector<Piece> pieces_;
    std::atomic<std::size_t> nextPiece_ = 0; // to be claimed
    std::array<Memory, Helpers::kMost> memories_;
    std::atomic<std::size_t> joined_ = 0; // threads that have taken one

    // Of the document's thread.
    Memory ownMemory_;
    const char* pieceStart_;
    std::size_t pieceSize_ = 0; // 0 before the first one
    const Use* next_ = nullptr; // of the piece
    const Use* usesEnd_ = nullptr;
};

} // namespace tarnwick
