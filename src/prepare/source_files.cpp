#include "prepare/source_files.h"

#include "platform/files.h"
#include "platform/memory_left.h"
#include "platform/paths.h"
#include "prepare/structure/p21_structure.h"
#include "prepare/xml/xml_structure.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>

namespace tarnwick::prepare {

namespace {

namespace fs = std::filesystem;

bool IsXml(std::string_view text) {
    using namespace std::string_view_literals;
    constexpr std::string_view kInUtf16[] = {"\xFF\xFE<\0"sv, "\xFE\xFF\0<"sv};
    if (text.starts_with(kInUtf16[0]) || text.starts_with(kInUtf16[1])) { return true; }
    if (text.starts_with("\xEF\xBB\xBF")) { text.remove_prefix(3); }
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '<';
}

// Tells where the text itself can't be understood, and so something of it is lost.
void NoteDamage(LoadedSource* source) {
    constexpr std::size_t kMost = 10;
    std::size_t told = 0;
    for (const Deviation& deviation : source->file->Deviations()) {
        if (!deviation.isLoss) { continue; }
        if (told++ == kMost) {
            source->structure.losses.push_back({"", 0, "the text is damaged in further places", true});
            return;
        }
        const TextPlace place = PlaceOf(source->file->Text(), deviation.offset);
        source->structure.losses.push_back(
            {"", 0, "line " + std::to_string(place.line) + " of the text: " + deviation.what, true});
    }
}

template <class IsThere>
std::string FindAmong(const std::string& folder, const std::vector<std::string>& names, IsThere isThere,
                      bool* isOther) {
    static constexpr std::array<const char*, 9> kEndings{".stp", ".step",  ".p21",    ".stpz", ".stpx",
                                                         ".xml", ".stpxz", ".stp.gz", ".stp.Z"};
    *isOther = false;
    std::vector<fs::path> candidates;
    for (std::string name : names) {
        std::replace(name.begin(), name.end(), '\\', '/');
        // No drive, no scheme, no root.
        if (name.size() > 1 && name[1] == ':') { name.erase(0, 2); }
        name.erase(0, std::min(name.find_first_not_of('/'), name.size()));
        if (name.empty() || !CanNameFile(name)) { continue; }
        candidates.push_back(PathOf(folder) / PathOf(name));
        candidates.push_back(PathOf(folder) / PathOf(name).filename());
    }
    for (const fs::path& path : candidates) {
        if (isThere(path)) { return TextOf(path); }
    }
    *isOther = true;
    for (const fs::path& path : candidates) {
        for (const char* const ending : kEndings) {
            fs::path other = path;
            other.replace_extension(ending);
            if (isThere(other)) { return TextOf(other); }
        }
    }
    return {};
}

} // namespace

std::unique_ptr<LoadedSource> LoadSource(const std::string& path, const std::string& member) {
    auto source = std::make_unique<LoadedSource>();
    const auto room = static_cast<std::size_t>(
        std::min<std::uint64_t>(MemoryLeft(), std::numeric_limits<std::size_t>::max() / 2));
    source->bytes = member.empty() ? ReadFileBytes(path, room) : ReadMemberBytes(path, member, room);
    const bool isEmpty = !source->bytes.IsRead() || source->bytes.size == 0;
    if (isEmpty && !source->bytes.error.empty()) {
        source->error = source->bytes.error;
        return source;
    }
    const std::string_view text = source->bytes.Text();
    if (IsXml(text)) {
        std::string error;
        if (!ReadXmlStructure(text, &source->structure, &error)) {
            source->error = error;
            return source;
        }
        if (!error.empty()) { source->structure.losses.push_back({"", 0, error, true}); }
    } else {
        source->file = std::make_unique<ExchangeFile>(text);
        if (!source->file->IsExchangeFile() && source->file->Instances().empty()) {
            source->error = "it is neither an ISO 10303-21 file nor STEP XML";
            return source;
        }
        source->structure = ReadP21Structure(*source->file);
        NoteDamage(source.get());
    }
    if (!source->bytes.error.empty()) {
        source->structure.losses.push_back({"", 0, source->bytes.error, true});
    }
    return source;
}

std::string FindSource(const std::string& folder, const std::vector<std::string>& names, bool* isOther) {
    const auto isFile = [](const fs::path& path) { return IsRegularFile(TextOf(path)); };
    return FindAmong(folder, names, isFile, isOther);
}

std::string FindMember(const std::unordered_set<std::string>& members, const std::string& folder,
                       const std::vector<std::string>& names, bool* isOther) {
    const auto isMember = [&members](const fs::path& path) {
        return members.contains(TextOf(path.lexically_normal()));
    };
    return TextOf(PathOf(FindAmong(folder, names, isMember, isOther)).lexically_normal());
}

} // namespace tarnwick::prepare
