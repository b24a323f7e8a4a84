#pragma once

#include "p21/far_places.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tarnwick {

// A walk over the raw text of a file, forward from some entity's line. A move that finds no target stops at
// `end`, where a NUL stands, and sets `overrun`; all later moves then stay there. The caller tests `overrun`
// once, at the end.
struct TextWalk {
    const char* at;
    const char* end;
    bool overrun = false;
    FarPlaces* far = nullptr; // of the same text, for moves that come far; without it they scan all of it

    char Current() const { return *at; }

    // Forward by one character.
    void Step() {
        if (at < end) {
            ++at;
        } else {
            overrun = true;
        }
    }

    // Forward to the next `c`; a character that is `c` already stays.
    void GoTo(char c);

    void SkipBlanks() {
        while (*at == ' ') { ++at; }
    }
    void SkipBlanksAndLineFeeds() {
        while (*at == ' ' || *at == '\n') { ++at; }
    }

    // Forward to the comma that ends an argument: what stands in parentheses is passed over. A "," that
    // stands here already stays. From within a list the walk leads out of it; where the entity ends first, it
    // runs on to a comma of an entity further on.
    void GoToArgumentComma();
};

// The string-to-integer rule of the C library: white space, a sign, digits; no digits give 0, and what
// exceeds 32 bits is cut to the nearest number that fits.
std::int32_t StringToInteger(const char* p);

// The decimal value of the digits at `walk`, which is left behind them; 0 without digits. 15 digits or more
// end the process, since the number has a buffer of 15 characters.
std::int32_t ReadDigits(TextWalk* walk);

// Goes to the next "#" and reads the digits behind it, as ReadDigits does.
std::int32_t ReadReference(TextWalk* walk);

// The characters from the walk's place, which is behind an opening quote, up to the next quote, where the
// walk is left. No doubling of quotes is understood. `limit` characters or more end the process.
std::string_view ReadQuoted(TextWalk* walk, std::size_t limit);

// Appends the references of a list in parentheses, at or after the walk's place, to `ids`. The walk is left
// at the
// "#" of the last reference, or at the ")" of an empty list.
void ParseIdList(TextWalk* walk, std::vector<std::int32_t>* ids);

} // namespace tarnwick
