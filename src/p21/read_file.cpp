// Bringing the bytes of a file into the model's text block: plain, or inflated from a zlib or gzip stream.

#include "p21/step_model.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "text/inflate_bytes.h"

#include <cstring>
#include <limits>
#include <optional>

namespace tarnwick {

namespace {

constexpr std::uint64_t kLargestFile = std::numeric_limits<std::int32_t>::max();

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

} // namespace

bool StepModel::ReadBytes(const OpenedFile& file, TextBlock& block, char** bytes, std::size_t* size) {
    if (file.Size() > kLargestFile) {
        ConsolePrint("<E> %s: files of 2 GiB and more can't be read\n", fileName.c_str());
        return false;
    }
    const std::size_t wanted = static_cast<std::size_t>(file.Size());
    *bytes = block.Get(wanted + 1);
    if (*bytes == nullptr) {
        ConsolePrint("<E> %s: no memory for its %zu bytes\n", fileName.c_str(), wanted);
        return false;
    }
    *size = file.ReadAt(0, *bytes, wanted);
    return true;
}

int StepModel::ReadFile() {
    const double start = ClockSeconds();
    std::optional<OpenedFile> file(fileName.c_str());
    if (!file->IsOpen()) {
        std::int32_t kind = compression;
        if (!ApplyFallBack(&fileName, &kind)) { return kNotOpened; }
        file.emplace(fileName.c_str());
        if (!file->IsOpen()) { return kNotOpened; }
        compression = kind;
    }
    TextBlock& block = compression == kPlain ? workspace_.text : workspace_.compressed;
    char* bytes = nullptr;
    std::size_t size = 0;
    if (!ReadBytes(*file, block, &bytes, &size)) { return kNotOpened; }
    file.reset();
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

int StepModel::InflateData() {
    if (compressedData == nullptr) { return kNotOpened; }
    const double start = ClockSeconds();
    const int inflated = Inflate(compressedData.get(), compressedSize);
    compressedData.reset();
    inflateSeconds += ClockSeconds() - start;
    return inflated;
}

int StepModel::Inflate(const unsigned char* data, std::uint32_t size) {
    const std::size_t room = InflatedRoom(size);
    char* const out = room > 0 ? workspace_.text.Get(room) : nullptr;
    if (out == nullptr) {
        ConsolePrint("<E> %s: no room to inflate its %u bytes\n", fileName.c_str(), size);
        return kNotP21;
    }
    const std::size_t total = InflateBytes(data, size, out, room, data == compressedData.get());
    std::memset(out + total, 0, TextBlock::kPadding);
    text = out;
    textEnd = out + total;
    return kRead;
}

} // namespace tarnwick
