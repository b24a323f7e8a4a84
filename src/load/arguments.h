#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// The most arguments that SplitArguments tells apart; the rest of the text is dropped.
inline constexpr std::size_t kMostArguments = 10;

// Splits the text of a path or of a command line into arguments: an argument may be in double quotes, and the
// first one, without quotes, may have blanks up to its first ".".
std::vector<std::string> SplitArguments(std::string_view line);

// The text of one control line from program arguments: each in double quotes, so that blanks in them survive.
std::string JoinArguments(const std::vector<std::string>& arguments);

} // namespace tarnwick
