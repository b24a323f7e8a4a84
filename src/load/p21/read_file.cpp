// Bringing the bytes of a file into the model's text block: plain, or inflated from a zlib or gzip stream.

#include "load/p21/step_model.h"
#include "platform/clock.h"
#include "platform/console.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

namespace tarnwick {

namespace {

constexpr std::int64_t kLargestFile = std::numeric_limits<std::int32_t>::max();

// A descriptor of a regular file, or -1: a folder or a pipe can't be read whole.
int OpenFile(const std::string& name) {
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) { return -1; }
    struct stat status;
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(file);
        return -1;
    }
    return file;
}

// Turns a name into that of its compressed or plain twin; false when there is nothing to take off.
bool ApplyFallBack(std::string* name, std::int32_t* kind) {
    switch (*kind) {
    case StepModel::kTwoCharacterSuffix:
        if (name->size() < 2) { return false; }
        name->resize(name->size() - 2);
        *kind = StepModel::kPlain;
        return true;
    case StepModel::kOneCharacterSuffix:
        name->pop_back();
        *kind = StepModel::kPlain;
        return true;
    default:
        name->push_back('z');
        *kind = StepModel::kOneCharacterSuffix;
        return true;
    }
}

// Bytes of the one output block for `size` bytes of input: a ratio of 21.25 and a little more. 0 when it
// would exceed what 32 bits hold.
std::size_t InflatedRoom(std::uint32_t size) {
    const std::int64_t n = size;
    const std::int64_t room = (n + n / 16) * 20 + 272384;
    return room > kLargestFile ? 0 : static_cast<std::size_t>(room);
}

} // namespace

bool StepModel::ReadBytes(int file, TextBlock& block, char** bytes, std::size_t* size) {
    struct stat status;
    if (fstat(file, &status) != 0) { return false; }
    if (status.st_size > kLargestFile) {
        ConsolePrint("<E> %s: files of 2 GiB and more can't be read\n", fileName.c_str());
        return false;
    }
    const std::size_t wanted = static_cast<std::size_t>(status.st_size);
    *bytes = block.Get(wanted + 1);
    if (*bytes == nullptr) {
        ConsolePrint("<E> %s: no memory for its %zu bytes\n", fileName.c_str(), wanted);
        return false;
    }
    std::size_t done = 0;
    while (done < wanted) {
        const ssize_t got = read(file, *bytes + done, wanted - done);
        if (got < 0 && errno == EINTR) { continue; }
        if (got <= 0) { break; }
        done += static_cast<std::size_t>(got);
    }
    *size = done;
    return true;
}

int StepModel::ReadFile() {
    const double start = ClockSeconds();
    int file = OpenFile(fileName);
    if (file < 0) {
        std::int32_t kind = compression;
        if (!ApplyFallBack(&fileName, &kind)) { return kNotOpened; }
        file = OpenFile(fileName);
        if (file < 0) { return kNotOpened; }
        compression = kind;
    }
    TextBlock& block = compression == kPlain ? workspace_.text : workspace_.compressed;
    char* bytes = nullptr;
    std::size_t size = 0;
    const bool complete = ReadBytes(file, block, &bytes, &size);
    close(file);
    if (!complete) { return kNotOpened; }
    const double read = ClockSeconds();
    readSeconds += read - start;
    std::memset(bytes + size, 0, TextBlock::kPadding);
    if (compression == kPlain) {
        text = bytes;
        textEnd = bytes + size;
        return kRead;
    }
    // The NUL behind the bytes is handed over with them: it does the stream no harm.
    const int inflated =
        Inflate(reinterpret_cast<const unsigned char*>(bytes), static_cast<std::uint32_t>(size) + 1);
    inflateSeconds += ClockSeconds() - read;
    return inflated;
}

int StepModel::Inflate(const unsigned char* data, std::uint32_t size) {
    constexpr std::uint32_t kStep = 0x40000;
    const std::size_t room = InflatedRoom(size);
    char* const out = room > 0 ? workspace_.text.Get(room) : nullptr;
    z_stream stream{};
    if (out == nullptr || inflateInit2(&stream, 47) != Z_OK) {
        ConsolePrint("<E> %s: no room to inflate its %u bytes\n", fileName.c_str(), size);
        return kNotP21;
    }
    stream.next_in = const_cast<unsigned char*>(data);
    stream.next_out = reinterpret_cast<unsigned char*>(out);
    std::uint32_t left = size;
    unsigned steps = 0;
    int result;
    do {
        const uLong before = stream.total_in;
        const std::size_t free = room - stream.total_out;
        stream.avail_out = static_cast<uInt>(std::min<std::size_t>(free, kStep));
        stream.avail_in = std::min(left, kStep);
        result = inflate(&stream, Z_SYNC_FLUSH);
        ++steps;
        left -= static_cast<std::uint32_t>(stream.total_in - before);
    } while (result == Z_OK);
    const std::size_t total = stream.total_out;
    inflateEnd(&stream);
    OutputPrint("total uncompress size = %u, in %u step\n", static_cast<unsigned>(total), steps);
    std::memset(out + total, 0, TextBlock::kPadding);
    text = out;
    textEnd = out + total;
    return kRead;
}

} // namespace tarnwick
