#include "prepare/xml/xml_structure.h"

#include "exchange/string_text.h"
#include "prepare/xml/xml_placement.h"
#include "prepare/xml/xml_records.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarnwick::prepare {

namespace {

// The most uses that a document gets from quantities: a short text may ask for any number of pieces.
constexpr std::size_t kMostExtraPieces = 10'000;

std::size_t PlaceIn(const std::unordered_map<std::string_view, std::size_t>& table, std::string_view uid) {
    const auto found = table.find(uid);
    return found == table.end() ? kNone : found->second;
}

class StructureMaker {
public:
    explicit StructureMaker(XmlRecords records) : r_(std::move(records)) {}

    FileStructure Make() {
        fileOf_ = FilesOfHolders(r_);
        FindUnits();
        ResolveUses();
        MakeProducts();
        PlaceUses();
        CutCircles();
        FindRoots();
        return std::move(structure_);
    }

private:
    struct ResolvedUse {
        pugi::xml_node node;
        pugi::xml_node occurrence;  // may be null
        std::size_t parent = kNone; // a view
        std::size_t child = kNone;  // likewise
    };

    void Lose(std::size_t part, std::string why, bool isShape) {
        std::string product = part == kNone ? std::string{} : NameOf(r_.parts[part]);
        structure_.losses.push_back({std::move(product), 0, std::move(why), isShape});
    }
    static std::string NameOf(const XmlPart& part) {
        const std::string_view name = TextOf(ChildOf(part.node, "Name"));
        // It is copied for each loss, of which a part may have many.
        return AsUtf8(ClippedUtf8(name.empty() ? IdOf(part.node) : name, 300));
    }

    // A unit that a context names comes before one that is merely in the document. A unit that a property or
    // an amount refers to says nothing about placements: lengths of cable are in metres.
    void FindUnits() {
        unitOfContext_.assign(r_.contexts.size(), 0);
        for (std::size_t i = 0; i < r_.contexts.size(); ++i) {
            for (const pugi::xml_node reference : r_.contexts[i].units) {
                const std::optional<double> length = LengthOfUnit(Referred(reference, r_.uids));
                if (length && unitOfContext_[i] == 0) { unitOfContext_[i] = *length; }
            }
        }
        const auto named = std::find_if(unitOfContext_.begin(), unitOfContext_.end(),
                                        [](double length) { return length != 0; });
        if (named != unitOfContext_.end()) {
            structure_.unit = *named;
        } else {
            structure_.unit = UnitOfDocument();
        }
    }
    double UnitOfDocument() {
        double unit = 0;
        for (const pugi::xml_node node : r_.units) {
            if (r_.unitsOfValues.contains(UidOf(node))) { continue; }
            const std::optional<double> length = LengthOfUnit(node);
            if (length && unit != 0 && *length != unit) {
                Lose(kNone,
                     "it names several units of length and none for its placements, which are taken for "
                     "millimetres",
                     false);
                return 1;
            }
            if (length) { unit = *length; }
        }
        return unit == 0 ? 1 : unit;
    }
    double UnitOf(pugi::xml_node item) const {
        const auto place = r_.placeOf.find(UidOf(item));
        if (place == r_.placeOf.end() || place->second.context == kNone) { return structure_.unit; }
        const double unit = unitOfContext_[place->second.context];
        return unit == 0 ? structure_.unit : unit;
    }

    static bool IsPart(pugi::xml_node use) {
        const std::string_view type = TypeOf(use);
        for (const std::string_view other : {"Promissory", "MakeFrom", "ToolPart", "Substitut"}) {
            if (type.find(other) != std::string_view::npos) { return false; }
        }
        return true;
    }

    // The uid that a reference of a use leads to: that of the element itself, or of the first one inside.
    std::string_view UidIn(pugi::xml_node node) const {
        for (int step = 0; node && step < 4; ++step, node = FirstElement(node)) {
            if (!UidRefOf(node).empty()) { return UidRefOf(node); }
            if (!UidOf(node).empty()) { return UidOf(node); }
        }
        return {};
    }
    std::size_t ViewOf(std::string_view uid, pugi::xml_node* occurrence) const {
        const std::size_t at = PlaceIn(r_.occurrenceOf, uid);
        if (at == kNone) { return PlaceIn(r_.viewOf, uid); }
        const XmlOccurrence& found = r_.occurrences[at];
        *occurrence = found.node;
        const std::string_view definition = UidIn(ChildOf(found.node, "Definition"));
        const std::size_t view = PlaceIn(r_.viewOf, definition);
        return view == kNone ? found.view : view;
    }

    void ResolveUses() {
        isUsed_.assign(r_.views.size(), false);
        for (const XmlUse& use : r_.uses) {
            if (!IsPart(use.node)) { continue; }
            ResolvedUse resolved{use.node, {}, use.view, kNone};
            if (resolved.parent == kNone) {
                pugi::xml_node none;
                resolved.parent = ViewOf(UidIn(ChildOf(use.node, "Relating")), &none);
            }
            resolved.child = ViewOf(UidIn(ChildOf(use.node, "Related")), &resolved.occurrence);
            if (resolved.parent == kNone || resolved.child == kNone) {
                const std::size_t part = resolved.parent == kNone ? kNone : r_.views[resolved.parent].part;
                Lose(part, "one of its uses leads to no part", true);
                continue;
            }
            isUsed_[resolved.child] = true;
            uses_.push_back(resolved);
        }
    }

    bool SaysAnything(std::size_t view) const {
        return r_.views[view].hasUses || fileOf_[r_.views[view].holder] != kNone;
    }
    void MakeProducts() {
        productOf_.assign(r_.views.size(), kNone);
        for (const XmlPart& part : r_.parts) {
            std::vector<std::size_t> chosen;
            for (const std::size_t view : part.views) {
                if (isUsed_[view]) { chosen.push_back(view); }
            }
            const auto first = std::find_if(part.views.begin(), part.views.end(),
                                            [&](std::size_t view) { return SaysAnything(view); });
            if (chosen.empty() && !part.views.empty()) {
                chosen.push_back(first == part.views.end() ? part.views[0] : *first);
            }
            for (const std::size_t view : chosen) {
                productOf_[view] = structure_.products.size();
                AddProduct(part, fileOf_[r_.views[view].holder]);
                viewOfProduct_.push_back(view);
            }
            if (chosen.empty()) {
                AddProduct(part, fileOf_[part.holder]);
                viewOfProduct_.push_back(kNone);
            }
            for (const std::size_t view : part.views) {
                if (productOf_[view] == kNone && SaysAnything(view)) {
                    Lose(r_.views[view].part, "another view or version of it is left out", false);
                }
            }
        }
    }
    void AddProduct(const XmlPart& part, std::size_t file) {
        FileProduct product;
        product.id = AsUtf8(IdOf(part.node));
        product.name = AsUtf8(TextOf(ChildOf(part.node, "Name")));
        if (file != kNone) { product.files = r_.holders[file].names; }
        structure_.products.push_back(std::move(product));
    }

    // The quantity of a use: 1 where it has none, or one that doesn't count pieces.
    std::size_t PiecesOf(const ResolvedUse& use) const {
        for (const pugi::xml_node node : {use.occurrence, use.node}) {
            const pugi::xml_node quantity = Referred(ChildOf(node, "Quantity"), r_.uids);
            if (!quantity) { continue; }
            pugi::xml_node value = ChildOf(quantity, "ValueComponent");
            if (!value) {
                const pugi::xml_node inside = Referred(FirstElement(quantity), r_.uids);
                const pugi::xml_node component = ChildOf(inside, "ValueComponent");
                value = component ? component : inside;
            }
            const std::vector<double> numbers = NumbersOf(TextOf(value ? value : quantity), 1);
            if (numbers.size() != 1 || numbers[0] < 2 || numbers[0] > 1e9 ||
                numbers[0] != std::floor(numbers[0])) {
                return 1;
            }
            return static_cast<std::size_t>(numbers[0]);
        }
        return 1;
    }

    PlacementContext ContextOf(const ResolvedUse& use) const {
        PlacementContext context;
        context.uids = &r_.uids;
        context.unitOf = [this](pugi::xml_node item) { return UnitOf(item); };
        const std::string_view above = r_.views[use.parent].geometry;
        const std::string_view below = r_.views[use.child].geometry;
        context.isTurnedAround = [this, above, below](const AxisPair& pair) {
            const std::string_view origin = RepresentationOf(pair.origin);
            const std::string_view target = RepresentationOf(pair.target);
            return !origin.empty() && !target.empty() && origin != target && origin == above &&
                   target == below;
        };
        return context;
    }
    std::string_view RepresentationOf(pugi::xml_node axes) const {
        const auto place = r_.placeOf.find(UidIn(axes));
        return place == r_.placeOf.end() ? std::string_view{} : place->second.representation;
    }

    Transform PlacementOf(const ResolvedUse& use) {
        const std::size_t part = r_.views[use.child].part;
        for (const pugi::xml_node node : {use.node, use.occurrence}) {
            const pugi::xml_node placement = ChildOf(node, "Placement");
            if (!placement) { continue; }
            if (UidRefOf(placement).empty() && !FirstElement(placement)) { continue; }
            if (const std::optional<Transform> at = ReadPlacement(placement, ContextOf(use))) { return *at; }
            Lose(part, "the placement of one of its uses can't be read, it stands at the origin", true);
            return {};
        }
        Lose(part, "one of its uses has no placement, it stands at the origin", false);
        return {};
    }

    void PlaceUses() {
        std::size_t extra = 0;
        for (const ResolvedUse& use : uses_) {
            const std::size_t parent = productOf_[use.parent];
            if (parent == kNone) { continue; } // of a view that is left out
            const std::size_t pieces = PiecesOf(use);
            const FileUse placed{productOf_[use.child], PlacementOf(use)};
            const bool isWithin = pieces - 1 <= kMostExtraPieces - extra;
            if (isWithin) {
                extra += pieces - 1;
            } else {
                Lose(r_.views[use.child].part, "only one of its many pieces is taken over", false);
            }
            std::vector<FileUse>& uses = structure_.products[parent].uses;
            uses.insert(uses.end(), isWithin ? pieces : 1, placed);
        }
    }

    // Takes out each use that closes a circle; begins at the products that nobody uses.
    void CutCircles() {
        enum class State : char { kNew, kOpen, kDone };
        std::vector<State> states(structure_.products.size(), State::kNew);
        std::vector<std::size_t> starts = Unused();
        const std::size_t unused = starts.size();
        for (std::size_t i = 0; i < states.size(); ++i) { starts.push_back(i); }
        std::vector<std::pair<std::size_t, std::size_t>> path; // products, and the next use of each
        for (std::size_t i = 0; i < starts.size(); ++i) {
            if (states[starts[i]] != State::kNew) { continue; }
            path.assign(1, {starts[i], 0});
            states[starts[i]] = State::kOpen;
            while (!path.empty()) {
                auto& [product, next] = path.back();
                std::vector<FileUse>& uses = structure_.products[product].uses;
                if (next == uses.size()) {
                    states[product] = State::kDone;
                    std::erase_if(uses, [](const FileUse& use) { return use.child == kNone; });
                    path.pop_back();
                    continue;
                }
                FileUse& use = uses[next++];
                if (states[use.child] == State::kOpen) {
                    Lose(PartOf(use.child), "it is used by itself, over others or not", true);
                    const bool isOfNobody = i >= unused && use.child == starts[i];
                    if (isOfNobody && (circleStarts_.empty() || circleStarts_.back() != starts[i])) {
                        circleStarts_.push_back(starts[i]);
                    }
                    use.child = kNone;
                } else if (states[use.child] == State::kNew) {
                    states[use.child] = State::kOpen;
                    path.emplace_back(use.child, 0);
                }
            }
        }
    }
    std::size_t PartOf(std::size_t product) const {
        const std::size_t view = viewOfProduct_[product];
        return view == kNone ? kNone : r_.views[view].part;
    }

    // Uses by views that are left out count too: what only an older version uses is no root.
    std::vector<std::size_t> Unused() const {
        std::vector<std::size_t> unused;
        for (std::size_t i = 0; i < structure_.products.size(); ++i) {
            const std::size_t view = viewOfProduct_[i];
            if (view == kNone || !isUsed_[view]) { unused.push_back(i); }
        }
        return unused;
    }
    // Also takes one product of each circle that nothing outside uses.
    void FindRoots() {
        structure_.roots = Unused();
        structure_.roots.insert(structure_.roots.end(), circleStarts_.begin(), circleStarts_.end());
        if (structure_.roots.empty()) { structure_.roots = UnusedByProducts(); }
        std::sort(structure_.roots.begin(), structure_.roots.end());
    }
    std::vector<std::size_t> UnusedByProducts() const {
        std::vector<bool> isUsed(structure_.products.size(), false);
        for (const FileProduct& product : structure_.products) {
            for (const FileUse& use : product.uses) { isUsed[use.child] = true; }
        }
        std::vector<std::size_t> unused;
        for (std::size_t i = 0; i < isUsed.size(); ++i) {
            if (!isUsed[i]) { unused.push_back(i); }
        }
        return unused;
    }

    XmlRecords r_;
    FileStructure structure_;
    std::vector<std::size_t> fileOf_;   // of a holder
    std::vector<double> unitOfContext_; // 0 where it has none
    std::vector<bool> isUsed_;          // of a view
    std::vector<ResolvedUse> uses_;
    std::vector<std::size_t> productOf_;     // of a view, or kNone
    std::vector<std::size_t> viewOfProduct_; // or kNone
    std::vector<std::size_t> circleStarts_;
};

} // namespace

bool ReadXmlStructure(std::string_view text, FileStructure* structure, std::string* error) {
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(text.data(), text.size());
    error->clear();
    if (!result) {
        const auto end = text.begin() + std::min<std::ptrdiff_t>(result.offset, std::ssize(text));
        *error =
            "line " + std::to_string(1 + std::count(text.begin(), end, '\n')) + ": " + result.description();
    }
    // A text that is cut or broken gives what comes before.
    XmlRecords records = CollectXml(document);
    if (!records.hasData || result.status == pugi::status_out_of_memory) {
        if (error->empty()) { *error = "it has no DataContainer"; }
        return false;
    }
    *structure = StructureMaker(std::move(records)).Make();
    return true;
}

} // namespace tarnwick::prepare
