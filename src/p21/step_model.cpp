#include "p21/step_model.h"

#include "p21/keyword_codes.h"
#include "platform/console.h"
#include "platform/within_memory.h"
#include "text/one_line.h"

#include <string_view>
#include <utility>

namespace tarnwick {

namespace {

std::int32_t CompressionFromName(const std::string& name) {
    if (name.empty()) { return TextFile::kPlain; }
    std::int32_t kind = TextFile::kPlain;
    if (name.back() == 'Z' || name.back() == 'z') { kind = TextFile::kTwoCharacterSuffix; }
    if (name.size() >= 2 && name[name.size() - 2] == 'p') { kind = TextFile::kOneCharacterSuffix; }
    return kind;
}

} // namespace

StepModel::StepModel(ReaderWorkspace& workspace, std::string path)
    : fileName(std::move(path)), compression(CompressionFromName(fileName)), workspace_(workspace),
      isFile_(true) {}

StepModel::StepModel(ReaderWorkspace& workspace, std::unique_ptr<unsigned char[]> data, std::uint32_t size)
    : compressedData(std::move(data)), compressedSize(size), compression(TextFile::kTwoCharacterSuffix),
      workspace_(workspace), isFile_(false) {}

StepModel::~StepModel() {
    workspace_.index.Reset();
}

int StepModel::GiveUp(const char* reason) {
    ConsolePrint("<E> %s: %s\n", OneLine(fileName).Text(), reason);
    entityMap = nullptr;
    structureList = nullptr;
    return kNotP21;
}

int StepModel::GiveUpForMemory(const char* reason) {
    problem = kNeedsMemory;
    return GiveUp(reason);
}

int StepModel::Read() {
    const int result = ReadIndex();
    return result == kRead ? DiscoverRoot() : result;
}

int StepModel::ReadIndex() {
    workspace_.lines.Clear();
    const int opened = isFile_ ? ReadFile() : InflateData();
    if (opened != kRead) { return opened; }
    if (!std::string_view(text, static_cast<std::size_t>(textEnd - text)).starts_with(kStart)) {
        ConsolePrint("<E> Invalid P21 file\n");
        return kNotP21;
    }
    far_ = std::make_unique<FarPlaces>(text, textEnd);
    if (!ScanEntities()) { return kNotP21; }
    if (!BuildEntityMap()) { return GiveUpForMemory("no memory for its entity table"); }
    if (!ReadSchemaNumber()) { return GiveUp("its header has no FILE_SCHEMA(, without a blank in it"); }
    return kRead;
}

int StepModel::DiscoverRoot() {
    if (isAssembly == 0 && productCount >= 2 && !FindRootProduct()) {
        return GiveUp("a product category runs past the end of the file");
    }
    return kRead;
}

P42Ent* StepModel::EntityAt(std::int32_t index) const {
    std::int32_t room = 10000;
    int block = 0;
    for (; index >= room; ++block) {
        index -= room;
        room *= 10;
    }
    return entityBlocks[block][index];
}

bool StepModel::BuildEntityMap() {
    map_.emplace(&workspace_.index, HashBits(entityCount), MapP42Ent::kBucketsOnDemand);
    if (map_->BucketCount() == 0) { return false; }
    std::int32_t left = entityCount;
    std::int64_t room = 10000;
    for (int block = 0; left > 0; ++block, room *= 10) {
        const std::int32_t here = left < room ? left : static_cast<std::int32_t>(room);
        map_->AddAll(entityBlocks[block], here);
        left -= here;
    }
    map_->MakeAllBuckets();
    entityMap = &*map_;
    return true;
}

// The number in the schema's name: two characters after the first "A" of the first string after
// "FILE_SCHEMA(", such as the 242 of 'AP242_MANAGED...'. A name without such a number gives 0. False when
// there is no such string.
bool StepModel::ReadSchemaNumber() {
    const std::string_view content(text, static_cast<std::size_t>(textEnd - text));
    constexpr std::string_view kSchema = "FILE_SCHEMA(";
    const std::size_t schema = content.find(kSchema);
    if (schema == std::string_view::npos) { return false; }
    TextWalk walk{text + schema, textEnd};
    walk.GoTo('\'');
    walk.GoTo('A');
    if (walk.overrun) { return false; }
    walk.Step();
    walk.Step();
    apNumber = StringToInteger(walk.at);
    return true;
}

// A file with several products and no assembly names its main products by the category "part"; the last such
// category wins. False when a line runs past the end of the text.
bool StepModel::FindRootProduct() {
    std::int32_t root = 0;
    std::vector<std::int32_t> ids;
    for (P42Ent* record = structureList->First(); record != nullptr; record = structureList->Next()) {
        if (record->code != code::kProductRelatedProductCategory) { continue; }
        TextWalk walk = WalkFrom(record);
        const std::string_view name = ReadFirstString(&walk, kNameRoom);
        if (!walk.overrun && name == "part") {
            walk.Step();
            ids.clear();
            ParseIdList(&walk, &ids);
            root = ids.empty() ? 0 : ids.front();
            if (!walk.overrun && ids.size() != 1) { ConsolePrint("<W> StepModel: several root products\n"); }
        }
        if (walk.overrun) { return false; }
    }
    if (root != 0) { rootProductId = root; }
    return true;
}

} // namespace tarnwick
