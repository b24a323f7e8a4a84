#pragma once

#include "p21/step_model.h"

#include <cstdint>
#include <string_view>
#include <vector>

// The text of an entity read as ISO 10303-21 defines it, with strings and nesting, to compare the readers
// with, which go by fixed moves. All views are into the model's text.
namespace tarnwick {

// From the "#" of the entity up to its ";", or to where the next entity starts if that comes first.
std::string_view EntityText(const StepModel& model, const P42Ent* entity);

// The keyword; empty for a complex instance.
std::string_view KeywordOf(std::string_view entityText);

// The arguments of a simple entity, with the blanks around them; of a text that breaks off, those that are
// there.
std::vector<std::string_view> ArgumentsOf(std::string_view entityText);

// Where a reader arrives that goes to the first "(", past so many commas, even those in strings, and to the
// next `target`; null when there is none.
const char* PlaceAfter(std::string_view entityText, int commas, char target);

// Without the blanks, tabs, line ends and comments at its start.
std::string_view SkipSpace(std::string_view text);

// Without blanks, tabs and line ends around it.
std::string_view Trimmed(std::string_view text);

// The number of a reference, 0 for any other argument and for a number that is no entity's.
std::int32_t IdIn(std::string_view argument);

// Goes through the references in a text, one with each call. Passes over strings, and over what begins
// another entity, "#12=".
class ReferenceFinder {
public:
    explicit ReferenceFinder(std::string_view text) : text_(text) {}
    // False when there is none left. `*digits` counts the digits, `*at` is the place of the "#" in the text.
    bool Next(std::int32_t* id, std::size_t* digits, std::size_t* at);

private:
    std::string_view text_;
    std::size_t place_ = 0;
};

// The numbers that the references of a list have.
std::vector<std::int32_t> ReferencesIn(std::string_view list);

// What a list of values, or of lists of values, holds.
struct ListShape {
    bool sound = true;         // values of the kind asked for, with commas between them, and nothing else
    std::int64_t values = 0;   // at any depth
    std::int64_t inner = 0;    // lists in the list
    bool triples = true;       // each of them has three values
    bool blankBetween = false; // a blank or tab between the lists of the list
    bool blankAtEnd = false;   // the same after the last of them
};
enum class ValueKind { kNumbers, kReferences };
// "$" has the shape of an empty list.
ListShape ShapeOf(std::string_view list, ValueKind values = ValueKind::kNumbers);

// What is between the quotes of an argument that is a string, else empty.
std::string_view TextInQuotes(std::string_view argument);

// An offset from the start of the model's text.
inline std::int32_t OffsetOf(const StepModel& model, const char* place) {
    return static_cast<std::int32_t>(place - model.text);
}

} // namespace tarnwick
