// The one pass over the lines of a file's data section: an entity is recognised only at the first character
// of a line, and its keyword by prefix; nothing after the keyword is read.

#include "p21/keyword_codes.h"
#include "p21/step_model.h"
#include "platform/console.h"
#include "text/char_bits.h"
#include "text/line_marks.h"
#include "text/parse_real.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <new>

namespace tarnwick {

namespace {

// Finds line ends, one after another, in a text that ends at its first NUL; there is one after the text.
// Passes over blocks without marks where these are few.
class LineFinder {
public:
    LineFinder(char* text, char* start, const LineMarks& marks)
        : block_(start), ends_(CharBits<'\n', '\0'>(start)), text_(text), marks_(marks),
          isMarked_(marks.AreFew()) {}

    // The next line feed or NUL at or after `p`, which isn't before the one found last.
    char* LineEnd(char* p) {
        const std::ptrdiff_t passed = p - block_;
        if (passed < kCharBlock) {
            ends_ &= ~std::uint64_t{0} << passed;
        } else {
            block_ = p;
            ends_ = CharBits<'\n', '\0'>(p);
        }
        while (ends_ == 0) {
            block_ += kCharBlock;
            if (isMarked_) { GoToMark(); }
            ends_ = CharBits<'\n', '\0'>(block_);
        }
        return block_ + std::countr_zero(ends_);
    }

private:
    // Unless `block_` begins in a marked block, to the next one.
    void GoToMark() {
        const std::size_t here = static_cast<std::size_t>(block_ - text_) / LineMarks::kBlock;
        const std::size_t next = marks_.Next(here);
        if (next > here) { block_ = text_ + next * LineMarks::kBlock; }
        FetchAfter(next);
    }

    // Asks for the marked blocks that come next, and for the starts of lines after them: lines of a few
    // kilobytes are too far apart for the processor to foresee them.
    void FetchAfter(std::size_t block) {
        constexpr int kBlocks = 12;
        if (fetched_ <= block) {
            fetched_ = block;
            for (int i = 1; i < kBlocks; ++i) { FetchNext(); }
        }
        FetchNext();
    }
    void FetchNext() {
        fetched_ = marks_.Next(fetched_ + 1);
        if (fetched_ == marks_.BlockCount()) { return; }
        const char* const start = text_ + fetched_ * LineMarks::kBlock;
        __builtin_prefetch(start);
        __builtin_prefetch(start + LineMarks::kBlock);
    }

    char* block_;
    std::uint64_t ends_; // of the block, from the place of the last search on
    char* const text_;
    const LineMarks& marks_;
    const bool isMarked_;
    std::size_t fetched_ = 0; // the last block asked for
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

// The next block of record pointers, with ten times the room of the one before. A block is made as soon as
// the one before is full, so the last one can be empty. False when memory runs out.
bool StepModel::AddBlock() {
    blockRoom_ = blockRoom_ == 0 ? 10000 : blockRoom_ * 10;
    blockCount_ = 0;
    const std::size_t bytes = static_cast<std::size_t>(blockRoom_) * sizeof(P42Ent*);
    currentBlock_ = static_cast<P42Ent**>(workspace_.index.Allocate(bytes));
    if (currentBlock_ == nullptr) { return false; }
    entityBlocks[blocks_++] = currentBlock_;
    return true;
}

// Memory for more records, which are small and many. False when it runs out.
bool StepModel::AddRecords() {
    constexpr std::size_t kRecords = 256;
    nextRecord_ = static_cast<P42Ent*>(workspace_.index.Allocate(kRecords * sizeof(P42Ent)));
    recordLimit_ = nextRecord_ != nullptr ? nextRecord_ + kRecords : nullptr;
    return nextRecord_ != nullptr;
}

// False when memory runs out.
inline bool StepModel::AddEntity(std::int32_t id, const char* line, std::int32_t code, bool complete) {
    if (nextRecord_ == recordLimit_ && !AddRecords()) { return false; }
    P42Ent* const record = ::new (static_cast<void*>(nextRecord_++)) P42Ent{};
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

// Takes the entity whose line starts at `line`, with its "#". A line without a "=" makes none, nor does a
// number below 1. False when the file is given up.
[[gnu::always_inline]] inline bool StepModel::ScanEntity(const char* line, bool complete) {
    const char* equals = line + 1;
    std::int32_t id = 0;
    // The usual form: up to eight digits right before the "=".
    const std::uint64_t word = LoadEight(equals);
    const unsigned digits = real::LeadingDigits(word);
    if (digits > 0 && equals[digits] == '=') [[likely]] {
        id = static_cast<std::int32_t>(real::DigitsValue(word, digits));
        equals += digits;
    } else {
        while (*equals != '=' && *equals != '\n' && equals < textEnd) { ++equals; }
        if (equals == textEnd) {
            GiveUp("its last line breaks off in an entity number");
            return false;
        }
        if (*equals != '=') {
            OutputPrint("<E> Definition d'entite non reconnue:\n");
            return true;
        }
        id = StringToInteger(line + 1);
    }
    if (id < 1) { return true; }
    const char* keyword = equals + 1;
    while (*keyword == ' ') { ++keyword; }
    if (AddEntity(id, line, ClassifyEntity(keyword), complete)) { return true; }
    GiveUpForMemory("no memory for its entities");
    return false;
}

bool StepModel::ScanEntities() {
    char* const data = FindDataSection();
    if (data == nullptr) {
        GiveUp("no DATA section");
        return false;
    }
    void* const memory = workspace_.index.Allocate(sizeof(ListP42Ent));
    if (memory == nullptr || !AddBlock()) {
        GiveUpForMemory("no memory for its entities");
        return false;
    }
    structureList = ::new (memory) ListP42Ent(&workspace_.index);
    LineFinder lines(text, data, workspace_.lines);
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
            // The rest of an unfinished statement: neither an entity nor the end of the section in it counts.
            continuing = !complete;
            continue;
        }
        continuing = !complete;
        if (*line != '#') {
            if (std::memcmp(line, "ENDSEC", 6) == 0) { break; }
            continue;
        }
        if (!ScanEntity(line, complete)) { return false; }
    }
    OutputPrint("\nNombre d'entites dans le fichier d'entree: %d\n", entityCount);
    return true;
}

} // namespace tarnwick
