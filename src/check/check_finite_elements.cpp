#include "check/check_file.h"
#include "check/entity_text.h"
#include "p21/keyword_codes.h"

#include <map>
#include <string>

namespace tarnwick {

namespace {

class ElementCheck {
public:
    ElementCheck(CheckedFile& file, FileReferences* references)
        : file_(file), model_(file.model), references_(*references) {}

    void Run() {
        for (std::int32_t i = 0; i < model_.entityCount; ++i) {
            const P42Ent* const entity = model_.EntityAt(i);
            if (entity->code == code::kSurface3dElement) {
                CheckSurface(entity);
            } else if (entity->code == code::kNode) {
                ListAt(entity, 1);
            } else if (entity->code == code::kSurfaceSectionFieldVarying) {
                ListAt(entity, 0);
            } else if (entity->code == code::kUniformSurfaceSection) {
                NoteSection(entity);
            } else {
                const std::string_view keyword = KeywordOf(EntityText(model_, entity));
                if (keyword.ends_with("ELEMENT_REPRESENTATION")) { AddUndrawn(std::string(keyword), entity); }
            }
        }
        for (const auto& [kind, undrawn] : undrawn_) {
            file_.Add(
                FindingKind::kElement, undrawn.first,
                std::to_string(undrawn.count) + " " + kind +
                    (undrawn.count == 1 ? " isn't drawn" : " aren't drawn, of which this is the first"));
        }
        for (const auto& [kind, undrawn] : undrawn_) {
            references_.elements += undrawn.count;
            if (!kind.starts_with("SURFACE") && !kind.starts_with("VOLUME")) { continue; }
            references_.hasElementSurface = true;
        }
        references_.elements += quads_;
        references_.elementsDrawn = quads_;
        if (references_.elements == 0) {
            file_.Add(FindingKind::kNoShape, "the file has no element of a finite element mesh");
        }
        CheckColours();
    }

private:
    struct Undrawn {
        std::int64_t count = 0;
        const P42Ent* first = nullptr;
    };

    void AddUndrawn(const std::string& kind, const P42Ent* entity) {
        Undrawn& undrawn = undrawn_[kind];
        if (undrawn.count++ == 0) { undrawn.first = entity; }
    }

    // The argument at a place, with a finding when it isn't there or its list is broken over lines.
    std::string_view ListAt(const P42Ent* entity, std::size_t place) {
        const auto arguments = ArgumentsOf(EntityText(model_, entity));
        if (arguments.size() <= place) {
            file_.Add(FindingKind::kDamaged, entity,
                      "has " + std::to_string(arguments.size()) + " arguments where more are read");
            return {};
        }
        file_.CheckReferenceList(entity, arguments[place]);
        return arguments[place];
    }

    void CheckSurface(const P42Ent* element) {
        const auto arguments = ArgumentsOf(EntityText(model_, element));
        const std::size_t nodes = arguments.size() > 3 ? ReferencesIn(arguments[3]).size() : 0;
        if (nodes != 4) {
            const std::string keyword(KeywordOf(EntityText(model_, element)));
            return AddUndrawn(keyword + " of " + std::to_string(nodes) + " nodes", element);
        }
        ListAt(element, 3);
        ++quads_;
        const P42Ent* const property = arguments.size() > 6 ? model_.Find(IdIn(arguments[6])) : nullptr;
        if (property == nullptr) { return; }
        const auto ofProperty = ArgumentsOf(EntityText(model_, property));
        const P42Ent* section = nullptr;
        for (std::size_t i = 1; i < ofProperty.size() && section == nullptr; ++i) {
            section = model_.Find(IdIn(ofProperty[i]));
        }
        if (section == nullptr) { return; }
        if (section->code == code::kSurfaceSectionFieldVarying) {
            hasVarying_ = true;
        } else if (constant_ == nullptr) {
            constant_ = section;
        }
    }

    // The value that its nodes are coloured by.
    void NoteSection(const P42Ent* section) {
        if (ArgumentsOf(EntityText(model_, section)).size() < 4) {
            file_.Add(FindingKind::kDamaged, section, "has no thickness as its fourth argument");
        }
    }

    // Nodes without a value of their own are black.
    void CheckColours() {
        if (quads_ == 0 || hasVarying_ || constant_ == nullptr) { return; }
        file_.Add(FindingKind::kBlackMesh, constant_,
                  "all is drawn black: this " + std::string(KeywordOf(EntityText(model_, constant_))) +
                      " has one value for whole elements, and colours come from values of the corners");
    }

    CheckedFile& file_;
    const StepModel& model_;
    FileReferences& references_;
    std::map<std::string, Undrawn> undrawn_; // by kind
    std::int64_t quads_ = 0;
    bool hasVarying_ = false;
    const P42Ent* constant_ = nullptr; // the first section that is the same for a whole element
};

} // namespace

void CheckFiniteElements(CheckedFile& file, FileReferences* references) {
    ElementCheck(file, references).Run();
}

} // namespace tarnwick
