#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarnwick {

// Answers --help and --version, and says so when there is no display to open a window on. Returns the exit
// status when the program has nothing more to do.
std::optional<int> AnswerAtOnce(int argc, const char* const* argv);

// The arguments after the program's name.
std::vector<std::string> ArgumentsOf(int argc, const char* const* argv);

// Takes --resident out of the arguments. True when it was there, or TARNWICK_RESIDENT is 1 in the
// environment.
bool TakeResident(std::vector<std::string>* arguments);

} // namespace tarnwick
