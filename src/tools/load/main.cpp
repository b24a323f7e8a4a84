// tarnwick-load: the load of the viewer without a window.

#include "platform/out_of_memory.h"
#include "platform/program_start.h"
#include "platform/within_memory.h"
#include "tools/load/load_program.h"
#include "tools/load/options.h"

#include <cstdio>
#include <exception>

namespace {

using namespace tarnwick::tools;

constexpr const char* kOutOfMemory = "tarnwick-load: it needs more memory than there is\n";

// Before the library of the command line makes its own objects.
[[gnu::constructor(101)]] void Prepare() {
    std::set_terminate([] { tarnwick::EndOutOfMemory(kOutOfMemory); });
}

int Run(int argc, char** argv) {
    LoadOptions options;
    int status = 0;
    if (!ReadOptions(argc, argv, &options, &status)) { return OutputIsWritten() ? status : 1; }
    if (options.check) { return PrintCheck(options); }
    return options.index ? PrintIndex(options) : LoadAndReport(options);
}

} // namespace

int main(int argc, char** argv) {
    int status = 1;
    if (!tarnwick::WithinMemory([&] {
            const tarnwick::ProgramStart start(argc, argv);
            status = Run(start.count, start.words);
        })) {
        std::fputs(kOutOfMemory, stderr);
    }
    return status;
}
