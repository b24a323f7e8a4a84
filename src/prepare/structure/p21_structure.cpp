#include "prepare/structure/p21_structure.h"

#include "exchange/arguments.h"
#include "exchange/string_text.h"
#include "prepare/elements/finite_elements.h"
#include "prepare/placement/placements.h"
#include "prepare/placement/units.h"
#include "prepare/structure/annotations.h"
#include "prepare/structure/documents.h"
#include "prepare/structure/shape_kinds.h"
#include "text/look_up.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace tarnwick::prepare {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// One representation is placed in another.
struct PlacedRepresentation {
    std::uint64_t inner = 0;
    std::uint64_t outer = 0;
    std::uint64_t transformation = 0;
};

class StructureReader {
public:
    explicit StructureReader(const ExchangeFile& file) : file_(file), units_(file), annotations_(file) {}

    FileStructure Run() {
        ReadProducts();
        ReadShapeDefinitions();
        ReadRelationships();
        ReadUses();
        ReadUseStyles();
        GatherRepresentations();
        // Reading items makes products of what is mapped, whose items are read in their turn.
        for (std::size_t i = 0; i < out_.products.size(); ++i) { ReadItems(i); }
        for (FileProduct& product : out_.products) { PreferTessellation(&product); }
        TakeUnplacedUses();
        TakeOrphans();
        TakeElements();
        TellUndrawn();
        ForEachDocument(file_, [this](std::uint64_t definition, const std::vector<std::string>& names) {
            const std::size_t product = ProductOf(definition);
            if (product != kNone && out_.products[product].files.empty()) {
                out_.products[product].files = names;
            }
        });
        FindRoots();
        return std::move(out_);
    }

private:
    struct Use {
        std::uint64_t entity = 0;
        std::size_t parent = kNone;
        std::size_t child = kNone;
        std::optional<Transform> at;
        bool isTaken = false; // by the parent
        std::uint64_t style = 0;
        std::uint64_t context = 0;
    };
    struct UsesBetween { // one parent and one child
        std::vector<std::size_t> uses;
        std::size_t next = 0; // the first that may still lack its place
    };
    struct OpenItem {
        std::uint64_t item = 0;
        std::uint64_t representation = 0;
        std::uint64_t context = 0;
        Transform at;
        std::size_t path = 0;
    };

    const Instance& At(std::uint32_t place) const { return file_.Instances()[place]; }
    Arguments ArgumentsOf(const Instance& instance) const {
        return Arguments(RecordOf(file_.TextOf(instance)).arguments);
    }
    std::string_view KeywordOf(std::uint64_t number) const {
        const Instance* const instance = file_.Find(number);
        return instance != nullptr ? file_.KeywordOf(*instance) : std::string_view{};
    }
    template <class Work>
    void ForEach(std::string_view keyword, Work work) {
        for (const std::uint32_t place : file_.OfKeyword(keyword)) {
            work(At(place), ArgumentsOf(At(place)));
        }
    }

    // ---- products

    void ReadProducts() {
        const auto add = [this](const Instance& instance, const Arguments& arguments) {
            FileProduct product;
            product.entity = instance.number;
            NameProduct(ReferenceOf(arguments[2]), &product);
            places_.Add(instance.number, out_.products.size());
            out_.products.push_back(std::move(product));
        };
        // In the order of the file, which tells the root where several could be.
        std::vector<std::uint32_t> definitions;
        for (const char* const keyword :
             {"PRODUCT_DEFINITION", "PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS"}) {
            const auto of = file_.OfKeyword(keyword);
            definitions.insert(definitions.end(), of.begin(), of.end());
        }
        std::sort(definitions.begin(), definitions.end());
        for (const std::uint32_t place : definitions) { add(At(place), ArgumentsOf(At(place))); }
        for (const std::uint32_t place : file_.ComplexInstances()) {
            const Record record = FindRecord(file_.TextOf(At(place)), "PRODUCT_DEFINITION");
            if (record.IsFound()) { add(At(place), Arguments(record.arguments)); }
        }
    }

    void NameProduct(std::uint64_t formation, FileProduct* product) const {
        const Instance* const instance = file_.Find(formation);
        if (instance == nullptr) { return; }
        // A formation's third argument is the product; some files lead to it directly.
        std::uint64_t number = formation;
        if (file_.KeywordOf(*instance).starts_with("PRODUCT_DEFINITION_FORMATION")) {
            number = ReferenceOf(ArgumentsOf(*instance)[2]);
        }
        const Instance* const entity = file_.Find(number);
        if (entity == nullptr) { return; }
        const Record record = FindRecord(file_.TextOf(*entity), "PRODUCT");
        const Arguments arguments(record.arguments);
        product->id = StringOf(Clipped(arguments[0]));
        product->name = StringOf(Clipped(arguments[1]));
    }

    // Many definitions may share one product, and no program shows more of a name.
    static std::string_view Clipped(std::string_view name) { return name.substr(0, 1000); }

    std::size_t ProductOf(std::uint64_t definition) {
        const std::size_t* const place = places_.Find(definition);
        return place != nullptr ? *place : kNone;
    }

    // ---- which representations a product has

    void ReadShapeDefinitions() {
        ForEach("PRODUCT_DEFINITION_SHAPE", [this](const Instance& instance, const Arguments& arguments) {
            definitionOf_.Add(instance.number, ReferenceOf(arguments[2]));
        });
        ForEach("SHAPE_DEFINITION_REPRESENTATION", [this](const Instance&, const Arguments& arguments) {
            const std::uint64_t* const definition = definitionOf_.Find(ReferenceOf(arguments[0]));
            const std::size_t product = definition != nullptr ? ProductOf(*definition) : kNone;
            if (product != kNone) { firstOf_.emplace_back(product, ReferenceOf(arguments[1])); }
        });
    }

    void ReadRelationships() {
        const auto relate = [this](const Arguments& arguments) {
            const std::uint64_t a = ReferenceOf(arguments[2]);
            const std::uint64_t b = ReferenceOf(arguments[3]);
            related_.At(a).push_back(b);
            related_.At(b).push_back(a);
        };
        for (const char* const keyword :
             {"SHAPE_REPRESENTATION_RELATIONSHIP", "CONSTRUCTIVE_GEOMETRY_REPRESENTATION_RELATIONSHIP"}) {
            ForEach(keyword, [&](const Instance&, const Arguments& arguments) { relate(arguments); });
        }
        for (const std::uint32_t place : file_.ComplexInstances()) {
            const std::string_view text = file_.TextOf(At(place));
            const Record relationship = FindRecord(text, "REPRESENTATION_RELATIONSHIP");
            if (!relationship.IsFound()) { continue; }
            const Arguments arguments(relationship.arguments);
            const Record transformation = FindRecord(text, "REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION");
            if (transformation.IsFound()) {
                placed_.Add(At(place).number, {ReferenceOf(arguments[2]), ReferenceOf(arguments[3]),
                                               ReferenceOf(Arguments(transformation.arguments)[0])});
                placedOrder_.push_back(At(place).number);
            } else if (FindRecord(text, "SHAPE_REPRESENTATION_RELATIONSHIP").IsFound()) {
                relate(arguments);
            }
        }
    }

    void GatherRepresentations() {
        for (const auto& [product, representation] : firstOf_) {
            if (owner_.AddNew(representation, product)) {
                representationsOf_.At(product).push_back(representation);
            }
        }
        // Breadth first from each product's own, so that none takes what another is given.
        std::vector<std::pair<std::uint64_t, std::size_t>> open;
        for (const auto& [product, representation] : firstOf_) { open.emplace_back(representation, product); }
        for (std::size_t i = 0; i < open.size(); ++i) {
            const auto [representation, product] = open[i];
            const std::vector<std::uint64_t>* const neighbours = related_.Find(representation);
            if (neighbours == nullptr || *owner_.Find(representation) != product) { continue; }
            for (const std::uint64_t next : *neighbours) {
                if (next == 0 || !owner_.AddNew(next, product)) { continue; }
                representationsOf_.At(product).push_back(next);
                open.emplace_back(next, product);
            }
        }
        ReadUsePlacements();
        // Representations that are placed in another although no occurrence says so.
        for (const std::uint64_t number : placedOrder_) {
            const PlacedRepresentation& placed = *placed_.Find(number);
            if (usedRelationships_.Contains(number)) { continue; }
            inside_.At(placed.outer).push_back(number);
        }
    }

    // ---- uses

    void ReadUses() {
        const auto add = [this](const Instance& instance, const Arguments& arguments) {
            const std::size_t parent = ProductOf(ReferenceOf(arguments[3]));
            const std::size_t child = ProductOf(ReferenceOf(arguments[4]));
            if (parent == kNone || child == kNone || parent == child) {
                AddLoss(parent, instance.number, "its parent or its child isn't a product of this file");
                return;
            }
            useOf_.Add(instance.number, uses_.size());
            uses_.push_back({instance.number, parent, child, {}, false, 0, 0});
        };
        ForEach("NEXT_ASSEMBLY_USAGE_OCCURRENCE", add);
        for (const std::uint32_t place : file_.ComplexInstances()) {
            const std::string_view text = file_.TextOf(At(place));
            if (!FindRecord(text, "NEXT_ASSEMBLY_USAGE_OCCURRENCE").IsFound()) { continue; }
            add(At(place), Arguments(FindRecord(text, "PRODUCT_DEFINITION_RELATIONSHIP").arguments));
        }
    }

    // Which uses look different from their product: mapped items with a style, and contexts of styles.
    void ReadUseStyles() {
        ForEach("PRESENTATION_STYLE_BY_CONTEXT", [this](const Instance&, const Arguments& arguments) {
            contexts_.AddNew(ReferenceOf(arguments[1]));
        });
        if (file_.OfKeyword("MAPPED_ITEM").empty()) { return; }
        for (const char* const keyword : {"STYLED_ITEM", "OVER_RIDING_STYLED_ITEM"}) {
            ForEach(keyword, [this](const Instance&, const Arguments& arguments) {
                const std::uint64_t item = ReferenceOf(arguments[2]);
                if (KeywordOf(item) == "MAPPED_ITEM") { styledMaps_.AddNew(item); }
            });
        }
    }

    void ReadUsePlacements() {
        ForEach("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION",
                [this](const Instance& instance, const Arguments& arguments) {
                    const std::uint64_t relationship = ReferenceOf(arguments[0]);
                    const PlacedRepresentation* const placed = placed_.Find(relationship);
                    const std::uint64_t* const definition = definitionOf_.Find(ReferenceOf(arguments[1]));
                    const std::size_t* const use = definition != nullptr ? useOf_.Find(*definition) : nullptr;
                    if (placed == nullptr || use == nullptr) { return; }
                    usedRelationships_.AddNew(relationship);
                    if (contexts_.Contains(instance.number)) { uses_[*use].context = instance.number; }
                    if (!uses_[*use].at) { uses_[*use].at = PlacementOf(*placed, uses_[*use]); }
                });
    }

    // Most relationships lead from the child to the parent; some from the parent to the child.
    std::optional<Transform> PlacementOf(const PlacedRepresentation& placed, const Use& use) {
        const double first = UnitOf(placed.inner);
        const double second = UnitOf(placed.outer);
        const std::optional<Transform> at = ReadTransformation(file_, placed.transformation, first, second);
        const std::size_t* const innerOwner = owner_.Find(placed.inner);
        const std::size_t* const outerOwner = owner_.Find(placed.outer);
        const bool isReversed = innerOwner != nullptr && outerOwner != nullptr && *innerOwner == use.parent &&
                                *outerOwner == use.child;
        return at && isReversed ? Inverse(*at) : at;
    }

    void TakeUse(Use* use) {
        use->isTaken = true;
        out_.products[use->parent].uses.push_back(
            {use->child, use->at.value_or(Transform{}), use->style, use->context});
    }

    // ---- items

    void ReadItems(std::size_t product) {
        while (usesTaken_ < uses_.size()) {
            Use& use = uses_[usesTaken_++];
            usesBetween_.At(PairKey(use.parent, use.child)).uses.push_back(usesTaken_ - 1);
            if (use.at) { TakeUse(&use); }
        }
        const std::vector<std::uint64_t>* const representations = representationsOf_.Find(product);
        if (representations == nullptr) { return; }
        std::vector<OpenItem> open;
        // A copy: the look-up grows while items are read.
        for (const std::uint64_t representation : std::vector(*representations)) {
            OpenRepresentation(representation, {}, 0, 0, &open);
        }
        std::reverse(open.begin(), open.end());
        LookUp<std::uint64_t, char> taken;
        while (!open.empty()) {
            const OpenItem item = std::move(open.back());
            open.pop_back();
            ReadItem(product, item, &taken, &open);
        }
    }

    // A representation's items, and what is placed in it.
    void OpenRepresentation(std::uint64_t representation, const Transform& at, std::size_t above,
                            std::uint64_t through, std::vector<OpenItem>* open) {
        const Instance* const instance = file_.Find(representation);
        if (instance == nullptr) { return; }
        const Arguments arguments(RepresentationArguments(*instance));
        std::vector<std::uint64_t> items;
        AppendReferences(arguments[1], &items);
        std::vector<std::uint64_t> way = out_.paths[above];
        if (through != 0) { way.push_back(through); }
        way.push_back(representation);
        const std::size_t path = out_.paths.size();
        out_.paths.push_back(std::move(way));
        for (const std::uint64_t item : items) {
            open->push_back({item, representation, ReferenceOf(arguments[2]), at, path});
        }
        if (const std::vector<std::uint64_t>* const inside = inside_.Find(representation)) {
            for (const std::uint64_t number : *inside) {
                open->push_back({number, representation, 0, at, path});
            }
        }
    }

    // Name, items, context.
    std::string_view RepresentationArguments(const Instance& instance) const {
        const std::string_view text = file_.TextOf(instance);
        return file_.KeywordOf(instance).empty() ? FindRecord(text, "REPRESENTATION").arguments
                                                 : RecordOf(text).arguments;
    }
    std::uint64_t ContextOf(std::uint64_t representation) const {
        const Instance* const instance = file_.Find(representation);
        return instance != nullptr ? ReferenceOf(Arguments(RepresentationArguments(*instance))[2]) : 0;
    }
    double UnitOf(std::uint64_t representation) { return units_.Of(ContextOf(representation)); }

    void ReadItem(std::size_t product, const OpenItem& item, LookUp<std::uint64_t, char>* taken,
                  std::vector<OpenItem>* open) {
        const Instance* const instance = file_.Find(item.item);
        if (instance == nullptr) {
            AddLoss(product, item.item, "an item of its shape isn't in the file");
            return;
        }
        if (const PlacedRepresentation* const placed = placed_.Find(item.item)) {
            const std::optional<Transform> at = ReadTransformation(
                file_, placed->transformation, UnitOf(placed->inner), UnitOf(placed->outer));
            if (!at) { return AddLoss(product, item.item, "its placement can't be read"); }
            return ReadPlaced(product, item, placed->inner, *at, open);
        }
        std::string_view keyword = file_.KeywordOf(*instance);
        if (keyword.empty()) { keyword = ComplexKind(file_.TextOf(*instance)); }
        if (keyword == "MAPPED_ITEM") { return ReadMapped(product, item, *instance, open); }
        if (IsTessellated(keyword)) {
            if (!annotations_.Contains(item.item)) {
                AddShape(product, ShapeKind::kTessellated, item, taken);
            }
        } else if (IsExactBody(keyword)) {
            if (keyword != "GEOMETRIC_SET" || HasSurface(*instance)) {
                AddShape(product, ShapeKind::kExact, item, taken);
            } else {
                ++undrawn_[std::string(keyword)];
            }
        } else if (IsConstructiveSolid(keyword)) {
            AddLoss(product, item.item,
                    "a " + std::string(keyword) + " is described by how it is made, which isn't known here");
        } else if (!keyword.empty() && !IsAid(keyword)) {
            ++undrawn_[std::string(keyword)];
        }
    }

    // Placements, points and annotations are part of many shapes, and nobody misses them.
    static bool IsAid(std::string_view keyword) {
        const auto has = [keyword](std::string_view word) {
            return keyword.find(word) != std::string_view::npos;
        };
        return has("PLACEMENT") || has("POINT") || has("DIRECTION") || has("VECTOR") || has("ANNOTATION") ||
               has("TEXT") || has("NODE") || keyword == "PLANE" || keyword == "STYLED_ITEM";
    }

    void TellUndrawn() {
        for (const auto& [keyword, count] : undrawn_) {
            AddLoss(kNone, 0, "without faces, so not drawn: " + std::to_string(count) + " " + keyword, false);
        }
    }

    // Sets of curves and points are no shape.
    bool HasSurface(const Instance& set) const {
        std::vector<std::uint64_t> elements;
        AppendReferences(file_.TextOf(set), &elements);
        return std::any_of(elements.begin(), elements.end(), [this](std::uint64_t number) {
            return file_.Find(number) != nullptr && IsExactBody(KindOf(number));
        });
    }

    // What a complex instance is, by the records that have a meaning here.
    static std::string_view ComplexKind(std::string_view text) {
        for (const Record& record : RecordsOf(text)) {
            if (record.keyword == "MAPPED_ITEM" || IsTessellated(record.keyword) ||
                IsExactBody(record.keyword)) {
                return record.keyword;
            }
        }
        return {};
    }

    void AddShape(std::size_t product, ShapeKind kind, const OpenItem& item,
                  LookUp<std::uint64_t, char>* taken) {
        // Several representations of a product may list the same body.
        if (IsIdentity(item.at) && !taken->AddNew(item.item)) { return; }
        used_.AddNew(item.item);
        const bool isSurface =
            kind == ShapeKind::kExact && KindOf(item.item).find("BREP") == std::string_view::npos;
        out_.products[product].shape.push_back({kind, isSurface, item.item, item.representation, item.context,
                                                units_.Of(item.context), item.at, item.path});
    }

    // MAPPED_ITEM(name, REPRESENTATION_MAP(origin, representation), target).
    void ReadMapped(std::size_t product, const OpenItem& item, const Instance& instance,
                    std::vector<OpenItem>* open) {
        const std::string_view text = file_.TextOf(instance);
        const Record record = FindRecord(text, "MAPPED_ITEM");
        const Arguments arguments(record.arguments);
        const std::size_t last = arguments.Count();
        const Instance* const map = last < 2 ? nullptr : file_.Find(ReferenceOf(arguments[last - 2]));
        if (map == nullptr) { return AddLoss(product, item.item, "what it maps isn't in the file"); }
        const Arguments mapped = ArgumentsOf(*map);
        const std::uint64_t representation = ReferenceOf(mapped[1]);
        const auto origin = ReadPlacement(file_, ReferenceOf(mapped[0]), UnitOf(representation));
        const auto target = ReadPlacement(file_, ReferenceOf(arguments[last - 1]), units_.Of(item.context));
        const auto back = Inverse(origin.value_or(Transform{}));
        if (!target || !back) {
            // Drawings map what lies in a plane.
            const bool isFlat = KeywordOf(ReferenceOf(arguments[last - 1])) == "AXIS2_PLACEMENT_2D";
            if (!isFlat) { AddLoss(product, item.item, "its placement can't be read"); }
            return;
        }
        ReadPlaced(product, item, representation, *target * *back, open);
    }

    void ReadPlaced(std::size_t product, const OpenItem& item, std::uint64_t representation,
                    const Transform& at, std::vector<OpenItem>* open) {
        const std::vector<std::uint64_t>& way = out_.paths[item.path];
        if (std::find(way.begin(), way.end(), representation) != way.end()) {
            return AddLoss(product, item.item, "it maps itself");
        }
        if (file_.Find(representation) == nullptr) {
            return AddLoss(product, item.item, "what it maps isn't in the file");
        }
        const std::size_t* const owner = owner_.Find(representation);
        const std::uint64_t style = StyledMapOf(item);
        if (owner != nullptr && *owner != product) {
            // This mapped item gives the place that an occurrence lacks.
            if (UsesBetween* const between = usesBetween_.Find(PairKey(product, *owner))) {
                while (between->next < between->uses.size()) {
                    Use& use = uses_[between->uses[between->next++]];
                    if (use.isTaken) { continue; }
                    use.at = item.at * at;
                    use.style = style;
                    return TakeUse(&use);
                }
                return; // each has its place already
            }
            out_.products[product].uses.push_back({*owner, item.at * at, style, 0});
            return;
        }
        if (owner == nullptr && IsMappedOften(representation)) {
            const std::size_t child = AddMappedProduct(representation);
            out_.products[product].uses.push_back({child, item.at * at, style, 0});
            return;
        }
        if (way.size() > kMostLevels) { return AddLoss(product, item.item, "it is mapped too deeply"); }
        OpenRepresentation(representation, item.at * at, item.path, item.item, open);
    }

    // The innermost mapped item with a style on the way to an item, itself included; 0 for none.
    std::uint64_t StyledMapOf(const OpenItem& item) {
        if (styledMaps_.IsEmpty()) { return 0; }
        if (styledMaps_.Contains(item.item)) { return item.item; }
        const std::vector<std::uint64_t>& way = out_.paths[item.path];
        const auto found = std::find_if(way.rbegin(), way.rend(), [this](std::uint64_t through) {
            return styledMaps_.Contains(through);
        });
        return found != way.rend() ? *found : 0;
    }

    // Whether what is mapped becomes a product: a copy of its shape for each place could be a million.
    bool IsMappedOften(std::uint64_t representation) {
        if (!mapsCounted_) {
            mapsCounted_ = true;
            LookUp<std::uint64_t, std::uint64_t> mappedBy;
            ForEach("REPRESENTATION_MAP", [&](const Instance& instance, const Arguments& arguments) {
                mappedBy.Add(instance.number, ReferenceOf(arguments[1]));
            });
            ForEach("MAPPED_ITEM", [&](const Instance&, const Arguments& arguments) {
                if (const std::uint64_t* const mapped = mappedBy.Find(ReferenceOf(arguments[1]))) {
                    ++maps_.At(*mapped);
                }
            });
            for (const std::uint64_t number : placedOrder_) {
                if (!usedRelationships_.Contains(number)) { ++maps_.At(placed_.Find(number)->inner); }
            }
        }
        const std::size_t* const count = maps_.Find(representation);
        return count != nullptr && *count > 1;
    }

    std::size_t AddMappedProduct(std::uint64_t representation) {
        if (const std::size_t* const known = owner_.Find(representation)) { return *known; }
        FileProduct product;
        product.entity = representation;
        product.id = StringOf(Arguments(RepresentationArguments(*file_.Find(representation)))[0]);
        const std::size_t place = out_.products.size();
        owner_.Add(representation, place);
        representationsOf_.At(place).push_back(representation);
        out_.products.push_back(std::move(product));
        return place;
    }

    // Where a product has both, the triangles of the file are its shape; what of the exact shape they don't
    // tell is kept, as far as the links say so.
    void PreferTessellation(FileProduct* product) {
        std::vector<ShapeItem>& shape = product->shape;
        const auto isTessellated = [](const ShapeItem& item) { return item.kind == ShapeKind::kTessellated; };
        if (std::none_of(shape.begin(), shape.end(), isTessellated)) { return; }
        LookUp<std::uint64_t, char> linked;
        bool isAllLinked = true;
        for (const ShapeItem& item : shape) {
            if (!isTessellated(item)) { continue; }
            const std::uint64_t link = LinkOf(item.item);
            isAllLinked = isAllLinked && file_.Find(link) != nullptr;
            linked.AddNew(link);
        }
        const auto isTold = [&](const ShapeItem& item) {
            if (item.kind != ShapeKind::kExact) { return false; }
            if (!isAllLinked || linked.Contains(item.item)) { return true; }
            std::vector<std::uint64_t> shells;
            AppendReferences(file_.TextOf(*file_.Find(item.item)), &shells);
            return std::any_of(shells.begin(), shells.end(),
                               [&](std::uint64_t shell) { return linked.Contains(shell); });
        };
        shape.erase(std::remove_if(shape.begin(), shape.end(), isTold), shape.end());
    }

    // The exact body or shell that a tessellated one stands for; 0 for none.
    std::uint64_t LinkOf(std::uint64_t item) const {
        const std::string_view text = file_.TextOf(*file_.Find(item));
        for (const char* const keyword : {"TESSELLATED_SOLID", "TESSELLATED_SHELL"}) {
            const Record record = FindRecord(text, keyword);
            if (!record.IsFound()) { continue; }
            const Arguments arguments(record.arguments);
            return ReferenceOf(arguments[arguments.Count() - 1]);
        }
        return 0;
    }

    // ---- what is left

    void TakeUnplacedUses() {
        for (Use& use : uses_) {
            if (use.isTaken) { continue; }
            TakeUse(&use);
            AddLoss(use.parent, use.entity, "the use has no placement, so that it stands at the origin",
                    false);
        }
    }

    // Bodies that no product leads to. Such tessellation counts only where there is nothing else: it is often
    // a saved view.
    void TakeOrphans() {
        std::vector<OpenItem> orphans;
        for (const char* const keyword : {"MANIFOLD_SOLID_BREP", "BREP_WITH_VOIDS", "FACETED_BREP",
                                          "SHELL_BASED_SURFACE_MODEL", "FACE_BASED_SURFACE_MODEL"}) {
            for (const std::uint32_t place : file_.OfKeyword(keyword)) {
                if (!used_.Contains(At(place).number)) { orphans.push_back({At(place).number, 0, 0, {}, 0}); }
            }
        }
        if (orphans.empty() && !HasShape()) { AddTessellatedOrphans(&orphans); }
        if (orphans.empty()) { return; }
        FindContexts(&orphans);
        const std::size_t product = ProductForOrphans();
        LookUp<std::uint64_t, char> taken;
        for (const OpenItem& orphan : orphans) {
            AddShape(product, IsExactBody(KindOf(orphan.item)) ? ShapeKind::kExact : ShapeKind::kTessellated,
                     orphan, &taken);
        }
    }

    std::string_view KindOf(std::uint64_t number) const {
        const std::string_view keyword = KeywordOf(number);
        return !keyword.empty() ? keyword : ComplexKind(file_.TextOf(*file_.Find(number)));
    }

    void AddTessellatedOrphans(std::vector<OpenItem>* orphans) {
        ForEachRepresentation([&](std::uint64_t, const Arguments& arguments) {
            std::vector<std::uint64_t> items;
            AppendReferences(arguments[1], &items);
            for (const std::uint64_t item : items) {
                if (file_.Find(item) != nullptr && IsTessellated(KindOf(item)) &&
                    !annotations_.Contains(item)) {
                    orphans->push_back({item, 0, 0, {}, 0});
                }
            }
        });
    }

    template <class Work>
    void ForEachRepresentation(Work work) {
        const auto keywords = file_.Keywords();
        for (std::uint32_t keyword = 1; keyword < keywords.size(); ++keyword) {
            if (keywords[keyword].find("SHAPE_REPRESENTATION") == std::string::npos ||
                keywords[keyword].find("RELATIONSHIP") != std::string::npos) {
                continue;
            }
            for (const std::uint32_t place : file_.OfPlace(keyword)) {
                work(At(place).number, ArgumentsOf(At(place)));
            }
        }
    }

    void FindContexts(std::vector<OpenItem>* orphans) {
        LookUp<std::uint64_t, std::pair<std::uint64_t, std::uint64_t>> listed;
        ForEachRepresentation([&](std::uint64_t representation, const Arguments& arguments) {
            std::vector<std::uint64_t> items;
            AppendReferences(arguments[1], &items);
            for (const std::uint64_t item : items) {
                listed.Add(item, {representation, ReferenceOf(arguments[2])});
            }
        });
        for (OpenItem& orphan : *orphans) {
            if (const auto* const found = listed.Find(orphan.item)) {
                orphan.representation = found->first;
                orphan.context = found->second;
            }
        }
    }

    // The one product that has neither shape nor parts, or a new one.
    std::size_t ProductForOrphans() {
        std::size_t bare = kNone;
        for (std::size_t i = 0; i < out_.products.size(); ++i) {
            if (!out_.products[i].shape.empty() || !out_.products[i].uses.empty()) { continue; }
            if (bare != kNone) {
                bare = kNone;
                break;
            }
            bare = i;
        }
        if (bare != kNone) { return bare; }
        FileProduct product;
        product.id = out_.products.empty() ? "" : "without product";
        out_.products.push_back(std::move(product));
        return out_.products.size() - 1;
    }

    void TakeElements() {
        if (HasShape() || !HasElements(file_)) { return; }
        if (out_.products.empty()) { out_.products.emplace_back(); }
        out_.products[0].shape.push_back({ShapeKind::kElements, false, 0, 0, 0, 1, {}, 0});
    }
    bool HasShape() const {
        return std::any_of(out_.products.begin(), out_.products.end(),
                           [](const FileProduct& product) { return !product.shape.empty(); });
    }

    // Also takes the first product of each circle that nothing outside uses.
    void FindRoots() {
        std::vector<char> isUsed(out_.products.size());
        for (const FileProduct& product : out_.products) {
            for (const FileUse& use : product.uses) { isUsed[use.child] = 1; }
        }
        std::vector<char> isReached(out_.products.size());
        for (const char wanted : {char{0}, char{1}}) {
            for (std::size_t i = 0; i < isUsed.size(); ++i) {
                if (isUsed[i] != wanted || isReached[i]) { continue; }
                out_.roots.push_back(i);
                Reach(i, &isReached);
            }
        }
        if (!out_.roots.empty()) { out_.unit = UnitOfProduct(); }
    }
    void Reach(std::size_t product, std::vector<char>* isReached) const {
        std::vector<std::size_t> open{product};
        (*isReached)[product] = 1;
        while (!open.empty()) {
            const std::size_t next = open.back();
            open.pop_back();
            for (const FileUse& use : out_.products[next].uses) {
                if ((*isReached)[use.child]) { continue; }
                (*isReached)[use.child] = 1;
                open.push_back(use.child);
            }
        }
    }

    // Of the first representation that any product has, roots first.
    double UnitOfProduct() {
        for (const std::size_t root : out_.roots) {
            const std::vector<std::uint64_t>* const representations = representationsOf_.Find(root);
            if (representations != nullptr && !representations->empty()) {
                return UnitOf(representations->front());
            }
        }
        for (const FileProduct& product : out_.products) {
            if (!product.shape.empty()) { return product.shape.front().unit; }
        }
        return 1;
    }

    void AddLoss(std::size_t product, std::uint64_t entity, std::string why, bool isShape = true) {
        out_.losses.push_back(
            {product != kNone ? out_.products[product].id : std::string{}, entity, std::move(why), isShape});
    }

    static std::uint64_t PairKey(std::size_t parent, std::size_t child) {
        return static_cast<std::uint64_t>(parent) << 32 | static_cast<std::uint64_t>(child);
    }

    static constexpr std::size_t kMostLevels = 64;

    const ExchangeFile& file_;
    LengthUnits units_;
    Annotations annotations_;
    FileStructure out_;
    LookUp<std::uint64_t, std::size_t> places_;                  // of products, by definition
    LookUp<std::uint64_t, std::uint64_t> definitionOf_;          // of PRODUCT_DEFINITION_SHAPEs
    std::vector<std::pair<std::size_t, std::uint64_t>> firstOf_; // products and their own representations
    LookUp<std::uint64_t, std::vector<std::uint64_t>> related_;  // representations, by representation
    LookUp<std::uint64_t, PlacedRepresentation> placed_;         // by relationship
    std::vector<std::uint64_t> placedOrder_;                     // the relationships in the order of the file
    LookUp<std::uint64_t, char> usedRelationships_;
    LookUp<std::uint64_t, std::vector<std::uint64_t>> inside_; // relationships, by the outer representation
    LookUp<std::uint64_t, std::size_t> owner_;                 // products, by representation
    LookUp<std::size_t, std::vector<std::uint64_t>> representationsOf_;
    std::vector<Use> uses_;
    std::size_t usesTaken_ = 0;
    LookUp<std::uint64_t, std::size_t> useOf_; // by occurrence
    LookUp<std::uint64_t, UsesBetween> usesBetween_;
    LookUp<std::uint64_t, char> contexts_;       // of styles
    LookUp<std::uint64_t, char> styledMaps_;     // mapped items
    std::map<std::string, std::size_t> undrawn_; // how many items of a keyword have no shape
    LookUp<std::uint64_t, char> used_;           // items that some product has
    bool mapsCounted_ = false;
    LookUp<std::uint64_t, std::size_t> maps_; // how often a representation is mapped
};

} // namespace

FileStructure ReadP21Structure(const ExchangeFile& file) {
    return StructureReader(file).Run();
}

} // namespace tarnwick::prepare
