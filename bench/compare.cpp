// tarnwick-bench-compare RUNS NAME=COMMAND [NAME=COMMAND...]: runs whole programs in turn, so that the noise
// of a shared machine hits all alike, and prints for each the median and the spread of its wall-clock time,
// its processor time, its peak memory, and the medians of the ratios to the first. A command's words are
// separated by blanks; no shell is involved. Commands with "then" between them run one after another, and
// count as one program.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Run {
    double seconds;
    double processorSeconds;
    double megabytes; // peak resident memory
};

struct Program {
    std::string name;
    std::vector<std::vector<std::string>> commands;
    std::vector<Run> runs;
    int status = 0;
};

bool Parse(const std::string& text, Program* program) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) { return false; }
    program->name = text.substr(0, equals);
    std::istringstream words(text.substr(equals + 1));
    program->commands.emplace_back();
    for (std::string word; words >> word;) {
        if (word == "then") {
            program->commands.emplace_back();
        } else {
            program->commands.back().push_back(word);
        }
    }
    return std::none_of(program->commands.begin(), program->commands.end(),
                        [](const auto& command) { return command.empty(); });
}

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

bool RunCommand(std::vector<std::string>& command, Run* run, int* status) {
    std::vector<char*> words;
    for (std::string& word : command) { words.push_back(word.data()); }
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int spawned = posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) { return false; }
    rusage usage{};
    if (wait4(child, status, 0, &usage) < 0) { return false; }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    run->seconds += wall.count();
    run->processorSeconds += Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    run->megabytes = std::max(run->megabytes, static_cast<double>(usage.ru_maxrss) / 1024.0);
    return true;
}

bool RunOnce(Program* program, bool counted) {
    Run run{};
    for (std::vector<std::string>& command : program->commands) {
        int status = 0;
        if (!RunCommand(command, &run, &status)) { return false; }
        if (status != 0) { program->status = status; }
    }
    if (counted) { program->runs.push_back(run); }
    return true;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

template <class Figure>
std::vector<double> Figures(const Program& program, Figure figure) {
    std::vector<double> values;
    for (const Run& run : program.runs) { values.push_back(figure(run)); }
    return values;
}

// The median of this program's figure over that of the first in the same turn.
template <class Figure>
double Ratio(const Program& program, const Program& first, Figure figure) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < program.runs.size(); ++i) {
        ratios.push_back(figure(program.runs[i]) / figure(first.runs[i]));
    }
    return Median(ratios);
}

void Print(const std::vector<Program>& programs) {
    const auto wall = [](const Run& run) { return run.seconds; };
    const auto processor = [](const Run& run) { return run.processorSeconds; };
    const auto memory = [](const Run& run) { return run.megabytes; };
    std::printf("%-24s %9s %9s %9s %9s %9s %8s %11s %8s\n", "", "median s", "least", "most", "processor",
                "peak MB", "x time", "x processor", "x memory");
    for (const Program& program : programs) {
        const std::vector<double> seconds = Figures(program, wall);
        std::printf("%-24s %9.3f %9.3f %9.3f %9.3f %9.1f %8.2f %11.2f %8.2f%s\n", program.name.c_str(),
                    Median(seconds), *std::min_element(seconds.begin(), seconds.end()),
                    *std::max_element(seconds.begin(), seconds.end()), Median(Figures(program, processor)),
                    Median(Figures(program, memory)), Ratio(program, programs[0], wall),
                    Ratio(program, programs[0], processor), Ratio(program, programs[0], memory),
                    program.status == 0 ? "" : "  (failed)");
    }
}

} // namespace

int main(int argc, char** argv) {
    const int runs = argc > 2 ? std::atoi(argv[1]) : 0;
    std::vector<Program> programs;
    for (int i = 2; i < argc; ++i) {
        if (!Parse(argv[i], &programs.emplace_back())) { return 2; }
    }
    if (runs < 1 || programs.empty()) {
        std::fprintf(stderr, "usage: tarnwick-bench-compare RUNS NAME=COMMAND...\n");
        return 2;
    }
    for (int turn = 0; turn <= runs; ++turn) { // the first turn warms up
        for (Program& program : programs) {
            if (!RunOnce(&program, turn > 0)) {
                std::fprintf(stderr, "%s can't be run\n", program.commands[0][0].c_str());
                return 1;
            }
        }
    }
    Print(programs);
    return 0;
}
