#include "check/check_file.h"
#include "check/entity_text.h"
#include "p21/keyword_codes.h"

namespace tarnwick {

namespace {

// The argument at a place, with a finding when it isn't there or its list is broken over lines.
std::string_view ListAt(CheckedFile& file, const P42Ent* entity, std::size_t place) {
    const auto arguments = ArgumentsOf(EntityText(file.model, entity));
    if (arguments.size() <= place) {
        file.Add(FindingKind::kDamaged, entity,
                 "has " + std::to_string(arguments.size()) + " arguments where more are read");
        return {};
    }
    file.CheckReferenceList(entity, arguments[place]);
    return arguments[place];
}

} // namespace

void CheckFiniteElements(CheckedFile& file) {
    const StepModel& model = file.model;
    std::int64_t quads = 0;
    for (std::int32_t i = 0; i < model.entityCount; ++i) {
        const P42Ent* const entity = model.EntityAt(i);
        if (entity->code == code::kSurface3dElement) {
            const std::size_t nodes = ReferencesIn(ListAt(file, entity, 3)).size();
            if (nodes == 4) {
                ++quads;
            } else {
                file.Add(FindingKind::kElement, entity,
                         "an element of " + std::to_string(nodes) +
                             " nodes isn't drawn: only those of 4 are");
            }
        } else if (entity->code == code::kNode) {
            ListAt(file, entity, 1);
        } else if (entity->code == code::kSurfaceSectionFieldVarying) {
            ListAt(file, entity, 0);
        } else {
            const std::string_view keyword = KeywordOf(EntityText(model, entity));
            if (keyword.ends_with("ELEMENT_REPRESENTATION")) {
                file.Add(FindingKind::kElement, entity, std::string(keyword) + " isn't drawn");
            }
        }
    }
    if (quads == 0) {
        file.Add(FindingKind::kElement, "the file has no SURFACE_3D_ELEMENT_REPRESENTATION of four nodes");
    }
}

} // namespace tarnwick
