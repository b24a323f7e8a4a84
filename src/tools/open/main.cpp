// tarnwick-open: shows any STEP file in the viewer.

#include "platform/out_of_memory.h"
#include "platform/within_memory.h"
#include "tools/open/open_program.h"

#include <cstdio>
#include <exception>

namespace {

constexpr const char* kOutOfMemory = "tarnwick-open: it needs more memory than there is\n";

// Before the toolkit makes its own objects.
[[gnu::constructor(101)]] void SetTerminate() {
    std::set_terminate([] { tarnwick::EndOutOfMemory(kOutOfMemory); });
}

} // namespace

int main(int argc, char** argv) {
    int status = 1;
    if (!tarnwick::WithinMemory([&] { status = tarnwick::tools::RunOpen(argc, argv); })) {
        std::fputs(kOutOfMemory, stderr);
    }
    return status;
}
