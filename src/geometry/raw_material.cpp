#include "geometry/part_reader.h"
#include "p21/keyword_codes.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnwick {

namespace {

// The name of the raw material of a MAKE_FROM_USAGE_OPTION: by its related product definition and the
// formation, the second argument of the product. False when a number on the way isn't there.
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
    *name = ReadQuoted(walk, kMaterialRoom);
    return !walk->overrun;
}

// What a SHAPE_DEFINITION_REPRESENTATION says: this definition has that representation.
struct Attachment {
    const P42Ent* definition = nullptr; // null when a number on the way isn't there
    std::int32_t representation = 0;
};

Attachment ReadAttachment(const StepModel& model, const P42Ent* shapeDefinition, TextWalk* walk) {
    *walk = model.WalkFrom(shapeDefinition);
    walk->Enter();
    const std::int32_t definitionShape = ReadReference(walk);
    walk->GoToArgumentComma();
    walk->Step();
    const std::int32_t representation = ReadReference(walk);
    if (walk->overrun || !model.OpenAfterArguments(definitionShape, 2, walk)) { return {}; }
    const std::int32_t definition = ReadReference(walk);
    if (walk->overrun) { return {}; }
    return {model.Find(definition), representation};
}

// The names that materials give to the items of representations. Each representation is read once, however
// many materials it is attached to; the last of them names its items.
class NamedItems {
public:
    explicit NamedItems(const StepModel& model) : model_(model) {}

    // Names the items of a representation; one that isn't there has none. False when its line runs past the
    // end of the text.
    bool Name(std::int32_t representation, std::string_view name) {
        TextWalk walk;
        if (!model_.OpenAfterArguments(representation, 1, &walk)) { return true; }
        walk.GoTo('(');
        const auto place = static_cast<std::int32_t>(walk.at - model_.text);
        const std::int32_t* const known = listAt_.Find(place);
        if (known == nullptr) {
            List list{.first = ids_.size()};
            ParseIdList(&walk, &ids_);
            if (walk.overrun) {
                ids_.resize(list.first);
                return false;
            }
            list.count = ids_.size() - list.first;
            listAt_.Add(place, static_cast<std::int32_t>(lists_.size()));
            lists_.push_back(list);
        }
        List& list = lists_[known != nullptr ? static_cast<std::size_t>(*known) : lists_.size() - 1];
        list.name = name;
        list.turn = ++turns_;
        return true;
    }

    // Writes the names on the containers that are among the items, by their own number or that of their link.
    // False when memory runs out.
    bool WriteOn(FaceContainer** containers, std::int32_t count, Arena& arena) {
        LookUp<std::int32_t, List*> lastOf; // of the lists that have an item
        for (List& list : lists_) {
            for (std::size_t i = 0; i < list.count; ++i) {
                List*& last = lastOf.At(ids_[list.first + i]);
                if (last == nullptr || last->turn < list.turn) { last = &list; }
            }
        }
        for (std::int32_t i = 0; i < count; ++i) {
            List* const* const own = lastOf.Find(containers[i]->containerId);
            List* named = own != nullptr ? *own : nullptr;
            List* const* const linked = lastOf.Find(containers[i]->exactContainerId);
            if (linked != nullptr && (named == nullptr || named->turn < (*linked)->turn)) { named = *linked; }
            if (named == nullptr) { continue; }
            if (named->copy == nullptr) { named->copy = arena.Copy(named->name.data(), named->name.size()); }
            if (named->copy == nullptr) { return false; }
            containers[i]->materialName = named->copy;
        }
        return true;
    }

private:
    struct List {
        std::size_t first = 0; // of `ids_`
        std::size_t count = 0;
        std::string_view name = {}; // the one given last
        std::int64_t turn = 0;      // when it was given
        const char* copy = nullptr; // of the name, once a container has it
    };

    const StepModel& model_;
    std::vector<std::int32_t> ids_;
    std::vector<List> lists_;
    LookUp<std::int32_t, std::int32_t> listAt_; // by the place in the text where a list starts
    std::int64_t turns_ = 0;
};

// Names the items of each option's representations, in the order of the options and of the shape definitions.
// False when a line runs past the end of the text; what was named before stays.
bool NameItems(const StepModel& model, const std::vector<const P42Ent*>& options,
               const std::vector<const P42Ent*>& shapeDefinitions, NamedItems* items) {
    std::unordered_map<const P42Ent*, std::vector<std::int32_t>> attached; // representations
    bool areRead = false;
    TextWalk walk{};
    for (const P42Ent* const option : options) {
        std::string_view name;
        const bool named = MaterialName(model, option, &walk, &name);
        if (walk.overrun) { return false; }
        if (!named) { continue; }
        if (areRead) {
            for (const std::int32_t id : attached[option]) {
                if (!items->Name(id, name)) { return false; }
            }
            continue;
        }
        // The shape definitions are read for the first option with a name: only then may one be found bad.
        areRead = true;
        for (const P42Ent* const shapeDefinition : shapeDefinitions) {
            const Attachment attachment = ReadAttachment(model, shapeDefinition, &walk);
            if (walk.overrun) { return false; }
            if (attachment.definition == nullptr) { continue; }
            attached[attachment.definition].push_back(attachment.representation);
            if (attachment.definition == option && !items->Name(attachment.representation, name)) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

bool LinkRawMaterial(PartReader& reader) {
    const StepModel& model = reader.model;
    std::vector<const P42Ent*> options;
    std::vector<const P42Ent*> shapeDefinitions;
    ListP42Ent& list = *model.structureList;
    for (const P42Ent* record = list.First(); record != nullptr; record = list.Next()) {
        if (record->code == code::kMakeFromUsageOption) { options.push_back(record); }
        if (record->code == code::kShapeDefinitionRepresentation) { shapeDefinitions.push_back(record); }
    }
    if (options.empty() || shapeDefinitions.empty()) { return true; }
    NamedItems items(model);
    const bool read = NameItems(model, options, shapeDefinitions, &items);
    reader.noMemory = !items.WriteOn(reader.containers, reader.containerCount, reader.arena);
    return read && !reader.noMemory;
}

} // namespace tarnwick
