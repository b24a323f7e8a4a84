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

// Turns the name into that of the file's compressed or plain twin; false when it is too short for that.
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

// Opens the file under its name or that of its twin; false when neither can be opened.
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
        // What the system lacks for one name it lacks for the other; one line is enough.
        if (failure == 0 && (failure = (*opened)->Failure()) != 0) { TellSystem(*file, failure); }
        return false;
    }
    file->problem = nullptr;
    file->compression = compression;
    return true;
}

// Where a file ends for its reader, and why.
struct Ending {
    std::size_t size;
    int error;
};

// ReadAt from `start` to `end`; marks the lines there unless `lines` is null.
Ending ReadStretch(const OpenedFile& opened, char* bytes, std::size_t start, std::size_t end,
                   LineMarks* lines) {
    constexpr std::size_t kInCache = std::size_t{128} << 10;
    static_assert(kInCache % LineMarks::kWordCharacters == 0 && LineMarks::kBlock <= TextBlock::kPadding);
    const std::size_t step = lines != nullptr ? kInCache : end - start;
    Ending ending{start, 0};
    for (std::size_t next = start; next < end && ending.size == next && ending.error == 0;) {
        const std::size_t size = std::min(step, end - next);
        ending.size = next + opened.ReadAt(next, bytes + next, size, &ending.error);
        if (lines != nullptr) { lines->Mark(bytes, next, ending.size); }
        next += size;
    }
    return ending;
}

// ReadAt for a whole file, by several threads if it is large: most of the time goes into fresh pages.
Ending ReadWhole(const OpenedFile& opened, char* bytes, std::size_t wanted, LineMarks* lines,
                 Helpers* helpers) {
    if (helpers == nullptr || !helpers->AreFor(wanted)) {
        return ReadStretch(opened, bytes, 0, wanted, lines);
    }
    constexpr std::size_t kPiece = std::size_t{2} << 20; // a huge page
    static_assert(kPiece % LineMarks::kWordCharacters == 0, "threads mark different words");
    std::atomic<std::size_t> next = 0;
    std::mutex lock;
    Ending first{wanted, 0};
    const auto readPieces = [&](bool) {
        for (;;) {
            const std::size_t start = next.fetch_add(kPiece);
            if (start >= wanted) { return; }
            const std::size_t end = std::min(start + kPiece, wanted);
            const Ending ending = ReadStretch(opened, bytes, start, end, lines);
            if (ending.size == end && ending.error == 0) { continue; }
            const std::lock_guard guard(lock);
            if (ending.size < first.size) { first = ending; }
        }
    };
    helpers->Run(std::ref(readPieces)); // a reference, which needs no memory
    return first;
}

// Where to mark the line ends of the file's bytes; null where nobody wants that or it doesn't pay.
LineMarks* MakeMarks(const TextFile& file, std::size_t bytes) {
    constexpr std::size_t kLeastBytes = std::size_t{4} << 20; // as much as stays in a core's cache
    if (file.lines == nullptr || file.compression != TextFile::kPlain || bytes < kLeastBytes) {
        return nullptr;
    }
    file.lines->Make(bytes);
    return file.lines->IsEmpty() ? nullptr : file.lines;
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
    LineMarks* const lines = MakeMarks(file, wanted);
    const Ending ending = ReadWhole(opened, bytes, wanted, lines, helpers);
    if (ending.error != 0) {
        file.problem = kCantBeRead;
        TellSystem(file, ending.error);
        return nullptr;
    }
    *size = ending.size;
    std::memset(bytes + *size, 0, TextBlock::kPadding);
    if (lines != nullptr) { lines->MarkAt(*size); }
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
