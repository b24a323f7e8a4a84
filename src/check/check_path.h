#pragma once

#include "check/check_file.h"
#include "check/load_trial.h"
#include "load/load_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick {

// What a file and all that it refers to really hold: placed parts, and each body once.
struct ShapeTotals {
    std::int64_t parts = 0;
    std::int64_t tessellated = 0;
    std::int64_t exactSolids = 0;
    std::int64_t exactSurfaces = 0;
    std::int64_t elements = 0; // finite elements
    std::int64_t files = 0;    // that hold a shape
};

// What the check of one file, with all files that it leads to, has found.
struct CheckReport {
    std::string path;               // as it was given
    std::vector<std::string> files; // that were checked; the first is `path`
    KeywordCounts counts;           // over all of them
    std::vector<Finding> findings;  // by kind, file and line
    LoadOutcome outcome;
    ShapeTotals totals;
    prepare::FileStructure top;     // of a P21 file
    std::int64_t elementsDrawn = 0; // finite elements
    bool hasElementSurface = false; // some have a surface
    std::int64_t placedInTree = -1; // parts of STEP XML that the load places
    std::string command; // that brings the file into the form that the viewer shows; empty where none does
};

// Checks the file at `path`, and for an assembly each of its files, after a trial of the load in a process of
// its own. To be called while there is no other thread.
CheckReport CheckPath(LoadDispatch& dispatch, const std::string& path, const char* rootName, bool useThreads);

// The same without a trial: `outcome` is that of an earlier one, or says that there was none.
CheckReport CheckWith(const std::string& path, const char* rootName, LoadOutcome outcome);

// The kind of the file, by its text where its extension isn't known.
FileKind KindToCheck(const std::string& path);

// Counts the placed parts of the file and of all that it refers to; its shapes too, where the readers didn't
// reach the files that hold them.
void CountParts(CheckReport* report);
void CountShape(const prepare::ShapeItem& item, ShapeTotals* totals);

// "12,345"
std::string Grouped(std::int64_t number);

// What the file shows, as one sentence without its point: "Shows 11 of 13 parts".
std::string SummaryOf(const CheckReport& report);

struct CheckTextOptions {
    bool isVerbose = false; // with what the load says, and the counts of all keywords
    bool colours = false;   // as terminals take them
};
// The report for people: the summary, and the findings by kind, at most 10 of each, with what to do about
// them. UTF-8, whatever the bytes of the names are.
std::string CheckText(const CheckReport& report, const CheckTextOptions& options = {});

// The same as one JSON object ("tarnwick.check/1") with all findings, and a line feed at its end.
std::string CheckJson(const CheckReport& report);

} // namespace tarnwick
