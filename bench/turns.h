#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarnwick::bench {

// One of the ways to do a piece of work. `run` does it once and returns the seconds that count, so that it
// can prepare and clean up outside of them.
struct Way {
    std::string name;
    std::function<double()> run;
};

// The seconds that `work` takes.
double Seconds(const std::function<void()>& work);

// Runs all ways in turn, `turns` times and once before to warm up, so that the noise of a shared machine hits
// all alike, and prints for each the median and the spread of its time and of its ratios to the first way in
// the same turn.
void RunInTurn(const char* title, int turns, const std::vector<Way>& ways);

} // namespace tarnwick::bench
