#include "tools/picture/prepared_path.h"

#include "platform/clock.h"
#include "platform/paths.h"
#include "platform/programs.h"
#include "platform/service_process.h"

#include <array>
#include <string_view>

namespace tarnwick::tools {

namespace {

constexpr int kPause = 100;               // milliseconds between two looks at the clock
constexpr double kToEnd = 5;              // seconds for a program that has said all
constexpr std::size_t kLongest = 1 << 16; // no path is longer

// What the program writes until it closes its side; false where the time is over before.
bool ReadAll(ServiceProcess* program, double until, std::string* text) {
    std::array<char, 4096> block{};
    for (;;) {
        if (until > 0 && ClockSeconds() >= until) { return false; }
        ServiceProcess::Ready ready;
        if (!program->Wait(kPause, false, &ready)) { return true; }
        std::size_t got = 0;
        if (ready.toRead && !program->Receive(block.data(), block.size(), &got)) { return true; }
        text->append(block.data(), got);
        if (text->size() > kLongest) { return true; }
    }
}

} // namespace

std::string PreparedPath(const std::string& file, double seconds, std::string* why) {
    constexpr std::string_view kName = "tarnwick-open";
    std::string program = ProgramIn(FolderOf(OwnProgram()), kName);
    if (program.empty()) { program = FindProgram(kName); }
    if (program.empty()) {
        *why = "tarnwick-open, which prepares it, isn't installed";
        return {};
    }
    ServiceProcess open;
    if (open.Run({program, "--path", "--", file}, why) != ServiceProcess::Start::kRuns) { return {}; }
    std::string text;
    if (!ReadAll(&open, seconds > 0 ? ClockSeconds() + seconds : 0, &text)) {
        *why = "preparing it takes longer than the limit";
        return {};
    }
    const ProcessEnd end = open.EndAfter(kToEnd);
    const bool isPath = end.kind == ProcessEnd::Kind::kExit && end.number == 0 && text.ends_with('\n');
    if (!isPath) {
        *why = "nothing of it could be prepared; tarnwick-open tells why";
        return {};
    }
    text.pop_back();
    return text;
}

} // namespace tarnwick::tools
