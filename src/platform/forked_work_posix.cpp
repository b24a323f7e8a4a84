#include "platform/forked_work.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace tarnwick {

namespace {

[[noreturn]] void WorkAndEnd(const std::function<void()>& work, int toParent) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(toParent, STDERR_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    work();
    std::fflush(stderr);
    _exit(0);
}

} // namespace

ForkedWork::ForkedWork(const std::function<void()>& work) {
    int ends[2];
    if (pipe(ends) != 0) { return; }
    // First, since nobody could read what a copy says without it.
    stream_ = fdopen(ends[0], "r");
    if (stream_ != nullptr) {
        std::fflush(nullptr);
        process_ = fork();
    }
    if (stream_ != nullptr && process_ == 0) {
        close(ends[0]);
        WorkAndEnd(work, ends[1]);
    }
    lacksMemory_ = process_ <= 0 && errno == ENOMEM;
    close(ends[1]);
    if (stream_ == nullptr) { close(ends[0]); }
}

ForkedWork::~ForkedWork() {
    End(false);
}

void ForkedWork::End(bool kill) {
    if (stream_ != nullptr) { std::fclose(stream_); }
    stream_ = nullptr;
    if (process_ <= 0) { return; }
    if (kill) { ::kill(process_, SIGKILL); }
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {}
    process_ = 0;
}

} // namespace tarnwick
