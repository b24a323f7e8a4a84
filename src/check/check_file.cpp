#include "check/check_file.h"

#include "check/entity_text.h"
#include "load/unread_files.h"
#include "p21/keyword_codes.h"

#include <algorithm>
#include <utility>

namespace tarnwick {

namespace {

// Why a file that was opened isn't a P21 file for the readers.
std::string WhyNotStep(const StepModel& model) {
    const std::string reason = "the file isn't read: ";
    if (model.text == nullptr || model.textEnd == model.text) { return reason + "it is empty"; }
    const std::string_view text(model.text, static_cast<std::size_t>(model.textEnd - model.text));
    if (!text.starts_with(StepModel::kStart)) {
        const bool later = text.substr(0, 1000).find(StepModel::kStart) != std::string_view::npos;
        const std::string start(StepModel::kStart);
        return reason + (later ? "something stands before its " + start + ", which must come first"
                               : "it doesn't start with " + start);
    }
    if (text.find("\nDATA;") == std::string_view::npos) { return reason + "no line starts with DATA;"; }
    if (text.find("FILE_SCHEMA(") == std::string_view::npos) {
        return reason + "its header has no FILE_SCHEMA( (without a blank)";
    }
    return reason + "it breaks off";
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

void CheckedFile::Add(FindingKind kind, std::string text) {
    findings.push_back({.kind = kind, .text = std::move(text)});
}

bool CheckedFile::HasComma(const P42Ent* entity, std::string_view name) {
    if (name.find(',') == std::string_view::npos) { return false; }
    Add(FindingKind::kName, entity, "its name holds a comma: what follows is read wrongly");
    return true;
}

bool CheckedFile::IsMissed(const P42Ent* entity, std::string_view entityText, int commas, char target,
                           std::string_view argument) {
    const std::size_t place = argument.find(target);
    if (place == std::string_view::npos ||
        PlaceBehind(entityText, commas, target) == argument.data() + place) {
        return false;
    }
    Add(FindingKind::kName, entity,
        std::string("a name in it holds a \"") + target + "\" that is taken for another: it is read wrongly");
    return true;
}

void CheckedFile::CheckReferenceList(const P42Ent* entity, std::string_view list) {
    const ListShape shape = ShapeOf(list, ListOf::kReferences);
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
    // By the moves of the readers: where a quote is absent, they go on to those of other entities.
    TextWalk walk = model.WalkFrom(entity);
    walk.GoToFirstString();
    if (walk.overrun) { return true; }
    const std::string_view name = walk.Ahead(kNameRoom);
    if (name.size() < kNameRoom || name.find('\'') != std::string_view::npos) { return true; }
    Add(FindingKind::kTooLong, entity, "its name has " + std::to_string(kNameRoom) + " characters or more");
    return false;
}

bool CheckedFile::CheckBreak(const P42Ent* entity, std::string_view text) {
    const std::size_t lineEnd = text.find('\n');
    if (lineEnd == std::string_view::npos) { return false; }
    AddAt(FindingKind::kBrokenList, entity, text.data() + lineEnd,
          "its lists are broken here: they must stand on the entity's first line");
    return true;
}

int ReadToCheck(StepModel& model, std::vector<Finding>* findings) {
    const int result = model.ReadIndex();
    if (result != StepModel::kRead) { return result; }
    CheckedFile file{model, *findings, {}};
    bool hasTooLongName = false;
    if (model.isAssembly == 0 && model.productCount >= 2) {
        for (const P42Ent* record = model.structureList->First(); record != nullptr;
             record = model.structureList->Next()) {
            if (record->code == code::kProductRelatedProductCategory && !file.CheckName(record)) {
                hasTooLongName = true;
            }
        }
    }
    return hasTooLongName ? result : model.DiscoverRoot();
}

void CheckStepFile(const StepModel& model, int result, FileRole role, KeywordCounts* counts,
                   std::vector<Finding>* findings, FileReferences* references) {
    CheckedFile file{model, *findings, {}};
    if (result == StepModel::kNotOpened) {
        file.Add(FindingKind::kUnread, UnreadReason(model, result));
        return;
    }
    if (result != StepModel::kRead) {
        file.Add(FindingKind::kUnread, WhyNotStep(model));
        return;
    }
    CheckLines(file);
    CheckEntities(file, counts);
    const bool isTop = role == FileRole::kTop;
    if (model.isAssembly != 0) {
        if (role == FileRole::kPart) {
            file.Add(FindingKind::kUnread, "is a P21 assembly, which can't be a part here");
        } else {
            CheckAssembly(file, isTop, references);
        }
    } else if (isTop && model.apNumber == StepModel::kFiniteElementSchema) {
        CheckFiniteElements(file);
    } else {
        CheckPart(file, isTop);
        CheckColours(file);
    }
    const std::string_view text(model.text, static_cast<std::size_t>(model.textEnd - model.text));
    FindLines(text, findings);
    FindLines(text, &references->bareFindings);
}

} // namespace tarnwick
