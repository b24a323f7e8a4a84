#include "turns.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace tarnwick::bench {

namespace {

struct Spread {
    double median;
    double least;
    double most;
};

Spread SpreadOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return {values[values.size() / 2], values.front(), values.back()};
}

} // namespace

double Seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    return wall.count();
}

void RunInTurn(const char* title, int turns, const std::vector<Way>& ways) {
    std::vector<std::vector<double>> seconds(ways.size());
    for (int turn = 0; turn <= turns; ++turn) {
        for (std::size_t i = 0; i < ways.size(); ++i) {
            const double taken = ways[i].run();
            if (turn > 0) { seconds[i].push_back(taken); }
        }
    }
    std::printf("%-44s %10s %9s %9s %8s %8s %8s\n", title, "median ms", "least", "most", "x time", "least",
                "most");
    for (std::size_t i = 0; i < ways.size(); ++i) {
        std::vector<double> ratios;
        for (std::size_t turn = 0; turn < seconds[i].size(); ++turn) {
            ratios.push_back(seconds[i][turn] / seconds[0][turn]);
        }
        const Spread time = SpreadOf(seconds[i]);
        const Spread ratio = SpreadOf(ratios);
        std::printf("  %-42s %10.2f %9.2f %9.2f %8.2f %8.2f %8.2f\n", ways[i].name.c_str(), time.median * 1e3,
                    time.least * 1e3, time.most * 1e3, ratio.median, ratio.least, ratio.most);
    }
    std::fflush(stdout);
}

} // namespace tarnwick::bench
