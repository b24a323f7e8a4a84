#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace tarnwick::tools {

// "12 s", "3:05 min" or "1:02 h".
std::string Duration(double seconds);

// Shows the progress of a file on standard error: a bar on a terminal, else now and then a line. Called by
// one thread at a time.
class Progress {
public:
    explicit Progress(std::string name);
    ~Progress() { Clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Tell(std::size_t done, std::size_t parts);

private:
    void Clear();
    double Seconds() const;

    const std::string name_;
    const bool isTerminal_;
    const std::chrono::steady_clock::time_point begin_;
    double lastTold_; // seconds
    bool isShown_ = false;
};

} // namespace tarnwick::tools
