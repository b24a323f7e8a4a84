// From each CONTEXT_DEPENDENT_SHAPE_REPRESENTATION by the chain that the assembly reader knows, and from each
// document reference to the name of a file.

#include "check/check_file.h"
#include "check/entity_text.h"
#include "p21/keyword_codes.h"
#include "prepare/structure/documents.h"

#include <unordered_map>
#include <unordered_set>

namespace tarnwick {

namespace {

class AssemblyCheck {
public:
    AssemblyCheck(CheckedFile& file, FileReferences* references)
        : file_(file), model_(file.model), references_(references) {}

    void Run(bool isTop) {
        const auto forAll = [this](std::int32_t wanted, auto check) {
            for (std::int32_t i = 0; i < model_.entityCount; ++i) {
                const P42Ent* const entity = model_.EntityAt(i);
                if (entity->code == wanted) { check(entity); }
            }
        };
        prepare::ForEachDocument(file_.exchange,
                                 [this](std::uint64_t definition, const std::vector<std::string>& names) {
                                     fileNames_.try_emplace(definition, names);
                                 });
        forAll(code::kContextDependentShapeRepresentation, [this](const P42Ent* e) { CheckUse(e); });
        forAll(code::kNextAssemblyUsage, [this](const P42Ent* e) { CheckUsed(e); });
        forAll(code::kAppliedDocumentReference, [this](const P42Ent* e) { CheckDocument(e); });
        NoteBareProducts();
        for (const P42Ent* const parent : parents_) {
            const auto name = names_.find(parent);
            if (name != names_.end()) { references_->parents.emplace_back(name->second); }
        }
        if (isTop) { CheckRoot(); }
    }

private:
    using Arguments = std::vector<std::string_view>;

    // The entity that an argument refers to; null when there is none, which is a finding of its own where it
    // is a reference.
    const P42Ent* At(const Arguments& arguments, std::size_t place) const {
        return place < arguments.size() ? model_.Find(IdIn(arguments[place])) : nullptr;
    }
    // Cut apart once, since many may refer to one entity.
    const Arguments& ArgumentsAt(const P42Ent* entity) {
        const auto [place, isNew] = arguments_.try_emplace(entity);
        if (isNew && entity != nullptr) { place->second = ArgumentsOf(EntityText(model_, entity)); }
        return place->second;
    }
    bool IsFirstVisit(const P42Ent* entity) { return entity != nullptr && visited_.insert(entity).second; }

    // The reader goes past `commas` commas to this reference.
    void CheckWay(const P42Ent* entity, const Arguments& arguments, std::size_t place, int commas) {
        if (place >= arguments.size()) { return; }
        file_.IsMissed(entity, EntityText(model_, entity), commas, '#', arguments[place],
                       "the uses that it belongs to are lost or misplaced");
    }

    void CheckUse(const P42Ent* use) {
        const Arguments& arguments = ArgumentsAt(use);
        const P42Ent* const definitionShape = At(arguments, 1);
        const Arguments& shape = ArgumentsAt(definitionShape);
        const P42Ent* const usage = At(shape, 2);
        if (usage == nullptr || usage->code != code::kNextAssemblyUsage) {
            file_.Add(FindingKind::kUse, use, "doesn't lead to a NEXT_ASSEMBLY_USAGE_OCCURRENCE");
            return;
        }
        if (IsFirstVisit(definitionShape)) { CheckWay(definitionShape, shape, 2, 0); }
        reached_.insert(usage);
        const Arguments& usageArguments = ArgumentsAt(usage);
        if (IsFirstVisit(usage)) { CheckWay(usage, usageArguments, 3, 2); }
        const P42Ent* const parent = At(usageArguments, 3);
        const P42Ent* const child = At(usageArguments, 4);
        CheckProduct(parent);
        CheckProduct(child);
        if (parent != nullptr) { parents_.insert(parent); }
        if (child != nullptr) { children_.insert(child); }
        CheckRelationship(use, At(arguments, 0));
    }

    // The reader looks for the transformation after the third "(" of the relationship.
    void CheckRelationship(const P42Ent* use, const P42Ent* relationship) {
        if (relationship == nullptr) { return; }
        const auto [place, isNew] = transforms_.try_emplace(relationship);
        if (isNew) { place->second = TransformOf(relationship); }
        const P42Ent* const transform = place->second;
        if (transform == nullptr) {
            file_.Add(FindingKind::kUse, use,
                      "its relationship " + Number(relationship->id) +
                          " doesn't lead to an ITEM_DEFINED_TRANSFORMATION where it is looked for");
            return;
        }
        if (!IsFirstVisit(transform)) { return; }
        const Arguments& arguments = ArgumentsAt(transform);
        CheckWay(transform, arguments, 2, 2);
        CheckPlacement(transform, At(arguments, 2));
        CheckPlacement(transform, At(arguments, 3));
    }

    // The ITEM_DEFINED_TRANSFORMATION of a relationship; null when there is none where it is looked for.
    const P42Ent* TransformOf(const P42Ent* relationship) const {
        std::string_view text = EntityText(model_, relationship);
        for (int i = 0; i < 3 && !text.empty(); ++i) {
            const std::size_t open = text.find('(');
            text = open != std::string_view::npos ? text.substr(open + 1) : std::string_view();
        }
        const P42Ent* const transform = model_.Find(IdIn(text));
        return transform != nullptr &&
                       KeywordOf(EntityText(model_, transform)) == "ITEM_DEFINED_TRANSFORMATION"
                   ? transform
                   : nullptr;
    }

    void CheckPlacement(const P42Ent* transform, const P42Ent* placement) {
        if (placement == nullptr) {
            file_.Add(FindingKind::kUse, transform, "has no two placements");
            return;
        }
        if (!IsFirstVisit(placement)) { return; }
        const Arguments& arguments = ArgumentsAt(placement);
        CheckWay(placement, arguments, 1, 1);
        for (std::size_t i = 1; i < 4; ++i) {
            const P42Ent* const triple = At(arguments, i);
            if (i >= arguments.size() || IdIn(arguments[i]) == 0) {
                file_.Add(FindingKind::kUse, placement,
                          "a placement must give location, axis and direction: what it lacks reads as 0, so "
                          "that uses "
                          "are misplaced");
                return;
            }
            if (IsFirstVisit(triple)) { CheckTriple(triple); }
        }
    }

    // A point or direction.
    void CheckTriple(const P42Ent* triple) {
        const Arguments& arguments = ArgumentsAt(triple);
        if (!arguments.empty() &&
            file_.HasComma(triple, arguments[0], "its numbers are others, so that uses are misplaced")) {
            return;
        }
        if (arguments.size() < 2 || ShapeOf(arguments[1]).values != 3) {
            file_.Add(FindingKind::kUse, triple, "isn't three numbers");
        } else if (!arguments[1].starts_with('(')) {
            file_.Add(FindingKind::kBlank, triple,
                      "a blank stands before its list: the first number reads as 0");
        }
    }

    void CheckProduct(const P42Ent* definition) {
        if (!IsFirstVisit(definition)) { return; }
        const Arguments& arguments = ArgumentsAt(definition);
        CheckWay(definition, arguments, 2, 2);
        const P42Ent* const formation = At(arguments, 2);
        const Arguments& formationArguments = ArgumentsAt(formation);
        if (IsFirstVisit(formation)) { CheckWay(formation, formationArguments, 2, 2); }
        const P42Ent* const product = At(formationArguments, 2);
        if (product == nullptr) {
            file_.Add(FindingKind::kUse, definition, "doesn't lead to a PRODUCT");
            return;
        }
        file_.CheckName(product);
        const Arguments& productArguments = ArgumentsAt(product);
        if (!productArguments.empty()) { names_[definition] = TextInQuotes(productArguments[0]); }
    }

    void CheckUsed(const P42Ent* usage) {
        if (reached_.contains(usage)) { return; }
        file_.Add(FindingKind::kUse, usage,
                  "isn't in the tree: no CONTEXT_DEPENDENT_SHAPE_REPRESENTATION leads to it");
    }

    void CheckDocument(const P42Ent* reference) {
        const Arguments& arguments = ArgumentsAt(reference);
        const P42Ent* const document = At(arguments, 0);
        if (document == nullptr || arguments.size() < 3) { return; }
        const std::vector<std::int32_t> items = ReferencesIn(arguments[2]);
        const P42Ent* const definition = items.empty() ? nullptr : model_.Find(items.front());
        if (definition == nullptr) { return; }
        CheckProduct(definition);
        const auto product = names_.find(definition);
        if (product == names_.end()) { return; }
        const Arguments& documentArguments = ArgumentsAt(document);
        if (documentArguments.empty()) { return; }
        const std::string_view name = TextInQuotes(documentArguments[0]);
        withFile_.insert(definition);
        const auto [hasDots, isNew] = hasDots_.try_emplace(document);
        if (isNew) { hasDots->second = name.find("...") != std::string_view::npos; }
        if (hasDots->second) {
            file_.Add(FindingKind::kNoFile, document,
                      "the file name '" + std::string(name) + "' of product '" +
                          std::string(product->second) + "' is no name, since it holds \"...\"");
            return;
        }
        if (name.empty()) {
            file_.Add(FindingKind::kNoFileName, document,
                      "the file of product '" + std::string(product->second) +
                          "' has no name: its first argument is empty");
            return;
        }
        const std::size_t place = PlaceOf(name, true);
        references_->references.push_back({place, PlaceOf(product->second, false)});
        const auto other = fileNames_.find(static_cast<std::uint64_t>(definition->id));
        if (other == fileNames_.end() || !references_->otherNames.try_emplace(place).second) { return; }
        references_->otherNames[place] = {
            other->second,
            {.kind = FindingKind::kNoFileName, .entity = document->id, .offset = document->offset}};
    }

    // The place of a name among those of the references. Names are told apart by their places in the text.
    std::size_t PlaceOf(std::string_view name, bool isFile) {
        LookUp<std::int32_t, std::size_t>& places = isFile ? filePlaces_ : productPlaces_;
        const std::int32_t offset = name.empty() ? 0 : OffsetOf(model_, name.data());
        if (const std::size_t* const known = places.Find(offset)) { return *known; }
        std::string& kept = references_->names.emplace_back(name);
        if (isFile && kept.ends_with(".cgr")) { kept.replace(kept.size() - 3, 3, "stp"); }
        places.Add(offset, references_->names.size() - 1);
        return references_->names.size() - 1;
    }

    // Products that no reference gives a file: those with a shape, and those that use no others.
    void NoteBareProducts() {
        std::unordered_set<std::uint64_t> hasShape;
        for (const prepare::FileProduct& product : file_.structure.products) {
            const P42Ent* const definition = model_.Find(static_cast<std::int32_t>(product.entity));
            if (withFile_.contains(definition)) { continue; }
            if (!product.files.empty()) {
                file_.AddAt(FindingKind::kNoFileName, product.entity,
                            "product '" + product.id + "' has the file '" + product.files.front() +
                                "' by another way than an APPLIED_DOCUMENT_REFERENCE on its "
                                "PRODUCT_DEFINITION, which isn't read");
                hasShape.insert(product.entity);
            } else if (!product.shape.empty()) {
                hasShape.insert(product.entity);
                NoteBare(product.entity, product.id, FindingKind::kOwnGeometry,
                         " has no file: its shape in the file of the assembly isn't drawn");
            }
        }
        for (std::int32_t i = 0; i < model_.entityCount; ++i) {
            const P42Ent* const definition = model_.EntityAt(i);
            const auto name = names_.find(definition);
            if (!children_.contains(definition) || parents_.contains(definition) ||
                withFile_.contains(definition) || name == names_.end() ||
                hasShape.contains(static_cast<std::uint64_t>(definition->id))) {
                continue;
            }
            NoteBare(static_cast<std::uint64_t>(definition->id), std::string(name->second),
                     FindingKind::kNoShape, " has neither a file nor a shape");
        }
    }

    void NoteBare(std::uint64_t entity, const std::string& product, FindingKind kind, const char* text) {
        const Instance* const instance = file_.exchange.Find(entity);
        references_->bareProducts.push_back(product);
        references_->bareFindings.push_back(
            {.kind = kind,
             .entity = static_cast<std::int32_t>(entity),
             .offset = instance != nullptr ? static_cast<std::int32_t>(instance->begin) : -1,
             .text = (product.empty() ? "a product without a name" : "product '" + product + "'") + text});
    }

    void CheckRoot() {
        if (parents_.empty()) { return; }
        for (const P42Ent* const parent : parents_) {
            if (!children_.contains(parent)) { return; }
        }
        file_.Add(FindingKind::kUse, "the file has no root: each product is used by another");
    }

    CheckedFile& file_;
    const StepModel& model_;
    FileReferences* references_;
    std::unordered_map<const P42Ent*, Arguments> arguments_;
    std::unordered_map<const P42Ent*, const P42Ent*> transforms_; // of relationships
    std::unordered_set<const P42Ent*> visited_;
    std::unordered_set<const P42Ent*> reached_;                 // uses
    std::unordered_set<const P42Ent*> parents_;                 // definitions
    std::unordered_set<const P42Ent*> children_;                // definitions
    std::unordered_set<const P42Ent*> withFile_;                // definitions
    std::unordered_map<const P42Ent*, std::string_view> names_; // of the products of definitions
    std::unordered_map<const P42Ent*, bool> hasDots_;           // documents, in the names of their files
    std::unordered_map<std::uint64_t, std::vector<std::string>> fileNames_; // of definitions
    LookUp<std::int32_t, std::size_t> filePlaces_;                          // by the offset of the name
    LookUp<std::int32_t, std::size_t> productPlaces_;
};

} // namespace

void CheckAssembly(CheckedFile& file, bool isTop, FileReferences* references) {
    AssemblyCheck(file, references).Run(isTop);
}

} // namespace tarnwick
