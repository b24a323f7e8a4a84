// tarnwick-bench-growth TURNS TARNWICK-LOAD [OPTIONS]: how the time of a load grows with files that once
// took, or might take, the square of their size. Prints the best of the turns for a file, one of twice and
// one of four times its size, and what the last is to the first.

#include "growth_cases.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

namespace {

double SecondsOf(const std::string& command, int turns) {
    using Clock = std::chrono::steady_clock;
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < turns; ++i) {
        const auto start = Clock::now();
        if (std::system(command.c_str()) < 0) { std::exit(2); }
        best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
    }
    return best;
}

} // namespace

int main(int argc, char** argv) {
    const int turns = argc > 2 ? std::atoi(argv[1]) : 0;
    if (turns < 1) {
        std::fprintf(stderr, "usage: tarnwick-bench-growth TURNS TARNWICK-LOAD [OPTIONS]\n");
        return 2;
    }
    std::string program = argv[2];
    for (int i = 3; i < argc; ++i) { program += std::string(" ") + argv[i]; }
    std::string folder = "/tmp/tarnwick-growth-" + std::string(6, 'X'); // mkdtemp replaces these
    if (mkdtemp(folder.data()) == nullptr) { return 2; }
    std::printf("%-46s %9s %9s %9s %7s\n", "seconds", "n", "2n", "4n", "4n / n");
    for (const tarnwick::growth::Case& tried : tarnwick::growth::Cases()) {
        double seconds[3];
        for (int i = 0; i < 3; ++i) {
            const std::string path = folder + "/growth." + tried.extension;
            std::ofstream(path) << tried.text(tried.n << i);
            seconds[i] = SecondsOf(program + " " + path + " >/dev/null 2>&1", turns);
        }
        std::printf("%-46s %9.4f %9.4f %9.4f %7.1f\n", tried.name, seconds[0], seconds[1], seconds[2],
                    seconds[2] / seconds[0]);
    }
    std::filesystem::remove_all(folder);
    return 0;
}
