#pragma once

#include <string>
#include <vector>

namespace tarnwick::test {

struct ProgramRun {
    int status; // exit status; -1 when a signal ended the program
    std::string output;
    std::string errors;
};

// Runs a program to its end, without a shell. `environment` is added to that of the test ("LC_ALL=C").
ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment = {});

} // namespace tarnwick::test
