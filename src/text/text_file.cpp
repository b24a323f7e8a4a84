#include "text/text_file.h"

#include "platform/clock.h"
#include "platform/console.h"
#include "platform/opened_file.h"
#include "platform/within_memory.h"
#include "text/inflate_bytes.h"
#include "text/one_line.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>

namespace tarnwick {

namespace {

// Turns the name into that of the file's compressed or plain twin; false when there is nothing to take off.
bool TakeTwin(std::string* path, std::int32_t* compression) {
    switch (*compression) {
    case TextFile::kTwoCharacterSuffix:
        if (path->size() < 2) { return false; }
        path->resize(path->size() - 2);
        *compression = TextFile::kPlain;
        return true;
    case TextFile::kOneCharacterSuffix:
        path->pop_back();
        *compression = TextFile::kPlain;
        return true;
    default:
        path->push_back('z');
        *compression = TextFile::kOneCharacterSuffix;
        return true;
    }
}

constexpr const char* kCantBeOpened = "can't be opened";
constexpr const char* kCantBeRead = "can't be read";

// Says why the system refuses the file.
void TellSystem(const TextFile& file, int error) {
    ConsolePrint("<E> %s: it %s: %s\n", OneLine(file.path).Text(), file.problem, std::strerror(error));
}

// Opens the file under its name or that of its twin; false when neither is to be had.
bool Open(TextFile* file, std::optional<OpenedFile>* opened) {
    opened->emplace(file->path.c_str());
    if ((*opened)->IsOpen()) { return true; }
    file->problem = kCantBeOpened;
    int failure = (*opened)->Failure();
    if (failure != 0) { TellSystem(*file, failure); }
    std::int32_t compression = file->compression;
    if (!TakeTwin(&file->path, &compression)) { return false; }
    opened->emplace(file->path.c_str());
    if (!(*opened)->IsOpen()) {
        // What the system lacks for one name it lacks for both; one line says so.
        if (failure == 0 && (failure = (*opened)->Failure()) != 0) { TellSystem(*file, failure); }
        return false;
    }
    file->problem = nullptr;
    file->compression = compression;
    return true;
}

// ReadAt for a whole file, by several threads where that is worth it: most of the time goes into fresh pages.
std::size_t ReadWhole(const OpenedFile& opened, char* bytes, std::size_t wanted, Helpers* helpers,
                      int* error) {
    if (helpers == nullptr || !helpers->AreFor(wanted)) { return opened.ReadAt(0, bytes, wanted, error); }
    constexpr std::size_t kPiece = std::size_t{2} << 20; // a huge page
    struct Ending {
        std::size_t size;
        int error;
    };
    std::atomic<std::size_t> next = 0;
    std::mutex lock;
    Ending first{wanted, 0}; // where the file ends for its readers
    const auto readPieces = [&](bool) {
        for (;;) {
            const std::size_t start = next.fetch_add(kPiece);
            if (start >= wanted) { return; }
            const std::size_t size = std::min(kPiece, wanted - start);
            Ending ending{};
            ending.size = start + opened.ReadAt(start, bytes + start, size, &ending.error);
            if (ending.size == start + size && ending.error == 0) { continue; }
            const std::lock_guard guard(lock);
            if (ending.size < first.size) { first = ending; }
        }
    };
    helpers->Run(std::ref(readPieces)); // a reference, which needs no memory
    *error = first.error;
    return first.size;
}

// The bytes of the file in `block`, zeros after them; null, and told, when they can't be had.
char* ReadBytes(TextFile& file, const OpenedFile& opened, TextBlock& block, Helpers* helpers,
                std::size_t* size) {
    if (opened.Size() > kLargestText) {
        ConsolePrint("<E> %s: files of 2 GiB and more can't be read\n", OneLine(file.path).Text());
        return nullptr;
    }
    const std::size_t wanted = static_cast<std::size_t>(opened.Size());
    char* const bytes = block.Get(wanted + 1);
    if (bytes == nullptr) {
        ConsolePrint("<E> %s: no memory for its %zu bytes\n", OneLine(file.path).Text(), wanted);
        file.problem = kNeedsMemory;
        return nullptr;
    }
    int error = 0;
    *size = ReadWhole(opened, bytes, wanted, helpers, &error);
    if (error != 0) {
        file.problem = kCantBeRead;
        TellSystem(file, error);
        return nullptr;
    }
    std::memset(bytes + *size, 0, TextBlock::kPadding);
    return bytes;
}

} // namespace

TextFileResult ReadTextFile(TextFile* file, TextMemory* memory, Helpers* helpers) {
    const double start = ClockSeconds();
    std::optional<OpenedFile> opened;
    if (!Open(file, &opened)) { return TextFileResult::kNotOpened; }
    const bool isPlain = file->compression == TextFile::kPlain;
    std::size_t size = 0;
    char* const bytes =
        ReadBytes(*file, *opened, isPlain ? memory->text : memory->compressed, helpers, &size);
    if (bytes == nullptr) { return TextFileResult::kNotOpened; }
    opened.reset();
    file->readSeconds += ClockSeconds() - start;
    if (isPlain) {
        file->text = bytes;
        file->size = size;
        return TextFileResult::kRead;
    }
    // The NUL after the bytes is handed over with them: it does the stream no harm.
    return InflateText(reinterpret_cast<const unsigned char*>(bytes), static_cast<std::uint32_t>(size) + 1,
                       false, file, memory)
               ? TextFileResult::kRead
               : TextFileResult::kNoRoom;
}

bool InflateText(const unsigned char* data, std::uint32_t size, bool isMember, TextFile* file,
                 TextMemory* memory) {
    const double start = ClockSeconds();
    const std::size_t room = InflatedRoom(size);
    if (room == 0) {
        ConsolePrint("<E> %s: no room to inflate its %u bytes\n", OneLine(file->path).Text(), size);
        return false;
    }
    char* const text = memory->text.Get(room);
    const std::optional<std::size_t> inflated =
        text != nullptr ? InflateBytes(data, size, text, room, isMember) : std::nullopt;
    if (!inflated) {
        ConsolePrint("<E> %s: no memory to inflate its %u bytes\n", OneLine(file->path).Text(), size);
        file->problem = kNeedsMemory;
        return false;
    }
    file->size = *inflated;
    std::memset(text + file->size, 0, TextBlock::kPadding);
    file->text = text;
    file->inflateSeconds += ClockSeconds() - start;
    return true;
}

} // namespace tarnwick
