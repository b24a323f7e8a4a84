#include "text/text_file.h"

#include "platform/clock.h"
#include "platform/console.h"
#include "text/inflate_bytes.h"
#include "text/opened_file.h"

#include <cstring>
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

// The bytes of the file in `block`, zeros after them; null, and told, when they can't be had.
char* ReadBytes(const TextFile& file, const OpenedFile& opened, TextBlock& block, std::size_t* size) {
    if (opened.Size() > kLargestText) {
        ConsolePrint("<E> %s: files of 2 GiB and more can't be read\n", file.path.c_str());
        return nullptr;
    }
    const std::size_t wanted = static_cast<std::size_t>(opened.Size());
    char* const bytes = block.Get(wanted + 1);
    if (bytes == nullptr) {
        ConsolePrint("<E> %s: no memory for its %zu bytes\n", file.path.c_str(), wanted);
        return nullptr;
    }
    *size = opened.ReadAt(0, bytes, wanted);
    std::memset(bytes + *size, 0, TextBlock::kPadding);
    return bytes;
}

} // namespace

TextFileResult ReadTextFile(TextFile* file, TextMemory* memory) {
    const double start = ClockSeconds();
    std::optional<OpenedFile> opened(file->path.c_str());
    if (!opened->IsOpen()) {
        std::int32_t compression = file->compression;
        if (!TakeTwin(&file->path, &compression)) { return TextFileResult::kNotOpened; }
        opened.emplace(file->path.c_str());
        if (!opened->IsOpen()) { return TextFileResult::kNotOpened; }
        file->compression = compression;
    }
    const bool isPlain = file->compression == TextFile::kPlain;
    std::size_t size = 0;
    char* const bytes = ReadBytes(*file, *opened, isPlain ? memory->text : memory->compressed, &size);
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
    char* const text = room > 0 ? memory->text.Get(room) : nullptr;
    if (text == nullptr) {
        ConsolePrint("<E> %s: no room to inflate its %u bytes\n", file->path.c_str(), size);
        return false;
    }
    file->size = InflateBytes(data, size, text, room, isMember);
    std::memset(text + file->size, 0, TextBlock::kPadding);
    file->text = text;
    file->inflateSeconds += ClockSeconds() - start;
    return true;
}

} // namespace tarnwick
