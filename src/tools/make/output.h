#pragma once

#include "write/p21_writer.h"

#include <functional>
#include <string>
#include <string_view>

// A whole file from opening to closing, with the one line that says why it couldn't be written.
namespace tarnwick::make {

// As files name the program that wrote them.
inline constexpr std::string_view kProgram = "tarnwick-make";

// Calls `write` with a writer on a new file; false, and a line on standard error, when it couldn't be
// written.
bool WriteP21(const std::string& path, bool compress, const std::function<void(P21Writer*)>& write);
// The same for any other text.
bool WriteFile(const std::string& path, bool compress, const std::function<void(ByteSink*)>& write);

// The line that says why.
void SayUnwritable(const std::string& path, const std::string& why);

} // namespace tarnwick::make
