// tarnwick-prepare while it works: on a terminal, and ended by a signal.

#include "mesher/solid_text.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>

namespace tarnwick::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// The program with another one in the place of the geometry kernel's, which says that it has begun and never
// answers.
class InterruptedPrepare : public testing::Test {
protected:
    InterruptedPrepare() {
        fs::copy_file(TARNWICK_PREPARE, folder_.Path("tarnwick-prepare"));
        const std::string kernel =
            folder_.Write("tarnwick-mesh", "#!/bin/sh\n: >\"${0%/*}/begun\"\nexec sleep 1000\n");
        fs::permissions(kernel, fs::perms::owner_all);
        SolidText solids(kContext + 1);
        solids.AddCube(1);
        solids_ = folder_.Write("solids.step", ExchangeText(ContextText() + solids.Text()));
    }

    // What the program says on a terminal until it has said `expected`; it is ended then.
    std::string SaidOnATerminal(const std::string& expected) const {
        const std::string program = folder_.Path("tarnwick-prepare");
        int terminal = -1;
        const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            execl(program.c_str(), program.c_str(), "--output", out_.c_str(), solids_.c_str(), nullptr);
            _exit(127);
        }
        std::string said;
        char bytes[512];
        ssize_t got = 0;
        while (said.find(expected) == std::string::npos && (got = read(terminal, bytes, sizeof bytes)) > 0) {
            said.append(bytes, static_cast<std::size_t>(got));
        }
        kill(child, SIGTERM);
        while (read(terminal, bytes, sizeof bytes) > 0) {}
        close(terminal);
        waitpid(child, nullptr, 0);
        return said;
    }

    // The exit status; -1 where the signal ended it, -2 where it ended before.
    int RunAndSend(int signal) const {
        const std::string program = folder_.Path("tarnwick-prepare");
        const pid_t child = fork();
        if (child == 0) {
            const int nowhere = open("/dev/null", O_WRONLY);
            dup2(nowhere, STDOUT_FILENO);
            dup2(nowhere, STDERR_FILENO);
            execl(program.c_str(), program.c_str(), "--output", out_.c_str(), solids_.c_str(), nullptr);
            _exit(127);
        }
        int state = 0;
        while (!fs::exists(folder_.Path("begun"))) {
            // It ended without asking for anything.
            if (waitpid(child, &state, WNOHANG) != 0) { return -2; }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        kill(child, signal);
        waitpid(child, &state, 0);
        return WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    }

    TempFolder folder_;
    std::string out_ = folder_.Path("out");
    std::string solids_;
};

TEST_F(InterruptedPrepare, ASignalEndsItAndNothingIsHalfWritten) {
    for (const int signal : {SIGINT, SIGTERM}) {
        EXPECT_EQ(RunAndSend(signal), 1);
        EXPECT_FALSE(fs::exists(out_ + "/solids.stp"));
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(out_)) {
            EXPECT_FALSE(entry.is_regular_file()) << entry.path();
        }
        fs::remove(folder_.Path("begun"));
    }
}

TEST_F(InterruptedPrepare, ATerminalGetsABar) {
    EXPECT_THAT(SaidOnATerminal("parts"), HasSubstr("\r\x1b[K[........................] 0 of 1 parts"));
}

} // namespace
} // namespace tarnwick::test
