#include "check/check_file.h"

#include "check/entity_text.h"
#include "exchange/exchange_file.h"
#include "load/unread_files.h"
#include "p21/keyword_codes.h"
#include "p21/text_walk.h"
#include "prepare/structure/p21_structure.h"
#include "text/parse_real.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tarnwick {

namespace {

// Why a file that was opened isn't a P21 file for the readers.
Finding WhyNotStep(const StepModel& model) {
    Finding finding{.kind = FindingKind::kHeader, .text = "the file isn't read: "};
    const auto because = [&finding](const std::string& why, std::size_t place = std::string_view::npos) {
        if (place != std::string_view::npos) { finding.offset = static_cast<std::int32_t>(place); }
        finding.text += why;
        return finding;
    };
    if (model.text == nullptr || model.textEnd == model.text) { return because("it is empty"); }
    const std::string_view text(model.text, static_cast<std::size_t>(model.textEnd - model.text));
    if (text.starts_with("\x1F\x8B")) {
        return because("it is compressed, which is taken under the extension .stpz alone");
    }
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string_view::npos && text[first] == '<') {
        return because("it is XML, which is taken under the extensions .stpx and .stpxz alone");
    }
    if (!text.starts_with(StepModel::kStart)) {
        const bool isLater = text.substr(0, 1000).find(StepModel::kStart) != std::string_view::npos;
        const std::string start(StepModel::kStart);
        return because(isLater ? "something stands before its " + start + ", which must come first"
                               : "it doesn't start with " + start);
    }
    if (text.find("\nDATA;") == std::string_view::npos) { return because("no line starts with DATA;"); }
    constexpr std::string_view kSchema = "FILE_SCHEMA";
    const std::size_t schema = text.find(kSchema);
    if (schema == std::string_view::npos) { return because("its header has no FILE_SCHEMA"); }
    if (text.find("FILE_SCHEMA(") == std::string_view::npos) {
        return because("a blank or line end stands between FILE_SCHEMA and \"(\"", schema);
    }
    return because("it breaks off");
}

// Whether the first string of an entity is short enough not to end the program. By the moves of the readers:
// where it has no quote, they go on to those of other entities.
bool NameFits(const StepModel& model, const P42Ent* entity) {
    TextWalk walk = model.WalkFrom(entity);
    walk.GoToFirstString();
    if (walk.overrun) { return true; }
    const std::string_view name = walk.Ahead(kNameRoom);
    return name.size() < kNameRoom || name.find('\'') != std::string_view::npos;
}

std::string LongName(std::size_t room) {
    return "its name has " + std::to_string(room) + " characters or more";
}

// The next reference; false where there is none, and for one that would end the program, which is told
// elsewhere.
bool ReferenceAt(TextWalk* walk, std::int32_t* id) {
    walk->GoTo('#');
    if (walk->overrun) { return false; }
    std::size_t digits = 0;
    while (digits < kDigitRoom && real::IsDigit(walk->at[1 + digits])) { ++digits; }
    if (digits >= kDigitRoom) { return false; }
    *id = ReadReference(walk);
    return true;
}

} // namespace

std::string Number(std::int32_t id) {
    return "#" + std::to_string(id);
}

void CheckedFile::Add(FindingKind kind, const P42Ent* entity, std::string text) {
    findings.push_back(
        {.kind = kind, .entity = entity->id, .offset = entity->offset, .text = std::move(text)});
}

void CheckedFile::AddAt(FindingKind kind, const P42Ent* entity, const char* place, std::string text) {
    findings.push_back(
        {.kind = kind, .entity = entity->id, .offset = OffsetOf(model, place), .text = std::move(text)});
}

void CheckedFile::AddAt(FindingKind kind, std::uint64_t entity, std::string text) {
    const Instance* const instance = exchange.Find(entity);
    findings.push_back({.kind = kind,
                        .entity = static_cast<std::int32_t>(
                            std::min<std::uint64_t>(entity, std::numeric_limits<std::int32_t>::max())),
                        .offset = instance != nullptr ? static_cast<std::int32_t>(instance->begin) : -1,
                        .text = std::move(text)});
}

void CheckedFile::Add(FindingKind kind, std::string text) {
    findings.push_back({.kind = kind, .text = std::move(text)});
}

bool CheckedFile::HasComma(const P42Ent* entity, std::string_view name, const char* outcome) {
    if (name.find(',') == std::string_view::npos) { return false; }
    Add(FindingKind::kName, entity, std::string("its name holds a comma: ") + outcome);
    return true;
}

bool CheckedFile::IsMissed(const P42Ent* entity, std::string_view entityText, int commas, char target,
                           std::string_view argument, const char* outcome) {
    const std::size_t place = argument.find(target);
    if (place == std::string_view::npos ||
        PlaceAfter(entityText, commas, target) == argument.data() + place) {
        return false;
    }
    Add(FindingKind::kName, entity,
        std::string("a name in it holds a \"") + target + "\" that is taken for another: " + outcome);
    return true;
}

void CheckedFile::CheckReferenceList(const P42Ent* entity, std::string_view list) {
    const ListShape shape = ShapeOf(list, ValueKind::kReferences);
    if (!shape.sound || shape.inner > 0) {
        AddAt(FindingKind::kDamaged, entity, list.data(), "its list isn't one of references");
        return;
    }
    char before = ' '; // the last character that is no blank
    for (const char& c : list) {
        if (c == '\n' && (before == '(' || before == ',')) {
            AddAt(FindingKind::kBrokenList, entity, &c,
                  "its list is broken here: the item that starts the next line is lost");
            return;
        }
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n') { before = c; }
    }
}

bool CheckedFile::CheckName(const P42Ent* entity) {
    if (NameFits(model, entity)) { return true; }
    Add(FindingKind::kTooLong, entity, LongName(kNameRoom));
    return false;
}

void CheckedFile::CheckRootProduct() {
    const P42Ent* const product = model.Find(model.rootProductId);
    if (product == nullptr) {
        Add(FindingKind::kNoProduct, "the file has no PRODUCT, so that nothing of it is drawn");
    } else {
        CheckName(product);
    }
}

// The name of a raw material, by the moves of its reader.
void CheckedFile::CheckMaterials() {
    bool isRawMaterial = false;
    std::vector<const P42Ent*> options;
    bool hasShapeDefinition = false;
    constexpr std::string_view kCategory = "raw material";
    for (const P42Ent* record = model.structureList->First(); record != nullptr;
         record = model.structureList->Next()) {
        if (record->code == code::kProductRelatedProductCategory) {
            TextWalk walk = model.WalkFrom(record);
            walk.GoToFirstString();
            if (walk.Ahead(kCategory.size()) == kCategory) { isRawMaterial = true; }
        }
        if (record->code == code::kMakeFromUsageOption) { options.push_back(record); }
        if (record->code == code::kShapeDefinitionRepresentation) { hasShapeDefinition = true; }
    }
    if (!isRawMaterial || !hasShapeDefinition) { return; }
    const auto next = [this](std::int32_t id, int arguments, TextWalk* walk) {
        return !walk->overrun && model.OpenAfterArguments(id, arguments, walk);
    };
    for (const P42Ent* const option : options) {
        TextWalk walk = model.WalkFrom(option);
        walk.Enter();
        walk.SkipArguments(4);
        std::int32_t id = 0;
        bool isThere = ReferenceAt(&walk, &id) && next(id, 2, &walk) && ReferenceAt(&walk, &id) &&
                       next(id, 2, &walk) && ReferenceAt(&walk, &id) && next(id, 1, &walk);
        if (!isThere) { continue; }
        walk.SkipBlanksAndLineFeeds();
        walk.Step();
        const std::string_view name = walk.Ahead(kMaterialRoom);
        if (walk.overrun || name.size() < kMaterialRoom || name.find('\'') != std::string_view::npos) {
            continue;
        }
        const P42Ent* const product = model.Find(id);
        Add(FindingKind::kTooLong, product, LongName(kMaterialRoom) + ", as that of a raw material");
    }
}

int ReadToCheck(StepModel& model, std::vector<Finding>* findings) {
    const int result = model.ReadIndex();
    if (result != StepModel::kRead) { return result; }
    bool hasTooLongName = false;
    if (model.isAssembly == 0 && model.productCount >= 2) {
        for (const P42Ent* record = model.structureList->First(); record != nullptr;
             record = model.structureList->Next()) {
            if (record->code != code::kProductRelatedProductCategory) { continue; }
            if (NameFits(model, record)) { continue; }
            hasTooLongName = true;
            findings->push_back({.kind = FindingKind::kTooLong,
                                 .entity = record->id,
                                 .offset = record->offset,
                                 .text = LongName(kNameRoom)});
        }
    }
    return hasTooLongName ? result : model.DiscoverRoot();
}

void CheckStepFile(const StepModel& model, int result, FileRole role, KeywordCounts* counts,
                   std::vector<Finding>* findings, FileReferences* references) {
    if (result == StepModel::kNotOpened) {
        findings->push_back({.kind = FindingKind::kUnread, .text = UnreadReason(model, result)});
        return;
    }
    const std::string_view text =
        model.text != nullptr
            ? std::string_view(model.text, static_cast<std::size_t>(model.textEnd - model.text))
            : std::string_view();
    if (text.empty()) {
        findings->push_back(WhyNotStep(model));
        return;
    }
    const ExchangeFile exchange(text);
    references->structure = prepare::ReadP21Structure(exchange);
    CheckedFile file{model, *findings, exchange, references->structure};
    if (result != StepModel::kRead) {
        findings->push_back(WhyNotStep(model));
        if (!exchange.Instances().empty()) { CheckExactShape(file, false); }
        FindLines(text, findings);
        return;
    }
    references->hasTessellation = HasTessellation(file);
    CheckLines(file);
    CheckEntities(file, counts);
    const bool isTop = role == FileRole::kTop;
    references->isAssembly = model.isAssembly != 0;
    if (model.isAssembly != 0) {
        if (role == FileRole::kPart) {
            file.Add(FindingKind::kUnread, "is a P21 assembly, which can't be a part here");
        } else {
            CheckAssembly(file, isTop, references);
            CheckExactShape(file, true);
            CheckOwnShapes(file);
        }
    } else if (isTop && model.apNumber == StepModel::kFiniteElementSchema) {
        file.CheckRootProduct();
        CheckFiniteElements(file, references);
    } else {
        if (isTop) { file.CheckRootProduct(); }
        file.CheckMaterials();
        CheckPart(file);
        CheckExactShape(file, false);
        CheckColours(file);
    }
    references->isDrawn = !file.drawn.IsEmpty();
    FindLines(text, findings);
    FindLines(text, &references->bareFindings);
    std::vector<Finding> ofNames;
    for (const auto& [place, other] : references->otherNames) { ofNames.push_back(other.finding); }
    FindLines(text, &ofNames);
    LookUp<std::int32_t, std::int32_t> lines; // by offset
    for (const Finding& finding : ofNames) { lines.Add(finding.offset, finding.line); }
    for (auto& [place, other] : references->otherNames) {
        other.finding.line = *lines.Find(other.finding.offset);
    }
}

} // namespace tarnwick
