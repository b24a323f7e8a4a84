#pragma once

#include "faults/plan.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace tarnwick::faults {

// One way to run one program.
struct Case {
    std::string name;
    std::string program;
    std::vector<std::string> arguments; // "%o" in them is the folder of what is written
    bool isLog = false;         // standard output is a log, of which the line of the status text counts
    bool tellsOnOutput = false; // the report on standard output may be what says "memory"
    bool writesText = false;    // what it writes are texts that end with a line of their kind
    std::string other = {};     // a program that it starts, whose are the faults; empty for its own
    bool mayPrepare = false;    // it may prepare what it doesn't get otherwise
    int milliseconds = 3000;    // for a run that takes a part of it
    std::string preloaded = {}; // a library that takes the place of others
    std::filesystem::path before = {}; // a folder that is in that of what is written when it starts
};

// How a program ended, and what it left.
struct Ending {
    bool hangs = false;
    int signal = 0;
    int status = 0;
    std::string output;
    std::string errors;
    std::map<std::string, std::string> files; // by name
};

// What a run is compared by: times are blotted out, and whether something was there already.
std::string WithoutTimes(std::string text);
// The lines of a text.
std::vector<std::string> LinesOf(const std::string& text);

// Runs programs one at a time, each with a fault; one for each thread of the driver.
class Runner {
public:
    // `preload` is the library that fails calls; files go into `folder`, which this makes and removes.
    Runner(std::string preload, std::filesystem::path folder);
    ~Runner();
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    Ending Run(const Case& one, Fault fault, std::int64_t at, bool allLater);
    // Of the last run.
    const Plan& LastPlan() const { return *plan_; }

private:
    std::string WithoutFolders(std::string text) const;
    std::string TakeText(int file);
    void ClearFolder();

    std::string preload_;
    std::filesystem::path folder_;
    int planFile_;
    int outputFile_;
    int errorFile_;
    Plan* plan_;
};

} // namespace tarnwick::faults
