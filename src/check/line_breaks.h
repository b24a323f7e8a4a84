#pragma once

#include <cstdint>
#include <string_view>

// Which line ends in the lists of a face, or of points, do harm: the readers stop at some and pass over
// others.
namespace tarnwick {

enum class BreakKind : std::uint8_t {
    kNone,
    kNumber, // the number after it reads as 0
    kEnd,    // the list ends there
    kWalk    // what follows is taken for something else
};

struct LineBreak {
    BreakKind kind = BreakKind::kNone; // the worst in the list
    const char* place = nullptr;       // of the first line feed of that kind
    std::int64_t count = 0;            // line feeds of that kind
    std::int64_t triplesBefore = 0;    // that are read up to the place
};

// A list of triples, ((1.,0.,0.),(1.,1.,0.)). `isLast` where nothing after the list is read.
LineBreak BreakInTriples(std::string_view list, bool isReal, bool isLast);
// A list of numbers, (1,2,3).
LineBreak BreakInNumbers(std::string_view list);
// A list of strips or fans, the last list of the entity or not.
LineBreak BreakInStrips(std::string_view list, bool isLast);
// The text between two arguments, with its comma.
enum class Between : std::uint8_t { kAny, kAfterNumber, kBeforeTriangles };
LineBreak BreakBetween(std::string_view between, Between kind);

} // namespace tarnwick
