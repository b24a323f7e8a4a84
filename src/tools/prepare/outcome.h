#pragma once

#include "prepare/prepare.h"

#include <string>
#include <vector>

namespace tarnwick::tools {

// What came of a file, for people: a sentence, then a line for each thing that did not come.
std::string OutcomeText(const prepare::PrepareResult& result);
// The same of all files, as JSON.
std::string OutcomeJson(const std::vector<prepare::PrepareResult>& results);

// What did not come, and why, on one line: "wheel: #12: it has no faces".
std::string LossText(const prepare::Loss& loss);

} // namespace tarnwick::tools
