#include "mesher/mesh_process.h"

#include "platform/clock.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

extern char** environ;

namespace tarnwick {

namespace {

constexpr std::size_t kChunk = 256 << 10;
// The longest wait before the next look at the cancel flag, in milliseconds.
constexpr int kCancelSlice = 50;
// The exit status of tarnwick-mesh that found no memory.
constexpr int kStatusOutOfMemory = 3;

// One request on its way out, and what comes back.
class Conversation {
public:
    // No message is longer than `most` bytes.
    Conversation(int socket, std::string request, std::uint64_t most)
        : socket_(socket), request_(std::move(request)), most_(most),
          chunk_(std::make_unique<char[]>(kChunk)) {}

    // Sends and receives what is possible within so many milliseconds. False where the other side is gone.
    bool Go(int milliseconds) {
        pollfd wait{socket_, POLLIN, 0};
        if (sent_ < request_.size()) { wait.events |= POLLOUT; }
        const int ready = poll(&wait, 1, milliseconds);
        if (ready < 0) { return errno == EINTR; }
        // A program that takes no more may still have said something.
        if ((wait.revents & POLLOUT) != 0 && !Send()) { sent_ = request_.size(); }
        return (wait.revents & (POLLIN | POLLHUP | POLLERR)) == 0 || Receive();
    }

    // Whether a whole message is here; `head` and `bytes` are its then, until Drop. `isSound` is false where
    // no message begins here.
    bool HasMessage(MeshHead* head, std::string_view* bytes, bool* isSound) const {
        if (received_.size() < kMeshHeadSize) { return false; }
        const std::string_view all = received_;
        const std::optional<MeshHead> found = DecodeMeshHead(all.substr(0, kMeshHeadSize));
        *isSound = found.has_value() && found->kind != MeshMessage::kRequest && found->length <= most_;
        if (!*isSound || all.size() - kMeshHeadSize < found->length) { return false; }
        *head = *found;
        *bytes = all.substr(kMeshHeadSize, static_cast<std::size_t>(found->length));
        return true;
    }
    void Drop(const MeshHead& head) {
        received_.erase(0, kMeshHeadSize + static_cast<std::size_t>(head.length));
    }

private:
    bool Send() {
        const ssize_t sent = send(socket_, request_.data() + sent_, request_.size() - sent_, MSG_NOSIGNAL);
        if (sent < 0) { return errno == EINTR || errno == EAGAIN; }
        sent_ += static_cast<std::size_t>(sent);
        return true;
    }
    bool Receive() {
        const ssize_t got = recv(socket_, chunk_.get(), kChunk, 0);
        if (got < 0) { return errno == EINTR || errno == EAGAIN; }
        received_.append(chunk_.get(), static_cast<std::size_t>(got));
        return got > 0;
    }

    const int socket_;
    const std::string request_;
    const std::uint64_t most_;
    std::size_t sent_ = 0;
    std::string received_;
    const std::unique_ptr<char[]> chunk_;
};

// Milliseconds until `limit`, rounded up, and no more than may pass before the next look at the cancel flag.
int SliceUntil(double limit, double now) {
    return static_cast<int>(std::clamp(std::ceil((limit - now) * 1000), 1.0, double{kCancelSlice}));
}

std::string WordsOfStatus(int status) {
    if (WIFSIGNALED(status)) {
        return "the geometry kernel crashed (signal " + std::to_string(WTERMSIG(status)) + ")";
    }
    // The status with which the system's loader ends a program whose libraries are missing.
    if (WEXITSTATUS(status) == 127) { return "the geometry kernel's libraries aren't installed"; }
    return "the geometry kernel ended (status " + std::to_string(WEXITSTATUS(status)) + ")";
}

} // namespace

bool MeshProcess::Start(std::string* words) {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) {
        *words = std::string("no connection to the geometry kernel: ") + std::strerror(errno);
        return false;
    }
    fcntl(sockets[0], F_SETFL, O_NONBLOCK);
    std::vector<std::string> command{program_};
    if (memoryLimit_ > 0) {
        command.push_back("--memory");
        command.push_back(std::to_string(std::max<std::size_t>(memoryLimit_ >> 20, 1)));
    }
    std::vector<char*> arguments;
    for (std::string& word : command) { arguments.push_back(word.data()); }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    int error = posix_spawn_file_actions_init(&actions);
    if (error == 0) {
        error = posix_spawnattr_init(&attributes);
        if (error == 0) {
            // The thread that starts it may have blocked or ignored signals.
            sigset_t none;
            sigemptyset(&none);
            sigset_t pipes = none;
            sigaddset(&pipes, SIGPIPE);
            posix_spawnattr_setsigmask(&attributes, &none);
            posix_spawnattr_setsigdefault(&attributes, &pipes);
            posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
            posix_spawn_file_actions_adddup2(&actions, sockets[1], STDIN_FILENO);
            posix_spawn_file_actions_adddup2(&actions, sockets[1], STDOUT_FILENO);
            posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
            error =
                posix_spawn(&process_, program_.c_str(), &actions, &attributes, arguments.data(), environ);
            posix_spawnattr_destroy(&attributes);
        }
        posix_spawn_file_actions_destroy(&actions);
    }
    close(sockets[1]);
    socket_ = sockets[0];
    if (error != 0) {
        process_ = 0;
        End();
        *words = program_ + " can't be started: " + std::strerror(error);
        return false;
    }
    return true;
}

int MeshProcess::End() {
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
    return status;
}

MeshOutcome MeshProcess::Ask(const MeshRequest& request,
                             const std::function<double(const MeshProgress&)>& limit) {
    const bool wasThere = process_ != 0;
    MeshOutcome outcome = AskOnce(request, limit);
    // It may have ended long before the request; others can end a process too.
    if (wasThere && outcome.end == MeshEnd::kCrash && !outcome.hasBegun) { return AskOnce(request, limit); }
    return outcome;
}

MeshOutcome MeshProcess::AskOnce(const MeshRequest& request,
                                 const std::function<double(const MeshProgress&)>& limit) {
    MeshOutcome outcome;
    if (process_ == 0 && !Start(&outcome.words)) { return outcome; }
    // The process can't have made a message that is larger than its memory.
    const std::uint64_t most = memoryLimit_ > 0 ? memoryLimit_ : std::numeric_limits<std::uint64_t>::max();
    Conversation conversation(socket_, EncodeMesh(request), most);
    double giveUp = limit(outcome.progress);
    const auto end = [&](MeshEnd how, std::string words) {
        End();
        outcome.end = how;
        outcome.words = std::move(words);
    };
    for (;;) {
        if (IsCancelled()) {
            end(MeshEnd::kCancelled, "cancelled");
            return outcome;
        }
        const double now = ClockSeconds();
        if (!(now < giveUp)) {
            end(MeshEnd::kTimeLimit, "the time limit ran out");
            return outcome;
        }
        const bool isThere = conversation.Go(SliceUntil(giveUp, now));
        MeshHead head;
        std::string_view bytes;
        bool isSound = true;
        while (conversation.HasMessage(&head, &bytes, &isSound)) {
            isSound = head.kind == MeshMessage::kProgress ? DecodeMesh(bytes, &outcome.progress)
                                                          : DecodeMesh(bytes, &outcome.answer);
            if (!isSound) { break; }
            if (head.kind == MeshMessage::kAnswer) {
                outcome.end = MeshEnd::kAnswered;
                return outcome;
            }
            outcome.hasBegun = true;
            giveUp = limit(outcome.progress);
            conversation.Drop(head);
        }
        if (!isSound) {
            outcome.answer = {};
            end(MeshEnd::kRubbish, "the geometry kernel's answer is damaged");
            return outcome;
        }
        if (!isThere) { break; }
    }
    // Gone already, or about to be: it closed its end.
    int status = 0;
    const double patience = ClockSeconds() + 1;
    pid_t ended = 0;
    while ((ended = waitpid(process_, &status, WNOHANG)) == 0 && ClockSeconds() < patience) { usleep(1000); }
    if (ended > 0) { process_ = 0; }
    if (ended == 0) { status = End(); }
    const bool isOutOfMemory = WIFEXITED(status) && WEXITSTATUS(status) == kStatusOutOfMemory;
    end(isOutOfMemory ? MeshEnd::kOutOfMemory : MeshEnd::kCrash,
        isOutOfMemory ? "the geometry kernel ran out of memory" : WordsOfStatus(status));
    return outcome;
}

} // namespace tarnwick
