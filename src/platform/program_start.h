#pragma once

#include <string>
#include <vector>

namespace tarnwick {

// What main needs first: the words of the command line, UTF-8 where the system's own are UTF-16, and standard
// streams that take bytes as they are. Where main's own words will do, these are passed on.
class ProgramStart {
public:
    ProgramStart(int argc, char** argv);
    ProgramStart(const ProgramStart&) = delete;
    ProgramStart& operator=(const ProgramStart&) = delete;

    int count;    // of `words`, which a null follows
    char** words; // the first names the program

private:
    std::vector<std::string> texts_; // the words, where they aren't main's own
    std::vector<char*> pointers_;
};

} // namespace tarnwick
