#pragma once

#include "prepare/prepare.h"

#include <string>
#include <vector>

namespace tarnwick::tools {

// What came of a file, for people: a sentence, then a line for each of the first losses.
std::string OutcomeText(const prepare::PrepareResult& result);
// The same of all files, as JSON.
std::string OutcomeJson(const std::vector<prepare::PrepareResult>& results);

// A loss on one line: "wheel: #12: it has no faces".
std::string LossText(const prepare::Loss& loss);

} // namespace tarnwick::tools
