#include "check/check_file.h"
#include "check/entity_text.h"

namespace tarnwick {

namespace {

void CheckReferences(CheckedFile& file, const P42Ent* entity, std::string_view afterEquals) {
    ReferenceFinder references(afterEquals);
    std::int32_t id = 0;
    std::size_t digits = 0;
    std::size_t at = 0;
    while (references.Next(&id, &digits, &at)) {
        if (digits >= kDigitRoom) {
            file.AddAt(FindingKind::kTooLong, entity, afterEquals.data() + at,
                       "refers to a number of more than " + std::to_string(kDigitRoom - 1) + " digits");
        } else if (file.model.Find(id) == nullptr) {
            file.AddAt(FindingKind::kMissing, entity, afterEquals.data() + at,
                       "refers to " + std::string(afterEquals.substr(at, digits + 1)) +
                           ", which isn't there");
        }
    }
}

} // namespace

void CheckEntities(CheckedFile& file, KeywordCounts* counts) {
    const StepModel& model = file.model;
    for (std::int32_t i = 0; i < model.entityCount; ++i) {
        const P42Ent* const entity = model.EntityAt(i);
        const std::string_view text = EntityText(model, entity);
        const std::string_view keyword = KeywordOf(text);
        const std::string_view name = keyword.empty() ? "(complex instance)" : keyword;
        const auto known = counts->find(name);
        if (known != counts->end()) {
            ++known->second;
        } else {
            counts->emplace(name, 1);
        }
        const P42Ent* const found = model.Find(entity->id);
        if (found != entity) {
            file.Add(FindingKind::kDoubled, entity, "isn't found: its number stands further up already");
        }
        const std::size_t equals = text.find('=');
        if (equals != std::string_view::npos) { CheckReferences(file, entity, text.substr(equals + 1)); }
    }
}

} // namespace tarnwick
