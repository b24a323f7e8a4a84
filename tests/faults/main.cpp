// tarnwick-faults: runs the programs over small files of every kind, and lets each allocation and each call
// to the system fail once: alone, and with all that come after it. Prints how the runs ended.

#include "faults/cases.h"
#include "faults/findings.h"
#include "faults/judge.h"

#include <CLI/CLI.hpp>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <sstream>
#include <thread>

namespace tarnwick::faults {
namespace {

constexpr int kWarmUps = 4;
constexpr const char* kViewer = "viewer";
constexpr int kViewerMilliseconds = 600000; // for all loads of a file

struct Options {
    std::string only;               // a piece of the names of cases
    std::vector<std::string> kinds; // of faults; all when empty
    int jobs = 2;
    std::int64_t most = 0; // calls that fail, of each kind in each case, evenly spread; 0 for all
    std::string details;   // file for the findings
    std::string known;     // file of findings that are known
};

// A line of the table.
struct Tally {
    std::array<std::int64_t, kVerdicts> count{};
};

void PrintHead();
// Of the table of docs/robustness.md.
void PrintSum(const char* fault, const Tally& tally);
void PrintRow(const std::string& name, const char* fault, const Tally& tally);

class Campaign {
public:
    Campaign(const Options& options, std::filesystem::path folder)
        : options_(options), folder_(std::move(folder)),
          first_(TARNWICK_FAULTS_PRELOAD, folder_ / "out-first") {}

    void Run(const Input& input) {
        for (const Case& one : input.cases) {
            if (one.name.find(options_.only) == std::string::npos) { continue; }
            const std::vector<Fault> faults = FaultsOf(one);
            if (faults.empty()) { continue; }
            const Undisturbed undisturbed = RunUndisturbed(one);
            for (const Fault fault : faults) { RunFault(input, one, undisturbed, fault); }
        }
        PrintRows(input.name);
    }

    // The dialog's loads, which are many in one process.
    void RunViewer(const std::string& viewer, const std::vector<std::string>& files) {
        for (const std::string& file : files) {
            const Case one{.name = "viewer " + std::filesystem::path(file).filename().string(),
                           .program = viewer,
                           .arguments = {"1", std::to_string(options_.most), "0", files.back(), file},
                           .milliseconds = kViewerMilliseconds};
            if (one.name.find(options_.only) == std::string::npos || !IsWanted(Fault::kMemory)) { continue; }
            for (const bool allLater : {false, true}) { RunViewerLoads(one, allLater); }
        }
        PrintRows(kViewer);
    }

    // The table, and the findings; true when there is none that isn't known.
    bool Report() const;

private:
    std::vector<Fault> FaultsOf(const Case& one) const {
        const bool arenas = one.name.starts_with("arenas");
        const bool hasThreads = one.name.find("--no-threads") == std::string::npos;
        std::vector<Fault> faults;
        for (int number = 1; number <= static_cast<int>(Fault::kMakeFolder); ++number) {
            const Fault fault = static_cast<Fault>(number);
            if (arenas != (fault == Fault::kArena)) { continue; }
            if (fault == Fault::kThread && !hasThreads) { continue; }
            if (IsWanted(fault)) { faults.push_back(fault); }
        }
        return faults;
    }
    bool IsWanted(Fault fault) const {
        const auto& kinds = options_.kinds;
        return kinds.empty() || std::find(kinds.begin(), kinds.end(), NameOf(fault)) != kinds.end();
    }

    void RunViewerLoads(Case one, bool allLater) {
        one.arguments[2] = allLater ? "1" : "0";
        for (std::int64_t from = 1;;) {
            one.arguments[0] = std::to_string(from);
            const Ending ending = first_.Run(one, Fault::kMemory, 0, false);
            const Plan& plan = first_.LastPlan();
            bool isEnd = false;
            for (const std::string& line : LinesOf(ending.output)) {
                isEnd = line == "end";
                if (!isEnd) { TakeViewerLine(one, allLater, line, plan.programBase); }
            }
            if (isEnd) { return; }
            if (plan.crashedInToolkit != 0 && plan.at >= from) {
                ++endsInToolkit_;
                from = plan.at + 1;
                continue;
            }
            const Verdict verdict = ending.hangs         ? Verdict::kHang
                                    : ending.signal != 0 ? Verdict::kSignal
                                                         : Verdict::kStatus;
            ++tallies_[{kViewer, Fault::kMemory}].count[static_cast<std::size_t>(verdict)];
            findings_.push_back({verdict, Fault::kMemory, allLater, plan.at, kViewer, one, ending.signal,
                                 ending.status, "", OwnFrames(plan.fault0, plan.programBase),
                                 OwnFrames(plan.crash, plan.programBase)});
            if (plan.at < from) { return; } // not by a fault: it would end so again
            from = plan.at + 1;
        }
    }

    // What the program tells of one load.
    void TakeViewerLine(const Case& one, bool allLater, const std::string& line, std::uintptr_t base) {
        const std::size_t tab = std::min(line.find('\t'), line.size());
        std::istringstream words(line.substr(0, tab));
        std::int64_t at = 0;
        int verdict = 0;
        Frames frames{};
        std::uintptr_t address = 0;
        words >> at >> verdict >> std::hex;
        while (frames.count < kMostFrames && words >> address) {
            frames.address[frames.count++] = reinterpret_cast<void*>(address);
        }
        const std::string told = line.substr(std::min(tab + 1, line.size()));
        ++tallies_[{kViewer, Fault::kMemory}].count[static_cast<std::size_t>(verdict)];
        if (!IsGood(static_cast<Verdict>(verdict))) {
            findings_.push_back({static_cast<Verdict>(verdict),
                                 Fault::kMemory,
                                 allLater,
                                 at,
                                 kViewer,
                                 one,
                                 0,
                                 0,
                                 told,
                                 OwnFrames(frames, base),
                                 {}});
        } else if (!told.empty()) {
            ++messages_["memory: " + WithoutNames(told)];
        }
    }

    Undisturbed RunUndisturbed(const Case& one) {
        Undisturbed undisturbed;
        for (int i = 0; i < kWarmUps; ++i) {
            const Ending ending = first_.Run(one, Fault::kNone, 0, false);
            if (AddUndisturbed(one, ending, first_.LastPlan(), i == 0, &undisturbed)) { continue; }
            std::fprintf(stderr, "%s: not the same without a fault, status %d, signal %d\n%s",
                         one.name.c_str(), ending.status, ending.signal, ending.errors.c_str());
            std::exit(3);
        }
        return undisturbed;
    }

    void RunFault(const Input& input, const Case& one, const Undisturbed& undisturbed, Fault fault) {
        first_.Run(one, fault, 0, false);
        const std::int64_t calls = first_.LastPlan().calls;
        if (calls == 0) { return; }
        const std::int64_t step = options_.most > 0 ? std::max<std::int64_t>(1, calls / options_.most) : 1;
        for (const bool allLater : {false, true}) {
            // Threads that meet allocate more now and then.
            std::atomic<std::int64_t> next{1};
            std::vector<std::jthread> workers;
            for (int i = 0; i < options_.jobs; ++i) {
                workers.emplace_back([&, i] {
                    Runner runner(TARNWICK_FAULTS_PRELOAD, folder_ / ("out-" + std::to_string(i)));
                    std::int64_t at = 0;
                    while ((at = next.fetch_add(step)) <= calls) {
                        RunOnce(runner, input, one, undisturbed, fault, at, allLater);
                    }
                });
            }
        }
    }

    void RunOnce(Runner& runner, const Input& input, const Case& one, const Undisturbed& undisturbed,
                 Fault fault, std::int64_t at, bool allLater) {
        const Ending ending = runner.Run(one, fault, at, allLater);
        const Plan& plan = runner.LastPlan();
        std::string line;
        const Verdict verdict = Judge(one, undisturbed, ending, plan, &line);
        const std::lock_guard hold(lock_);
        if (plan.failed == 0 && IsGood(verdict)) { return; } // with threads the last calls may not come
        Tally& tally = tallies_[{input.name, fault}];
        ++tally.count[static_cast<std::size_t>(verdict)];
        if (IsGood(verdict)) {
            if (!line.empty()) { ++messages_[std::string(NameOf(fault)) + ": " + WithoutNames(line)]; }
            return;
        }
        findings_.push_back({verdict, fault, allLater, at, input.name, one, ending.signal, ending.status,
                             line, OwnFrames(plan.fault0, plan.programBase),
                             OwnFrames(plan.crash, plan.programBase)});
    }

    // The rows of an input, when it is done.
    void PrintRows(const std::string& input) const;
    bool IsKnown(const Finding& finding) const;

    const Options& options_;
    std::filesystem::path folder_;
    Runner first_;
    std::mutex lock_;
    std::map<std::pair<std::string, Fault>, Tally> tallies_;
    std::map<std::string, int> messages_;
    std::vector<Finding> findings_;
    int endsInToolkit_ = 0;
};

void PrintRow(const std::string& name, const char* fault, const Tally& tally) {
    std::int64_t runs = 0;
    for (const std::int64_t count : tally.count) { runs += count; }
    const auto of = [&](Verdict verdict) {
        return static_cast<long>(tally.count[static_cast<std::size_t>(verdict)]);
    };
    std::printf("%-18s %-11s %7ld %7ld %7ld %7ld %7ld %7ld %7ld %7ld %7ld %7ld\n", name.c_str(), fault,
                static_cast<long>(runs), of(Verdict::kSame), of(Verdict::kTold), of(Verdict::kOtherWords),
                of(Verdict::kSilent), of(Verdict::kSignal), of(Verdict::kStatus), of(Verdict::kHang),
                of(Verdict::kLeak), of(Verdict::kHalfWritten));
}

// A line of the file is "VERDICT, FAULT, INPUT"; "*" stands for any.
bool Campaign::IsKnown(const Finding& finding) const {
    if (options_.known.empty()) { return false; }
    std::ifstream file(options_.known);
    std::string line;
    while (std::getline(file, line)) {
        for (const char* const fault : {NameOf(finding.fault), "*"}) {
            for (const std::string& input : {finding.input, std::string("*")}) {
                if (line == std::string(NameOf(finding.verdict)) + ", " + fault + ", " + input) {
                    return true;
                }
            }
        }
    }
    return false;
}

void PrintSum(const char* fault, const Tally& tally) {
    std::array<std::int64_t, 3> sums{}; // the same, told, otherwise
    for (std::size_t i = 0; i < kVerdicts; ++i) { sums[std::min<std::size_t>(i, 2)] += tally.count[i]; }
    std::printf("| %s | %ld | %ld | %ld | %ld |\n", fault, static_cast<long>(sums[0] + sums[1] + sums[2]),
                static_cast<long>(sums[0]), static_cast<long>(sums[1]), static_cast<long>(sums[2]));
}

void PrintHead() {
    std::printf("%-18s %-11s %7s %7s %7s %7s %7s %7s %7s %7s %7s %7s\n", "input", "fault", "runs", "same",
                "told", "other", "silent", "signal", "status", "hang", "leak", "half");
}

void Campaign::PrintRows(const std::string& input) const {
    for (const auto& [key, tally] : tallies_) {
        if (key.first == input) { PrintRow(key.first, NameOf(key.second), tally); }
    }
    std::fflush(stdout);
}

bool Campaign::Report() const {
    std::map<Fault, Tally> sums;
    Tally all;
    for (const auto& [key, tally] : tallies_) {
        for (std::size_t i = 0; i < kVerdicts; ++i) {
            sums[key.second].count[i] += tally.count[i];
            all.count[i] += tally.count[i];
        }
    }
    std::puts("\n| every | runs | nothing changed | told | otherwise |\n|---|---|---|---|---|");
    for (const auto& [fault, tally] : sums) { PrintSum(NameOf(fault), tally); }
    PrintSum("all", all);
    std::puts("");
    if (endsInToolkit_ > 0) {
        std::printf("besides, %d loads of the viewer ended in the toolkit, which can't do without memory\n",
                    endsInToolkit_);
    }
    std::vector<Finding> fresh;
    std::copy_if(findings_.begin(), findings_.end(), std::back_inserter(fresh),
                 [this](const Finding& finding) { return !IsKnown(finding); });
    if (findings_.size() > fresh.size()) {
        std::printf("%zu of these findings are known\n", findings_.size() - fresh.size());
    }
    if (!options_.details.empty()) {
        std::ofstream file(options_.details);
        file << FindingsText(findings_) << "\nWhat was told:\n";
        for (const auto& [message, count] : messages_) { file << count << " x " << message << '\n'; }
    } else if (!fresh.empty()) {
        std::fputs(FindingsText(fresh).c_str(), stdout);
    }
    return fresh.empty();
}

int RunAll(const Options& options) {
    // mkdtemp puts something else for the six.
    std::string pattern =
        (std::filesystem::temp_directory_path() / ("tarnwick-faults-" + std::string(6, 'X'))).string();
    if (mkdtemp(pattern.data()) == nullptr) {
        std::perror("mkdtemp");
        return 3;
    }
    const std::filesystem::path folder = pattern;
    const Programs programs{.load = TARNWICK_LOAD,
                            .make = TARNWICK_MAKE,
                            .loadList = TARNWICK_LOAD_LIST,
                            .arenaLoad = TARNWICK_ARENA_LOAD,
                            .arenaList = TARNWICK_ARENA_LIST,
                            .snapshot = TARNWICK_SNAPSHOT,
                            .prepare = TARNWICK_PREPARE,
                            .mesh = TARNWICK_MESH,
                            .open = TARNWICK_OPEN,
                            .picture = TARNWICK_PICTURE,
                            .silentGl = TARNWICK_SILENT_GL};
    bool good = false;
    {
        Campaign campaign(options, folder);
        PrintHead();
        for (const Input& input : MakeInputs(programs, folder)) { campaign.Run(input); }
        if (*TARNWICK_FAULTS_VIEWER != '\0') {
            campaign.RunViewer(TARNWICK_FAULTS_VIEWER, FilesOfAllKinds(folder));
        }
        good = campaign.Report();
    }
    std::filesystem::remove_all(folder);
    return good ? 0 : 1;
}

} // namespace
} // namespace tarnwick::faults

int main(int argc, char** argv) {
    CLI::App app("Lets each allocation and each call to the system of the programs fail once.",
                 "tarnwick-faults");
    tarnwick::faults::Options options;
    app.add_option("--only", options.only, "run cases with TEXT in their names")->type_name("TEXT");
    app.add_option("--faults", options.kinds, "kinds of faults (memory, arena, open, ...)")->delimiter(',');
    app.add_option("--jobs", options.jobs, "programs at a time")->check(CLI::Range(1, 64));
    app.add_option("--most", options.most, "failing calls of each kind in each case")
        ->check(CLI::PositiveNumber);
    app.add_option("--details", options.details, "write the findings, with call stacks, to FILE");
    app.add_option("--known", options.known, "findings that don't count, one VERDICT, FAULT, INPUT a line");
    CLI11_PARSE(app, argc, argv);
    return tarnwick::faults::RunAll(options);
}
