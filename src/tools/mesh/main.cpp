// tarnwick-mesh: triangulates exact bodies by the geometry kernel, in a process of its own. On a damaged body
// the kernel can take any time and any memory, or crash.

#include "mesher/mesh_format.h"
#include "platform/sanitizers.h"
#include "tools/mesh/kernel.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace tarnwick::tools {

namespace {

constexpr const char* kUsage =
    "Usage: tarnwick-mesh [--memory MB]\n"
    "\n"
    "Reads requests from standard input and answers each on standard output, until the input ends.\n"
    "Other programs start it; the messages are binary.\n"
    "\n"
    "  --memory MB  take no more address space than this\n"
    "  --version    print the version\n"
    "  --help       print this\n";

bool ReadAll(int file, char* to, std::size_t size) {
    while (size > 0) {
        const ssize_t got = read(file, to, size);
        if (got < 0 && errno == EINTR) { continue; }
        if (got <= 0) { return false; }
        to += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

bool WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t put = write(file, bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR) { continue; }
        if (put <= 0) { return false; }
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
    return true;
}

// Keeps standard output for the messages alone: what the kernel prints goes to standard error. Returns the
// descriptor of the messages, or -1.
int TakeStandardOutput() {
    const int messages = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (messages < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) { return -1; }
    return messages;
}

// Ends this process soon after the one that started it is gone: the kernel may be in a loop without end, and
// nobody would stop it then.
void EndWithParent() {
    const pid_t parent = getppid();
    std::thread([parent] {
        while (getppid() == parent) { usleep(500000); }
        _exit(0);
    }).detach();
}

bool LimitMemory(const char* megabytes) {
    char* end = nullptr;
    const unsigned long long count = std::strtoull(megabytes, &end, 10);
    if (end == megabytes || *end != '\0' || count == 0 || count > (1ULL << 40)) { return false; }
#ifdef TARNWICK_ADDRESS_SANITIZER
    // It reserves more address space than any limit leaves.
    return true;
#else
    const rlimit limit{static_cast<rlim_t>(count << 20), static_cast<rlim_t>(count << 20)};
    return setrlimit(RLIMIT_AS, &limit) == 0;
#endif
}

// False where the input ends or is no request.
bool ReadRequest(MeshRequest* request) {
    std::string bytes(kMeshHeadSize, '\0');
    if (!ReadAll(STDIN_FILENO, bytes.data(), bytes.size())) { return false; }
    const std::optional<MeshHead> head = DecodeMeshHead(bytes);
    if (!head || head->kind != MeshMessage::kRequest) { return false; }
    bytes.resize(static_cast<std::size_t>(head->length));
    return ReadAll(STDIN_FILENO, bytes.data(), bytes.size()) && DecodeMesh(bytes, request);
}

// Sends what it is told. Where nobody reads that any more, the process ends at its next request.
class Sender : public MeshListener {
public:
    explicit Sender(int file) : file_(file) {}
    void Tell(const MeshProgress& progress) override { WriteAll(file_, EncodeMesh(progress)); }
    void Take(const MeshAnswer& part) override { WriteAll(file_, EncodeMesh(part, MeshMessage::kPart)); }

private:
    const int file_;
};

int Serve() {
    const int messages = TakeStandardOutput();
    if (messages < 0) { return EXIT_FAILURE; }
    EndWithParent();
    StartKernel();
    Sender sender(messages);
    for (;;) {
        MeshRequest request;
        if (!ReadRequest(&request)) { return EXIT_SUCCESS; }
        const MeshAnswer answer = MeshByKernel(request, &sender);
        if (!WriteAll(messages, EncodeMesh(answer))) { return EXIT_FAILURE; }
    }
}

int Run(int count, char** words) {
    for (int i = 1; i < count; ++i) {
        const std::string_view word = words[i];
        if (word == "--help") {
            std::fputs(kUsage, stdout);
            return EXIT_SUCCESS;
        }
        if (word == "--version") {
            std::puts("tarnwick-mesh " TARNWICK_VERSION);
            return EXIT_SUCCESS;
        }
        if (word != "--memory" || i + 1 == count || !LimitMemory(words[++i])) {
            std::fputs(kUsage, stderr);
            return 2;
        }
    }
    return Serve();
}

} // namespace

} // namespace tarnwick::tools

int main(int count, char** words) {
    // Under a limit there may be no memory for a request, its answer or a thread; the client starts another
    // process.
    try {
        return tarnwick::tools::Run(count, words);
    } catch (const std::exception&) { return tarnwick::kMeshOutOfMemory; }
}
