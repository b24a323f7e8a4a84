// tarnwick-picture: pictures of what the viewer shows, without a window.

#include "platform/out_of_memory.h"
#include "platform/within_memory.h"
#include "tools/picture/options.h"
#include "tools/picture/picture_program.h"

#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include <malloc.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

using namespace tarnwick::tools;

constexpr const char* kOutOfMemory = "tarnwick-picture: it needs more memory than there is\n";
constexpr const char* kOutOfTime = "tarnwick-picture: it takes longer than the limit\n";

// In bytes; the library takes no larger threshold for blocks.
constexpr int kKeptBlock = 32 << 20;
constexpr int kKeptInAll = 512 << 20;

// Before the library of the command line makes its own objects.
[[gnu::constructor(101)]] void Prepare() {
    std::set_terminate([] { tarnwick::EndOutOfMemory(kOutOfMemory); });
}

void EndInTime(double seconds) {
    std::signal(SIGALRM, [](int) {
        [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kOutOfTime, std::strlen(kOutOfTime));
        std::_Exit(1);
    });
    itimerval limit{};
    double whole = 0;
    limit.it_value.tv_usec = static_cast<suseconds_t>(std::modf(seconds, &whole) * 1e6);
    limit.it_value.tv_sec = static_cast<time_t>(whole);
    setitimer(ITIMER_REAL, &limit, nullptr);
}

int Run(int argc, char** argv) {
    PictureOptions options;
    int status = 0;
    if (!ReadOptions(argc, argv, &options, &status)) { return status; }
    if (options.timeLimit > 0) { EndInTime(options.timeLimit); }
    return MakePictures(options);
}

} // namespace

int main(int argc, char** argv) {
    // The software driver allocates and frees blocks of megabytes for every few meshes. Kept in the process,
    // they aren't zeroed again each time, which saves a tenth of the time of a large part.
    mallopt(M_MMAP_THRESHOLD, kKeptBlock);
    mallopt(M_TRIM_THRESHOLD, kKeptInAll);
    // A driver that crashes must leave no core file in somebody's folder.
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    int status = 1;
    if (!tarnwick::WithinMemory([&] { status = Run(argc, argv); })) { std::fputs(kOutOfMemory, stderr); }
    return status;
}
