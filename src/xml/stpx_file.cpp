#include "xml/stpx_file.h"

#include "platform/clock.h"
#include "platform/console.h"
#include "text/inflate_bytes.h"
#include "text/opened_file.h"

#include <limits>
#include <optional>
#include <utility>

namespace tarnwick {

namespace {

// Places in a text are counted in 32 bits.
constexpr std::uint64_t kLargestText = std::numeric_limits<std::int32_t>::max();

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Turns the name into that of the compressed or plain twin; false when there is nothing to take off.
bool ApplyFallBack(StpxFile& file) {
    switch (file.compression) {
    case StpxFile::kTwoCharacterSuffix:
        if (file.path.size() < 2) { return false; }
        file.path.resize(file.path.size() - 2);
        file.compression = StpxFile::kPlain;
        return true;
    default:
        file.path.push_back('z');
        file.compression = StpxFile::kOneCharacterSuffix;
        return true;
    }
}

int ReadOpened(StpxFile& file, const OpenedFile& opened, DocumentMemory& memory) {
    const double start = ClockSeconds();
    if (opened.Size() > kLargestText) {
        ConsolePrint("<E> %s: files of 2 GiB and more can't be read\n", file.path.c_str());
        return 1;
    }
    const std::size_t size = static_cast<std::size_t>(opened.Size());
    TextBlock& block = file.compression == StpxFile::kPlain ? memory.text : memory.compressed;
    char* const bytes = block.Get(size + 1);
    if (bytes == nullptr) {
        ConsolePrint("<E> %s: no memory for its %zu bytes\n", file.path.c_str(), size);
        return 1;
    }
    const std::size_t read = opened.ReadAt(0, bytes, size);
    bytes[read] = '\0';
    const double inflating = ClockSeconds();
    file.readSeconds += inflating - start;
    if (file.compression == StpxFile::kPlain) {
        file.text = bytes;
        file.size = read;
        return 0;
    }
    // The NUL behind the bytes is handed over with them: it does the stream no harm.
    const std::size_t room = InflatedRoom(read + 1);
    char* const text = room > 0 ? memory.text.Get(room) : nullptr;
    if (text == nullptr) {
        ConsolePrint("<E> %s: no room to inflate its %zu bytes\n", file.path.c_str(), read);
        return 1;
    }
    file.size = InflateBytes(reinterpret_cast<const unsigned char*>(bytes),
                             static_cast<std::uint32_t>(read + 1), text, room);
    file.text = text;
    file.inflateSeconds += ClockSeconds() - inflating;
    return 0;
}

} // namespace

StpxFile OpenStpxFile(std::string path) {
    StpxFile file;
    file.path = std::move(path);
    const bool compressed = !file.path.empty() && LowerCase(file.path.back()) == 'z';
    file.compression = compressed ? StpxFile::kTwoCharacterSuffix : StpxFile::kPlain;
    return file;
}

int ReadStpxFile(StpxFile& file, DocumentMemory& memory) {
    std::optional<OpenedFile> opened(file.path.c_str());
    if (!opened->IsOpen()) {
        if (!ApplyFallBack(file)) { return 1; }
        opened.emplace(file.path.c_str());
        if (!opened->IsOpen()) { return 1; }
    }
    return ReadOpened(file, *opened, memory);
}

int IsXmlFileName(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || name.size() - dot > 9) { return 0; }
    std::string extension(name.substr(dot + 1));
    for (char& c : extension) { c = LowerCase(c); }
    return extension == "stpx" || extension == "stpxz" ? 1 : 0;
}

} // namespace tarnwick
