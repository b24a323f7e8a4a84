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
// the document's own thread, which takes each one where it comes to it. That thread itself reads what has
// another form than usual, and what memory ran out for.
class UsesAhead {
public:
    static constexpr std::size_t kPieceBytes = std::size_t{512} << 10;

    // An element.
    struct Use {
        std::uint32_t tag;      // the place of its "<", from the start of the piece
        std::uint32_t next;     // that of the "<" of the next tag after it
        Occurrence* occurrence; // of a ViewOccurrenceRelationship; null for an Occurrence
        const char* uid;        // of an Occurrence
        std::uint32_t length;   // of its uid
    };

    // For the text from `start` to the sentinel that PrepareText has written at `end`.
    UsesAhead(const char* start, const char* end, std::size_t pieceBytes);

    // Reads pieces until none is left; for Helpers::kMost threads that help.
    void ReadPieces();

    // What was read ahead at `tag`, or null. Valid until the next call. Called by the document's thread
    // alone, with ascending tags. A piece that no thread has begun is left to the caller.
    const Use* Take(const char* tag) {
        const auto place = static_cast<std::size_t>(tag - pieceStart_);
        while (next_ < usesEnd_ && next_->tag < place) { ++next_; }
        if (next_ < usesEnd_ && next_->tag == place) [[likely]] { return next_++; }
        return place < pieceSize_ ? nullptr : TakeInFurtherPiece(tag);
    }
    // The "<" of the tag after `use`, which must be the one taken last.
    const char* NextTag(const Use& use) const { return pieceStart_ + use.next; }

    // Lets no thread begin a further piece.
    void Stop() { nextPiece_ = pieces_.size(); }

    // Gives the occurrences to `arena` when all threads have ended. False when there is no memory to note
    // them in.
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

    // The document's thread uses these alone.
    Memory ownMemory_;
    const char* pieceStart_;
    std::size_t pieceSize_ = 0; // 0 before the first one
    const Use* next_ = nullptr; // of the piece
    const Use* usesEnd_ = nullptr;
};

} // namespace tarnwick
