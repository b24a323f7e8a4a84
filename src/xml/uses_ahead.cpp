#include "xml/uses_ahead.h"

#include "platform/within_memory.h"
#include "text/scan_reals.h"
#include "text/text_find.h"
#include "xml/stpx_scan.h"
#include "xml/usual_tags.h"

#include <algorithm>
#include <string_view>

namespace tarnwick {

namespace {

using std::string_view;

// Fills the occurrence from the next element, if it is the whole of a usual relationship.
bool ReadRelation(UsualTags& tags, Arena& arena, Occurrence* occurrence) {
    string_view text;
    string_view related;
    if (!TakeRelationStart(tags) || !TakeRelated(tags, &related) || !tags.Take("<Placement>") ||
        !TakeRotation(tags, &text) || ScanReals(text, occurrence->rotation, 9) < 9 ||
        !tags.Take("</RotationMatrix>") || !TakeTranslation(tags, &text) ||
        ScanReals(text, occurrence->translation, 3) < 3 || !tags.Take("</TranslationVector>") ||
        !tags.Take("</Placement>") || !TakeRelationEnd(tags)) {
        return false;
    }
    related = find::CutAtNul(related);
    occurrence->relatedUid = arena.Copy(related.data(), related.size());
    return occurrence->relatedUid != nullptr;
}

} // namespace

UsesAhead::UsesAhead(const char* start, const char* end, std::size_t pieceBytes)
    : start_(start), end_(end), pieceBytes_(pieceBytes),
      pieces_((static_cast<std::size_t>(end - start) + pieceBytes - 1) / pieceBytes), pieceStart_(start) {}

void UsesAhead::ReadPieces() {
    const std::size_t place = joined_++;
    if (place >= memories_.size()) { return; }
    while (ReadOneMore(&memories_[place])) {}
}

bool UsesAhead::Claim(Piece* piece) {
    State state = State::kFree;
    return piece->state.compare_exchange_strong(state, State::kTaken);
}

// False when all pieces are claimed.
bool UsesAhead::ReadOneMore(Memory* memory) {
    for (;;) {
        const std::size_t number = nextPiece_++;
        if (number >= pieces_.size()) { return false; }
        if (!Claim(&pieces_[number])) { continue; }
        ReadPiece(number, memory);
        return true;
    }
}

void UsesAhead::ReadPiece(std::size_t number, Memory* memory) {
    Piece& piece = pieces_[number];
    // If memory runs out, the piece keeps what was read until then.
    WithinMemory([&] { ReadUses(start_ + number * pieceBytes_, memory, &piece.uses); });
    piece.state = State::kRead;
    piece.state.notify_one();
}

// The uses that begin in the piece.
void UsesAhead::ReadUses(const char* start, Memory* memory, std::vector<Use>* uses) const {
    const char* const end = start + std::min(pieceBytes_, static_cast<std::size_t>(end_ - start));
    // A next tag that is too far away for 32 bits is searched for from the last place that fits.
    const auto place = [start](const char* at) {
        return static_cast<std::uint32_t>(std::min<std::ptrdiff_t>(at - start, UINT32_MAX));
    };
    StpxScan scan{start, end_, ""};
    UsualTags tags(&scan);
    Occurrence* occurrence = nullptr;
    while (tags.Next() < end) {
        const char* const tag = tags.Next();
        string_view uid;
        if (TakeUse(tags, &uid)) {
            uid = find::CutAtNul(uid);
            const char* const copy = memory->uids.Copy(uid.data(), uid.size());
            if (copy == nullptr) { return; }
            uses->push_back(
                {place(tag), place(tags.Next()), nullptr, copy, static_cast<std::uint32_t>(uid.size())});
            continue;
        }
        if (occurrence == nullptr) { occurrence = memory->occurrences.New<Occurrence>(); }
        if (occurrence == nullptr) { return; }
        if (ReadRelation(tags, memory->occurrences, occurrence)) {
            uses->push_back({place(tag), place(tags.Next()), occurrence, nullptr, 0});
            occurrence = nullptr;
        } else if (tags.Next() == tag) {
            tags.Skip();
        }
    }
}

const UsesAhead::Use* UsesAhead::TakeInFurtherPiece(const char* tag) {
    const std::size_t number = static_cast<std::size_t>(tag - start_) / pieceBytes_;
    if (number >= pieces_.size()) { return nullptr; }
    Piece& piece = pieces_[number];
    pieceStart_ = start_ + number * pieceBytes_;
    pieceSize_ = pieceBytes_;
    if (Claim(&piece)) {
        piece.state = State::kRead;
    } else {
        // Another thread reads it: meanwhile this one reads later pieces.
        while (piece.state != State::kRead && ReadOneMore(&ownMemory_)) {}
        piece.state.wait(State::kTaken);
    }
    next_ = piece.uses.data();
    usesEnd_ = next_ + piece.uses.size();
    return piece.uses.empty() ? nullptr : Take(tag);
}

bool UsesAhead::HandOver(Arena* arena) {
    return arena->TakeOver(&ownMemory_.occurrences) &&
           std::all_of(memories_.begin(), memories_.end(),
                       [&](Memory& memory) { return arena->TakeOver(&memory.occurrences); });
}

} // namespace tarnwick
