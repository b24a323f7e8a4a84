#pragma once

#include <string>
#include <string_view>

namespace tarnwick::test {

// The path of a file or folder in the folder that the environment variable TARNWICK_REAL_FILES names: files
// that nobody here wrote, and that are no part of the project. Empty without the variable, or where there is
// no such file: the test is skipped then.
std::string RealFile(std::string_view name);

} // namespace tarnwick::test
