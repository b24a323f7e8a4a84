#pragma once

#include "check/check_file.h"
#include "load/load_file.h"

#include <string>
#include <vector>

namespace tarnwick {

// What the check of one file, with all files that it leads to, has found.
struct CheckReport {
    std::string path;               // as it was given
    std::vector<std::string> files; // that were checked; the first is `path`
    KeywordCounts counts;           // over all of them
    std::vector<Finding> findings;  // by kind, file and line
};

// Checks the file at `path`, and for an assembly each of its P21 files. STEP XML, archives and summaries are
// loaded for it, with `dispatch`; P21 text isn't, so that a file which would end the program can be told.
CheckReport CheckPath(LoadDispatch& dispatch, const std::string& path, const char* rootName, bool useThreads);

// The report as people read it: counts, findings by kind with at most 10 of each, and one sentence of advice.
std::string CheckText(const CheckReport& report);

// The same as one JSON object ("tarnwick.check/1") with all findings, and a line feed at its end.
std::string CheckJson(const CheckReport& report);

} // namespace tarnwick
