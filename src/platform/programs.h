#pragma once

#include <string>
#include <string_view>

// Where programs are.
namespace tarnwick {

// The path of the program that runs; empty where the system doesn't tell.
std::string OwnProgram();

// The path of the program `name` in `folder` (empty, or with a separator at its end); empty where there is
// none that can be run.
std::string ProgramIn(std::string_view folder, std::string_view name);

// The path of the first program of that name in the folders of PATH, of which empty ones are passed over.
// Empty where there is none.
std::string FindProgram(std::string_view name);

} // namespace tarnwick
