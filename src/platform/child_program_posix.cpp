#include "platform/child_program.h"

#include "platform/console.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

extern char** environ;

namespace tarnwick {

namespace {

// The words as exec takes them; they stay those of `command`.
std::vector<char*> Pointers(const std::vector<std::string>& command) {
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (const std::string& word : command) { words.push_back(const_cast<char*>(word.c_str())); }
    words.push_back(nullptr);
    return words;
}

// waitpid, again after each signal. `status` may be null.
pid_t WaitFor(pid_t process, int* status, int options) {
    pid_t ended;
    do { ended = waitpid(process, status, options); } while (ended < 0 && errno == EINTR);
    return ended;
}

void TellNotStarted(const std::string& program, int error) {
    ConsolePrint("<E> %s can't be started: %s\n", program.c_str(), std::strerror(error));
}

} // namespace

ChildProgram::ChildProgram(const std::vector<std::string>& command) {
    const std::vector<char*> words = Pointers(command);
    posix_spawn_file_actions_t actions;
    int error = posix_spawn_file_actions_init(&actions);
    if (error == 0) {
        error = posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (error == 0) {
            pid_t process = 0;
            error = posix_spawnp(&process, words[0], &actions, nullptr, words.data(), environ);
            process_ = process;
        }
        posix_spawn_file_actions_destroy(&actions);
    }
    if (error != 0) {
        process_ = 0;
        TellNotStarted(command[0], error);
    }
}

bool ChildProgram::IsRunning() {
    if (process_ == 0) { return false; }
    int status = 0;
    const pid_t ended = WaitFor(static_cast<pid_t>(process_), &status, WNOHANG);
    if (ended == 0) { return true; }
    succeeded_ = ended == process_ && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    process_ = 0;
    return false;
}

void ChildProgram::Kill() {
    if (process_ == 0) { return; }
    kill(static_cast<pid_t>(process_), SIGKILL);
    WaitFor(static_cast<pid_t>(process_), nullptr, 0);
    process_ = 0;
}

void StartDetached(const std::vector<std::string>& command) {
    const std::vector<char*> words = Pointers(command);
    // The program's parent ends at once, and the system takes the program over: nobody has to wait for it.
    const pid_t parent = fork();
    if (parent == 0) {
        setsid();
        if (fork() == 0) {
            execv(words[0], words.data());
            _exit(127);
        }
        _exit(0);
    }
    if (parent < 0) {
        TellNotStarted(command[0], errno);
    } else {
        WaitFor(parent, nullptr, 0);
    }
}

} // namespace tarnwick
