#include "platform/service_process.h"

#include "platform/clock.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

extern char** environ;

namespace tarnwick {

namespace {

ProcessEnd EndOf(int status) {
    if (WIFSIGNALED(status)) { return {ProcessEnd::Kind::kSignal, WTERMSIG(status)}; }
    return {ProcessEnd::Kind::kExit, WEXITSTATUS(status)};
}

// Starts the program with the socket for its streams. Returns 0, or why it can't be started.
int Spawn(char** words, int socket, pid_t* process) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    int error = posix_spawn_file_actions_init(&actions);
    if (error != 0) { return error; }
    error = posix_spawnattr_init(&attributes);
    if (error == 0) {
        // This thread may have blocked signals, this process may ignore SIGPIPE.
        sigset_t none;
        sigemptyset(&none);
        sigset_t pipes = none;
        sigaddset(&pipes, SIGPIPE);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &pipes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, socket, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        error = posix_spawn(process, words[0], &actions, &attributes, words, environ);
        posix_spawnattr_destroy(&attributes);
    }
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

ServiceProcess::Start ServiceProcess::Run(const std::vector<std::string>& command, std::string* why) {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) {
        *why = std::strerror(errno);
        return Start::kNoConnection;
    }
    fcntl(sockets[0], F_SETFL, O_NONBLOCK);
    std::vector<std::string> texts = command;
    std::vector<char*> arguments;
    for (std::string& text : texts) { arguments.push_back(text.data()); }
    arguments.push_back(nullptr);
    const int error = Spawn(arguments.data(), sockets[1], &process_);
    close(sockets[1]);
    socket_ = sockets[0];
    if (error != 0) {
        process_ = 0;
        End();
        *why = std::strerror(error);
        return Start::kNotStarted;
    }
    return Start::kRuns;
}

bool ServiceProcess::Wait(int milliseconds, bool forRoom, Ready* ready) {
    pollfd wait{socket_, POLLIN, 0};
    if (forRoom) { wait.events |= POLLOUT; }
    const int count = poll(&wait, 1, milliseconds);
    if (count < 0) { return errno == EINTR; }
    ready->toRead = (wait.revents & (POLLIN | POLLHUP | POLLERR)) != 0;
    ready->toWrite = (wait.revents & POLLOUT) != 0;
    return true;
}

bool ServiceProcess::Send(const char* bytes, std::size_t count, std::size_t* sent) {
    const ssize_t done = send(socket_, bytes, count, MSG_NOSIGNAL);
    if (done < 0) {
        if (errno == EINTR || errno == EAGAIN) { return true; }
        shutdown(socket_, SHUT_WR); // it must not wait for more
        return false;
    }
    *sent += static_cast<std::size_t>(done);
    return true;
}

bool ServiceProcess::Receive(char* bytes, std::size_t room, std::size_t* got) {
    *got = 0;
    const ssize_t done = recv(socket_, bytes, room, 0);
    if (done < 0) { return errno == EINTR || errno == EAGAIN; }
    *got = static_cast<std::size_t>(done);
    return done > 0;
}

ProcessEnd ServiceProcess::End() {
    int status = 0;
    if (process_ != 0) {
        kill(process_, SIGKILL);
        while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {}
        process_ = 0;
    }
    if (socket_ >= 0) {
        close(socket_);
        socket_ = -1;
    }
    return EndOf(status);
}

ProcessEnd ServiceProcess::EndAfter(double seconds) {
    int status = 0;
    const double patience = ClockSeconds() + seconds;
    pid_t ended = 0;
    while ((ended = waitpid(process_, &status, WNOHANG)) == 0 && ClockSeconds() < patience) { usleep(1000); }
    if (ended == 0) { return End(); }
    if (ended > 0) { process_ = 0; }
    const ProcessEnd end = EndOf(status);
    End();
    return end;
}

} // namespace tarnwick
