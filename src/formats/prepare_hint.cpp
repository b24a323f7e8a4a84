#include "formats/prepare_hint.h"

#include "load/file_kind.h"
#include "load/unread_files.h"
#include "platform/opened_file.h"
#include "text/one_line.h"

#include <zlib.h>

#include <algorithm>
#include <string_view>

namespace tarnwick {

namespace {

constexpr std::size_t kHead = 4096; // the first bytes, by which a file is told

bool HasStepText(std::string_view head) {
    if (head.find("ISO-10303-21") != std::string_view::npos) { return true; }
    // XML documents name the standard, or have the root element of its product data.
    return head.find('<') != std::string_view::npos &&
           (head.find("10303") != std::string_view::npos || head.find("Uos") != std::string_view::npos);
}

// The first characters of a zlib or gzip stream; none where it isn't one.
std::string_view InflateHead(std::string_view packed, char* room, std::size_t size) {
    constexpr int kEitherHeader = 15 + 32; // and zlib's largest window
    z_stream stream{};
    if (inflateInit2(&stream, kEitherHeader) != Z_OK) { return {}; }
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<unsigned>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(room);
    stream.avail_out = static_cast<unsigned>(size);
    inflate(&stream, Z_SYNC_FLUSH);
    const std::size_t got = size - stream.avail_out;
    inflateEnd(&stream);
    return {room, got};
}

bool IsStep(const std::string& path) {
    const OpenedFile file(path.c_str());
    if (!file.IsOpen()) { return false; }
    char bytes[kHead];
    int error = 0;
    const std::string_view head(bytes, file.ReadAt(0, bytes, sizeof bytes, &error));
    if (HasStepText(head) || head.starts_with("PK\x03\x04")) { return true; }
    char room[kHead];
    return HasStepText(InflateHead(head, room, sizeof room));
}

// A word as one types it into a shell.
std::string Quoted(const std::string& word) {
    const auto isPlain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view("_-./+,:@%=").find(c) != std::string_view::npos;
    };
    if (std::all_of(word.begin(), word.end(), isPlain)) { return word; }
    std::string quoted = "'";
    for (const char c : word) { quoted += c == '\'' ? "'\\''" : std::string_view(&c, 1); }
    return quoted + "'";
}

bool NeedsMemory(const SceneView& view) {
    const UnreadFiles& files = view.loaded.unreadFiles;
    return std::any_of(files.begin(), files.end(),
                       [](const UnreadFile& file) { return file.reason == kNeedsMemory; });
}

} // namespace

std::string PrepareCommand(const std::string& path) {
    // After "--" a path is no option.
    std::string command = path.starts_with('-') ? "tarnwick-prepare -- " : "tarnwick-prepare ";
    return command += Quoted(path);
}

std::string PrepareHint(const SceneView& view, bool isKnown, const std::string& path) {
    // Only one file of an archive would be prepared, and a summary has nothing but its boxes.
    const FileKind kind = FileKindOf(path);
    if (kind == FileKind::kArchive || kind == FileKind::kSummary) { return {}; }
    if (isKnown && (view.loaded.drawnTriangles > 0 || NeedsMemory(view))) { return {}; }
    if (!IsStep(path)) { return {}; }
    return "this brings it into a form that can be shown: " + PrepareCommand(OnOneLine(path));
}

} // namespace tarnwick
