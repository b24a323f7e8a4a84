#pragma once

#include "text/text_find.h"
#include "xml/stpx_scan.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace tarnwick {

// The tags that make up most of a document, in their usual spelling: one memcmp for each, without a search
// for the end of a name. Each move leaves the scan as ScanTagWithAttributes would leave it after the same
// tag, or does nothing and returns false; the caller then calls that function.
class UsualTags {
public:
    explicit UsualTags(StpxScan* scan) : scan_(scan), tag_(find::First<'<'>(scan->at)) {}

    // The "<" of the next tag; at or after the end where there is none.
    const char* Next() const { return tag_; }
    // Passes it over.
    void Skip() { Leave(tag_ + 1); }
    // Moves on to the tag whose "<" is at `tag`.
    void GoTo(const char* tag) { scan_->at = tag_ = tag; }

    // The next tag, without attributes, from its "<" to its ">".
    template <std::size_t Size>
    bool Take(const char (&literal)[Size]) {
        if (!IsAt(tag_, literal)) { return false; }
        Leave(tag_ + Size - 2);
        return true;
    }

    // The next tag, with one value: `start` goes from its "<" to the quote before the value, `rest` from
    // after the closing quote on.
    template <std::size_t Size, std::size_t RestSize>
    bool Take(const char (&start)[Size], std::string_view* value, const char (&rest)[RestSize]) {
        if (!IsAt(tag_, start)) { return false; }
        const char* const after = TakeValue(tag_ + Size - 1, value);
        if (after == nullptr || !IsAt(after, rest)) { return false; }
        Leave(after);
        return true;
    }

    // The same with two values and `between` from quote to quote.
    template <std::size_t Size, std::size_t BetweenSize, std::size_t RestSize>
    bool Take(const char (&start)[Size], std::string_view* first, const char (&between)[BetweenSize],
              std::string_view* second, const char (&rest)[RestSize]) {
        if (!IsAt(tag_, start)) { return false; }
        const char* const after = TakeValue(tag_ + Size - 1, first);
        if (after == nullptr || !IsAt(after, between)) { return false; }
        const char* const last = TakeValue(after + BetweenSize - 1, second);
        if (last == nullptr || !IsAt(last, rest)) { return false; }
        Leave(last);
        return true;
    }

    // The next tag, without attributes, and the text after it, which must have less than `room` characters.
    template <std::size_t Size>
    bool TakeWithText(const char (&literal)[Size], std::size_t room, std::string_view* text) {
        if (!IsAt(tag_, literal)) { return false; }
        const char* const start = tag_ + Size - 1;
        const char* const stop = find::First<'<', '&'>(start);
        const std::size_t length = static_cast<std::size_t>(stop - start);
        if (*stop != '<' || stop >= scan_->end || length >= room) { return false; }
        *text = {start, length};
        scan_->at = stop;
        tag_ = stop;
        return true;
    }

private:
    // Whether the literal is at `p`, entirely before the sentinel.
    template <std::size_t Size>
    bool IsAt(const char* p, const char (&literal)[Size]) const {
        return std::memcmp(p, literal, Size - 1) == 0 &&
               scan_->end - p >= static_cast<std::ptrdiff_t>(Size - 1);
    }

    // The value at `p`; returns the place after its quote, or null when it doesn't fit.
    const char* TakeValue(const char* p, std::string_view* value) const {
        const char* const quote = find::First<'"'>(p);
        const std::size_t length = static_cast<std::size_t>(quote - p);
        if (quote >= scan_->end || length >= kTagRoom) { return nullptr; }
        *value = {p, length};
        return quote + 1;
    }

    // Leaves the scan on the tag's ">" or "/".
    void Leave(const char* at) {
        scan_->at = at;
        tag_ = find::First<'<'>(at);
    }

    StpxScan* scan_;
    const char* tag_;
};

// The tags of uses and of their placements.

inline bool TakeUse(UsualTags& tags, std::string_view* uid) {
    std::string_view type;
    if (!tags.Take("<Occurrence uid=\"", uid, " xsi:type=\"", &type, ">")) { return false; }
    std::string_view id;
    tags.Take("<Id id=\"", &id, "/>");
    tags.Take("</Occurrence>");
    return true;
}

inline bool TakeRelationStart(UsualTags& tags) {
    std::string_view uid;
    std::string_view type;
    return tags.Take("<ViewOccurrenceRelationship uid=\"", &uid, " xsi:type=\"", &type, ">");
}

inline bool TakeRelated(UsualTags& tags, std::string_view* uid) {
    return tags.Take("<Related uidRef=\"", uid, "/>");
}

inline bool TakeRotation(UsualTags& tags, std::string_view* numbers) {
    return tags.TakeWithText("<RotationMatrix>", kTextRoom, numbers);
}

inline bool TakeTranslation(UsualTags& tags, std::string_view* numbers) {
    return tags.TakeWithText("<TranslationVector>", kTextRoom, numbers);
}

inline bool TakeRelationEnd(UsualTags& tags) {
    return tags.Take("</ViewOccurrenceRelationship>");
}

} // namespace tarnwick
