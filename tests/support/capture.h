#pragma once

#include <cstdio>
#include <string>

namespace tarnwick::test {

// What is written to one of the standard streams while this object lives. No test assertion may fail
// meanwhile: its message would be captured too.
class StreamCapture {
public:
    explicit StreamCapture(std::FILE* stream);
    StreamCapture(const StreamCapture&) = delete;
    StreamCapture& operator=(const StreamCapture&) = delete;
    ~StreamCapture();

    // What was written since the last call.
    std::string Take();

private:
    std::FILE* stream_;
    int file_;
    int saved_;
};

// Both log channels at once: the console channel is standard error, the other one standard output.
class LogCapture {
public:
    std::string TakeOutput() { return output_.Take(); }
    std::string TakeConsole() { return console_.Take(); }

private:
    StreamCapture output_{stdout};
    StreamCapture console_{stderr};
};

} // namespace tarnwick::test
