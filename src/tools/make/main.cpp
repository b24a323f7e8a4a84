// tarnwick-make: writes sample models of any size, for looking at, for tests and for benchmarks.

#include "platform/flush_output.h"
#include "platform/out_of_memory.h"
#include "platform/program_start.h"
#include "platform/within_memory.h"
#include "tools/make/command_line.h"

#include <cstdio>
#include <cstring>
#include <exception>

namespace {

constexpr const char* kOutOfMemory = "tarnwick-make: it needs more memory than there is\n";

// Before the library of the command line makes its own objects.
[[gnu::constructor(101)]] void Prepare() {
    std::set_terminate([] { tarnwick::EndOutOfMemory(kOutOfMemory); });
}

} // namespace

int main(int argc, char** argv) {
    int status = 1;
    if (!tarnwick::WithinMemory([&] {
            const tarnwick::ProgramStart start(argc, argv);
            status = tarnwick::make::RunCommandLine(start.count, start.words);
        })) {
        std::fputs(kOutOfMemory, stderr);
    }
    if (const int error = tarnwick::FlushOutput()) {
        std::fprintf(stderr, "tarnwick-make: standard output can't be written: %s\n", std::strerror(error));
        if (status == 0) { status = 1; }
    }
    return status;
}
