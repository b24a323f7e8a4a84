#include "geometry/part_reader.h"
#include "p21/keyword_codes.h"

#include <string_view>
#include <vector>

namespace tarnwick {

namespace {

// The name of the raw material of a MAKE_FROM_USAGE_OPTION: its related product definition, the formation,
// the product, whose second argument it is. False when a number on the way isn't there.
bool MaterialName(const StepModel& model, const P42Ent* option, TextWalk* walk, std::string_view* name) {
    *walk = model.WalkFrom(option);
    walk->Enter();
    walk->SkipArguments(4);
    const std::int32_t definition = ReadReference(walk);
    if (walk->overrun || !model.OpenAfterArguments(definition, 2, walk)) { return false; }
    const std::int32_t formation = ReadReference(walk);
    if (walk->overrun || !model.OpenAfterArguments(formation, 2, walk)) { return false; }
    const std::int32_t product = ReadReference(walk);
    if (walk->overrun || !model.OpenAfterArguments(product, 1, walk)) { return false; }
    walk->SkipBlanksAndLineFeeds();
    walk->Step();
    *name = ReadQuoted(walk, 100);
    return !walk->overrun;
}

// The items of the representation that a SHAPE_DEFINITION_REPRESENTATION attaches to the option itself.
// False, with no items, when it belongs to something else or a number isn't there.
bool MaterialItems(const StepModel& model, const P42Ent* shapeDefinition, const P42Ent* option,
                   TextWalk* walk, std::vector<std::int32_t>* items) {
    items->clear();
    *walk = model.WalkFrom(shapeDefinition);
    walk->Enter();
    const std::int32_t definitionShape = ReadReference(walk);
    walk->GoToArgumentComma();
    walk->Step();
    const std::int32_t representation = ReadReference(walk);
    if (walk->overrun || !model.OpenAfterArguments(definitionShape, 2, walk)) { return false; }
    const std::int32_t definition = ReadReference(walk);
    if (walk->overrun || model.Find(definition) != option) { return false; }
    if (!model.OpenAfterArguments(representation, 1, walk)) { return false; }
    walk->SkipBlanksAndLineFeeds();
    ParseIdList(walk, items);
    return !walk->overrun;
}

} // namespace

bool LinkRawMaterial(PartReader& reader, std::int32_t makeFromCount, std::int32_t shapeDefinitionCount) {
    if (makeFromCount == 0 || shapeDefinitionCount == 0) { return true; }
    const StepModel& model = reader.model;
    std::vector<const P42Ent*> options;
    std::vector<const P42Ent*> shapeDefinitions;
    ListP42Ent& list = *model.structureList;
    for (const P42Ent* record = list.First(); record != nullptr; record = list.Next()) {
        if (record->code == code::kMakeFromUsageOption) { options.push_back(record); }
        if (record->code == code::kShapeDefinitionRepresentation) { shapeDefinitions.push_back(record); }
    }
    std::vector<std::int32_t> items;
    TextWalk walk{};
    for (const P42Ent* const option : options) {
        std::string_view name;
        const bool named = MaterialName(model, option, &walk, &name);
        if (walk.overrun) { return false; }
        if (!named) { continue; }
        for (const P42Ent* const shapeDefinition : shapeDefinitions) {
            const bool attached = MaterialItems(model, shapeDefinition, option, &walk, &items);
            if (walk.overrun) { return false; }
            if (!attached) { continue; }
            const char* copy = nullptr;
            for (const std::int32_t id : items) {
                for (std::int32_t i = 0; i < reader.containerCount; ++i) {
                    FaceContainer* const container = reader.containers[i];
                    if (container->exactContainerId != id && container->containerId != id) { continue; }
                    if (copy == nullptr) { copy = reader.arena.Copy(name.data(), name.size()); }
                    container->materialName = copy;
                }
            }
        }
    }
    return true;
}

} // namespace tarnwick
