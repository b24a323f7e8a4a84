#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick {

// A program that runs beside the viewer. Its standard input is empty, its output goes where ours does. Its
// arguments arrive byte for byte: the toolkit would recode them, and a file name needn't be text. Used by one
// thread.
class ChildProgram {
public:
    // Starts `command`, whose first word is looked for as the shell does; a failure is told on the console.
    explicit ChildProgram(const std::vector<std::string>& command);
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;
    ~ChildProgram() { Kill(); }

    bool IsRunning();
    // Whether it has ended by itself, with status 0.
    bool HasSucceeded() const { return succeeded_; }
    // Ends it, and waits for that.
    void Kill();

private:
    std::intptr_t process_ = 0; // its number or handle; 0 when there is none to wait for
    bool succeeded_ = false;
};

// Starts a program that outlives the viewer; the first word is its path.
void StartDetached(const std::vector<std::string>& command);

} // namespace tarnwick
