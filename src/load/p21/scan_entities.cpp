// The one pass over the lines of a file's data section: an entity is recognised only at the first character
// of a line, and its keyword by prefix; nothing behind the keyword is read.

#include "load/p21/keyword_codes.h"
#include "load/p21/parse_real.h"
#include "load/p21/step_model.h"
#include "platform/console.h"

#include <algorithm>
#include <cstring>

namespace tarnwick {

namespace {

// Finds line ends in a text that may hold a NUL, which ends the scan. Since lines are mostly found by memchr
// for a line feed, the NULs are looked for a stretch ahead, while that stretch is on its way into the cache
// anyway.
class LineFinder {
public:
    LineFinder(char* start, char* end) : end_(end), checked_(start) {}

    // The next line feed or NUL at or after `p`; there is always one, since a NUL stands at the end of the
    // text.
    char* LineEnd(char* p) {
        void* const feed = std::memchr(p, '\n', static_cast<std::size_t>(end_ - p));
        char* const found = feed != nullptr ? static_cast<char*>(feed) : end_;
        if (found >= checked_) { CheckUpTo(found); }
        return std::min(found, end_);
    }

private:
    void CheckUpTo(char* found) {
        constexpr std::ptrdiff_t kStretch = 1 << 16;
        char* const upTo = end_ - found > kStretch ? found + kStretch : end_;
        void* const nul = std::memchr(checked_, '\0', static_cast<std::size_t>(upTo - checked_));
        if (nul != nullptr) { end_ = static_cast<char*>(nul); }
        checked_ = upTo;
    }

    char* end_;
    char* checked_;
};

bool IsTrailing(char c) {
    return c == '\t' || c == '\n' || c == '\r' || c == ' ';
}

} // namespace

// The line feed that ends the line "DATA;"; null without such a line. The first line of the text isn't looked
// at.
char* StepModel::FindDataSection() const {
    char* p = text;
    for (;;) {
        p = static_cast<char*>(std::memchr(p, '\n', static_cast<std::size_t>(textEnd - p)));
        if (p == nullptr) { return nullptr; }
        ++p;
        if (std::memcmp(p, "DATA;", 5) == 0) {
            return static_cast<char*>(std::memchr(p, '\n', static_cast<std::size_t>(textEnd - p)));
        }
    }
}

bool StepModel::ScanEntities() {
    char* const data = FindDataSection();
    if (data == nullptr) {
        GiveUp("no DATA section");
        return false;
    }
    void* const memory = workspace_.index.Allocate(sizeof(ListP42Ent));
    if (memory == nullptr || !AddBlock()) {
        GiveUp("no memory for its entities");
        return false;
    }
    structureList = ::new (memory) ListP42Ent(&workspace_.index);
    LineFinder lines(data, textEnd);
    bool continuing = false;
    char* p = data;
    while (*p != '\0') {
        while (*p == '\n' || *p == '\r') { ++p; }
        char* const line = p;
        p = lines.LineEnd(line);
        char* last = p;
        while (last > line && IsTrailing(*last)) { --last; }
        const bool complete = *last == ';';
        if (continuing) {
            // The tail of an unfinished statement: neither an entity nor the end of the section in it counts.
            continuing = !complete;
            continue;
        }
        continuing = !complete;
        if (*line != '#') {
            if (std::memcmp(line, "ENDSEC", 6) == 0) { break; }
            continue;
        }
        const char* equals = line + 1;
        while (*equals != '=' && *equals != '\n' && equals < textEnd) { ++equals; }
        if (equals == textEnd) {
            GiveUp("its last line breaks off in an entity number");
            return false;
        }
        if (*equals != '=') {
            OutputPrint("<E> Definition d'entite non reconnue:\n");
            continue;
        }
        const std::int32_t id = StringToInteger(line + 1);
        if (id < 1) { continue; }
        const char* keyword = equals + 1;
        while (*keyword == ' ') { ++keyword; }
        if (!AddEntity(id, line, ClassifyEntity(keyword), complete)) {
            GiveUp("no memory for its entities");
            return false;
        }
    }
    OutputPrint("\nNombre d'entites dans le fichier d'entree: %d\n", entityCount);
    return true;
}

// The next block of record pointers, with ten times the room of the one before. A block is made as soon as
// its predecessor is full, so the last one can stand empty.
bool StepModel::AddBlock() {
    blockRoom_ = blockRoom_ == 0 ? 10000 : blockRoom_ * 10;
    blockCount_ = 0;
    const std::size_t bytes = static_cast<std::size_t>(blockRoom_) * sizeof(P42Ent*);
    currentBlock_ = static_cast<P42Ent**>(workspace_.index.Allocate(bytes));
    if (currentBlock_ == nullptr) { return false; }
    entityBlocks[blocks_++] = currentBlock_;
    return true;
}

// False when memory runs out.
bool StepModel::AddEntity(std::int32_t id, const char* line, std::int32_t code, bool complete) {
    P42Ent* const record = workspace_.index.New<P42Ent>();
    if (record == nullptr) { return false; }
    record->id = id;
    record->offset = static_cast<std::int32_t>(line - text);
    record->multiLine = complete ? 0 : 1;
    record->code = code;
    currentBlock_[blockCount_++] = record;
    ++entityCount;
    if (blockCount_ == blockRoom_ && !AddBlock()) { return false; }
    switch (code) {
    case code::kTessellatedShapeRepresentation:
        shapeRepresentationId = id;
        break;
    case code::kPresentationRepresentation:
        if (presentationId == 0) { presentationId = id; }
        return structureList->Add(record) != 0;
    case code::kNextAssemblyUsage:
        isAssembly = 1;
        break;
    case code::kProduct:
        rootProductId = id;
        ++productCount;
        break;
    case code::kProductRelatedProductCategory:
    case code::kShapeDefinitionRepresentation:
    case code::kMakeFromUsageOption:
        return structureList->Add(record) != 0;
    case code::kColourRgb:
    case code::kDraughtingPreDefinedColour:
        colourIds.push_back(id);
        break;
    default:
        break;
    }
    return true;
}

} // namespace tarnwick
