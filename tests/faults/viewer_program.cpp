// faults-viewer FROM STEP LATER GOOD FILE: the dialog loads FILE again and again, and in each load one
// allocation more has succeeded before one fails (LATER 1: and all after it), from the FROMth on in steps.
// After each, the same dialog must show GOOD. Prints a line for each: "AT VERDICT", then the addresses where
// it failed, and after a tab the first line that the fault brought.

#include "app/console_window.h"
#include "app/step_viewer_dlg.h"
#include "faults/judge.h"
#include "formats/load_commands.h"
#include "platform/console.h"
#include "report/report.h"

#include <QApplication>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

namespace tarnwick::faults {
namespace {

constexpr int kWarmUps = 4;
constexpr int kRepetitions = 16;

class ViewerFaults {
public:
    ViewerFaults(Plan* plan, const char* good, const char* file)
        : plan_(*plan), good_(good), file_(file), dialog_(kLoadCommands) {
        dialog_.OnInitDialog();
        console_.ShowBeside(&dialog_);
        dialog_.show();
        dup2(errors_, STDERR_FILENO);
        // The first loads fill what the toolkit keeps.
        for (int i = 0; i < kWarmUps; ++i) {
            Load(good_, 0, false);
            wantedGood_ = Shown();
            const Ending ending = Load(file_, 0, false);
            AddUndisturbed(wholeLoad_, ending, plan_, i == 0, &undisturbed_);
            Load(good_, 0, false);
            blocks_ = plan_.blocks;
        }
    }

    std::int64_t Calls() {
        Load(file_, -1, false);
        return plan_.calls;
    }

    void Run(std::int64_t at, bool allLater) {
        const Ending ending = Load(file_, at, allLater);
        std::string line;
        Verdict verdict = Judge(wholeLoad_, undisturbed_, ending, plan_, &line);
        // Scenes apart, the file that was shown before must be as it was.
        Load(good_, 0, false);
        if (Shown() != wantedGood_) {
            verdict = Verdict::kSilent;
            line = "the next file isn't shown";
        }
        if (IsGood(verdict) && Leaks(at, allLater)) { verdict = Verdict::kLeak; }
        std::printf("%lld %d", static_cast<long long>(at), static_cast<int>(verdict));
        for (int i = 0; !IsGood(verdict) && i < plan_.fault0.count; ++i) {
            std::printf(" %p", plan_.fault0.address[i]);
        }
        std::printf("\t%s\n", line.c_str());
        std::fflush(stdout);
    }

private:
    // The toolkit keeps something of what it meets first; what is lost is lost each time. It loses blocks of
    // its own where it finds no further one. Threads take turns, so the same number may be another call.
    bool Leaks(std::int64_t at, bool allLater) {
        for (int i = 0; i < kRepetitions; ++i) {
            const std::int64_t before = blocks_;
            blocks_ = plan_.blocks;
            if (blocks_ <= before || plan_.failedInToolkit != 0) { return false; }
            Load(file_, at, allLater);
            Load(good_, 0, false);
        }
        return true;
    }

    // The dialog's load with a fault in it (at 0 without; -1 counts the calls), and what is shown then.
    Ending Load(const std::string& path, std::int64_t at, bool allLater) {
        if (ftruncate(errors_, 0) != 0 || lseek(errors_, 0, SEEK_SET) != 0) { std::exit(3); }
        plan_.at = at;
        plan_.allLater = allLater ? 1 : 0;
        plan_.calls = 0;
        plan_.failed = 0;
        if (at > 0) { plan_.failedInToolkit = 0; }
        dialog_.Load(path, true);
        plan_.at = 0;
        QCoreApplication::processEvents();
        console_.clear(); // it holds more with every line
        Ending ending;
        ending.output = SceneReport(dialog_.View(), path, nullptr, true);
        ending.errors.resize(static_cast<std::size_t>(lseek(errors_, 0, SEEK_END)));
        if (pread(errors_, ending.errors.data(), ending.errors.size(), 0) < 0) { std::exit(3); }
        return ending;
    }

    // What a load may leave as it was is no part of it.
    std::string Shown() {
        const LoadedScene& loaded = dialog_.View().loaded;
        return std::to_string(loaded.drawnTriangles) + dialog_.windowTitle().toStdString();
    }

    Plan& plan_;
    const std::string good_;
    const std::string file_;
    STEPViewerDlg dialog_;
    ConsoleWindow console_;
    const int errors_ = memfd_create("errors", MFD_CLOEXEC);
    const Case wholeLoad_;
    Undisturbed undisturbed_;
    std::string wantedGood_;
    std::int64_t blocks_ = 0; // that are held when the good file is shown
};

Plan* ThePlan() {
    const char* const file = std::getenv(kPlanVariable);
    void* const record =
        file != nullptr ? mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED, std::atoi(file), 0)
                        : MAP_FAILED;
    return record != MAP_FAILED ? static_cast<Plan*>(record) : nullptr;
}

} // namespace
} // namespace tarnwick::faults

int main(int argc, char** argv) {
    using namespace tarnwick::faults;
    Plan* const plan = ThePlan();
    if (plan == nullptr || argc != 6) { return 3; }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication toolkit(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    tarnwick::EnableOutput(false);
    ViewerFaults faults(plan, argv[4], argv[5]);
    const std::int64_t calls = faults.Calls();
    const std::int64_t most = std::atoll(argv[2]);
    const std::int64_t step = most > 0 ? std::max<std::int64_t>(1, calls / most) : 1;
    for (std::int64_t at = std::atoll(argv[1]); at <= calls; at += step) {
        faults.Run(at, std::atoi(argv[3]) != 0);
    }
    std::puts("end");
    std::fflush(stdout);
    _exit(0); // what the toolkit leaves isn't looked at
}
