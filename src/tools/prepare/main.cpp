// tarnwick-prepare: brings STEP files of any kind into the form that the viewer shows.

#include "mesher/mesher.h"
#include "platform/interrupts.h"
#include "platform/out_of_memory.h"
#include "platform/paths.h"
#include "platform/program_start.h"
#include "platform/whole_file.h"
#include "platform/within_memory.h"
#include "tools/prepare/options.h"
#include "tools/prepare/outcome.h"
#include "tools/prepare/progress.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <exception>

namespace {

using namespace tarnwick;

constexpr const char* kOutOfMemory = "tarnwick-prepare: it needs more memory than there is\n";

// Set by a signal; all that takes long looks at it.
std::atomic<bool> cancelled{false};

// Before the library of the command line makes its own objects.
[[gnu::constructor(101)]] void SetTerminate() {
    std::set_terminate([] { EndOutOfMemory(kOutOfMemory); });
}

bool WriteJson(const std::string& json, const std::string& name) {
    if (name == "-") {
        return std::fwrite(json.data(), 1, json.size(), stdout) == json.size() && std::fflush(stdout) == 0;
    }
    WholeFile file(name.c_str());
    file.Write(json.data(), json.size());
    const int error = file.Close();
    if (error != 0) {
        std::fprintf(stderr, "tarnwick-prepare: %s can't be written: %s\n", name.c_str(),
                     std::strerror(error));
    }
    return error == 0;
}

int Run(int argc, char** argv) {
    tools::PrepareCommand command;
    int status = 0;
    if (!tools::ReadOptions(argc, argv, &command, &status)) { return status; }
    command.options.meshProgram = FindMeshProgram();
    OnFirstInterrupt([](int) { cancelled = true; });
    // Where standard output is for the report, what is for people goes beside it.
    std::FILE* const words = command.jsonFile == "-" ? stderr : stdout;
    std::vector<prepare::PrepareResult> results;
    for (const std::string& file : command.files) {
        {
            tools::Progress progress(NameOf(file));
            results.push_back(prepare::Prepare(
                file, command.options,
                [&](std::size_t done, std::size_t parts) { progress.Tell(done, parts); }, &cancelled));
        }
        std::fputs(tools::OutcomeText(results.back()).c_str(), words);
        if (cancelled) { break; }
    }
    const bool isTold = std::fflush(words) == 0;
    if (!command.jsonFile.empty() && !WriteJson(tools::OutcomeJson(results), command.jsonFile)) { return 1; }
    const bool lacks =
        std::any_of(results.begin(), results.end(), [](const auto& result) { return result.LacksShape(); });
    return lacks || !isTold ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    int status = 1;
    if (!WithinMemory([&] {
            const ProgramStart start(argc, argv);
            status = Run(start.count, start.words);
        })) {
        std::fputs(kOutOfMemory, stderr);
    }
    return status;
}
