#pragma once

#include "faults/judge.h"

#include <map>
#include <string>
#include <vector>

namespace tarnwick::faults {

// A run that didn't end well.
struct Finding {
    Verdict verdict;
    Fault fault;
    bool allLater;
    std::int64_t at;
    std::string input;
    Case one;
    int signal;
    int status;
    std::string line; // the first that the fault brought
    // Of the program's own code, as addresses in its file, the innermost first.
    std::vector<std::uintptr_t> faultFrames;
    std::vector<std::uintptr_t> crashFrames;
};

const char* NameOf(Fault fault);

std::vector<std::uintptr_t> OwnFrames(const Frames& frames, std::uintptr_t base);

// Findings of one place in the code together, the most frequent first, each with one example.
std::string FindingsText(const std::vector<Finding>& findings);

} // namespace tarnwick::faults
