#pragma once

#include "p21/far_places.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace tarnwick {

// Fixed rooms, each with its NUL: a name, or the digits of a number, that don't fit end the process.
inline constexpr std::size_t kNameRoom = 300;
inline constexpr std::size_t kMaterialRoom = 100; // of the name of a raw material
inline constexpr std::size_t kDigitRoom = 15;

// A walk over the raw text of a file, forward from some entity's line: the moves of which all readers of P21
// text are made. A move that finds no target stops at `end`, the place of a NUL, and sets `overrun`; all
// later moves then stay there. The caller tests `overrun` once, at the end.
struct TextWalk {
    const char* at;
    const char* end;
    bool overrun = false;
    FarPlaces* far = nullptr; // of the same text, for moves that go far; without it they scan the text

    char Current() const { return *at; }

    // Forward by one character.
    void Step() {
        if (at < end) {
            ++at;
        } else {
            overrun = true;
        }
    }

    // Forward to the next `c`; stays where it is if `c` is there already.
    void GoTo(char c);

    // Past the next "(".
    void Enter() {
        GoTo('(');
        Step();
    }

    // Past the next `commas` commas, wherever they are: in a name or a list too.
    void PassCommas(int commas) {
        for (int i = 0; i < commas; ++i) {
            GoTo(',');
            Step();
        }
    }

    void SkipBlanks() {
        for (int left = FarPlaces::kNear; *at == ' '; ++at) {
            if (--left == 0) { return SkipFar(false); }
        }
    }
    void SkipBlanksAndLineFeeds() {
        for (int left = FarPlaces::kNear; *at == ' ' || *at == '\n'; ++at) {
            if (--left == 0) { return SkipFar(true); }
        }
    }

    // Forward to the comma that ends an argument, past whatever is in parentheses; stays where it is if the
    // comma is there already. From within a list the walk leads out of it; where the entity ends first, the
    // walk goes on to a comma of a later entity.
    void GoToArgumentComma();

    // Past the next `arguments` arguments and their commas, as GoToArgumentComma finds them.
    void SkipArguments(int arguments) {
        for (int i = 0; i < arguments; ++i) {
            SkipBlanksAndLineFeeds();
            GoToArgumentComma();
            Step();
        }
    }

    // From the start of an entity's line past the opening quote of its first string.
    void GoToFirstString() {
        GoTo('(');
        GoTo('\'');
        Step();
    }

    // The next of the characters `c...` at or after `from`; `end` where there is none.
    template <char... c>
    const char* Next(const char* from) const {
        const char* const nearEnd = NearEnd(from);
        while (from < nearEnd && ((*from != c) && ...)) { ++from; }
        return from < nearEnd || from == end ? from : NextFar({c...}, from);
    }

    // The next characters of the text, at most `most`.
    std::string_view Ahead(std::size_t most) const {
        return std::string_view(at, static_cast<std::size_t>(end - at)).substr(0, most);
    }

private:
    // How far a walk at `from` scans the text itself.
    const char* NearEnd(const char* from) const {
        return far != nullptr && end - from > FarPlaces::kNear ? from + FarPlaces::kNear : end;
    }
    const char* NextFar(std::initializer_list<char> wanted, const char* from) const;
    void SkipFar(bool lineFeeds);
};

// The integer at `p` as the C library reads it: white space, a sign, digits. No digits give 0, and what
// exceeds 32 bits gives the nearest number that fits.
std::int32_t StringToInteger(const char* p);

// The decimal value of the digits at `walk`, which is left after them; 0 without digits, and at most what 32
// bits hold. kDigitRoom digits or more end the process.
std::int32_t ReadDigits(TextWalk* walk);

// Goes to the next "#" and reads the digits after it, as ReadDigits does.
std::int32_t ReadReference(TextWalk* walk);

// `count` reals, the first at the walk and each further one after the next comma. The walk is left at the
// last.
void ReadReals(TextWalk* walk, double* values, int count);

// The characters from the walk's place, which is after an opening quote, up to the next quote, where the
// walk is left. No doubling of quotes is understood. `limit` characters or more end the process.
std::string_view ReadQuoted(TextWalk* walk, std::size_t limit);

// The first string of an entity from the start of its line, as ReadQuoted reads it.
std::string_view ReadFirstString(TextWalk* walk, std::size_t limit);

// Appends the references of a list in parentheses, at or after the walk's place, to `ids`. The walk is left
// at the "#" of the last reference, or at the ")" of an empty list.
void ParseIdList(TextWalk* walk, std::vector<std::int32_t>* ids);

} // namespace tarnwick
