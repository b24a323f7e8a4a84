#pragma once

#include "faults/program_run.h"

#include <set>

namespace tarnwick::faults {

enum class Verdict {
    kSame,       // the fault changed nothing
    kTold,       // less is shown or written, and a line says so (for want of memory: "memory")
    kOtherWords, // a line tells of something else than memory
    kSilent,     // less is shown, and nothing says so
    kSignal,
    kHang,
    kStatus, // an exit status other than 0, 1 and 2
    kLeak,
    kHalfWritten, // under the name of the whole, or beside it
};
inline constexpr int kVerdicts = 9;

const char* NameOf(Verdict verdict);
bool IsGood(Verdict verdict);

// What the undisturbed program does.
struct Undisturbed {
    int status = 0;
    std::string output;
    std::map<std::string, std::string> files;
    std::set<std::string> errorLines; // numbers blotted out
    std::int64_t blocks = 0;          // that it doesn't give back, at most
    std::int64_t pageBytes = 0;
};

// A line with its numbers blotted out.
std::string WithoutNumbers(const std::string& line);
// The same without the names of files.
std::string WithoutNames(const std::string& line);

// Adds a run without a fault; false when it shows something else than those before.
bool AddUndisturbed(const Case& one, const Ending& ending, const Plan& plan, bool isFirst, Undisturbed* all);

// `line` is the first that the fault brought, if any.
Verdict Judge(const Case& one, const Undisturbed& undisturbed, const Ending& ending, const Plan& plan,
              std::string* line);

} // namespace tarnwick::faults
