#include "prepare/xml/xml_records.h"

#include "text/extension.h"
#include "text/lower_case.h"

#include <algorithm>
#include <array>

namespace tarnwick::prepare {

namespace {

// A longer name is ignored: each part with the file keeps a copy.
constexpr std::size_t kLongestFile = 1024;
// Of one file.
constexpr std::size_t kMostNames = 4;

template <std::size_t kCount>
using Names = std::array<std::string_view, kCount>;

constexpr Names<3> kUses{"ViewOccurrenceRelationship", "NextAssemblyOccurrenceUsage",
                         "NextAssemblyViewUsage"};
constexpr Names<6> kOccurrences{"Occurrence",          "SingleOccurrence",   "QuantifiedOccurrence",
                                "SpecifiedOccurrence", "SelectedOccurrence", "MultiLevelOccurrence"};
constexpr Names<4> kDocuments{"Document", "DocumentVersion", "DocumentDefinition",
                              "DigitalDocumentDefinition"};
constexpr Names<3> kFiles{"File", "DigitalFile", "ExternalItem"};
constexpr Names<3> kReferences{"AssignedDocument", "ExternalFile", "ExternalModel"};
constexpr Names<2> kContexts{"RepresentationContext", "GeometricCoordinateSpace"};
constexpr Names<4> kItems{"AxisPlacement", "RepresentationItem", "CartesianTransformation",
                          "RepresentationRelationship"};
constexpr Names<7> kStepNames{"stp", "step", "p21", "stpz", "stpx", "stpxz", "stpa"};
// Files that belong to a part but say nothing of its shape.
constexpr Names<16> kPaperNames{"pdf", "doc",  "docx", "xls", "xlsx", "ppt", "pptx", "txt",
                                "htm", "html", "png",  "jpg", "jpeg", "tif", "tiff", "csv"};

template <std::size_t kCount>
bool IsOneOf(std::string_view name, const Names<kCount>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool IsModel(std::string_view name) {
    return name.ends_with("Representation") || name.ends_with("Model");
}

FileRank RankOf(std::string_view name) {
    std::string extension = ExtensionOf(name);
    if (extension == "z" || extension == "gz" || extension == "zip") {
        extension = ExtensionOf(name.substr(0, name.rfind('.')));
    }
    if (IsOneOf(extension, kStepNames)) { return FileRank::kStep; }
    if (IsOneOf(extension, kPaperNames)) { return FileRank::kNoShape; }
    return FileRank::kOther;
}

// What an element is inside of.
struct Surroundings {
    std::size_t part = kNone;
    std::size_t view = kNone;
    std::size_t holder = kNone;
    std::size_t file = kNone;    // a holder
    std::size_t context = kNone; // in the contexts
    std::string_view representation;
    bool isInUse = false;
    bool isAside = false; // in a use or an occurrence, whose documents aren't those of the part
    bool isInLocation = false;
};

class XmlCollector {
public:
    explicit XmlCollector(XmlRecords* records) : r_(*records) { r_.contexts.emplace_back(); }

    // Goes down and up by the links of the nodes, and keeps the surroundings of each level.
    void Run(pugi::xml_node top) {
        std::vector<Surroundings> levels(1);
        pugi::xml_node node = top.first_child();
        while (node) {
            Surroundings inside = levels.back();
            if (node.type() == pugi::node_element) { Take(node, &inside); }
            if (node.first_child()) {
                levels.push_back(inside);
                node = node.first_child();
                continue;
            }
            while (node && node != top && !node.next_sibling()) {
                node = node.parent();
                if (node != top) { levels.pop_back(); }
            }
            if (!node || node == top) { return; }
            node = node.next_sibling();
        }
    }

private:
    std::size_t AddHolder(std::string_view uid) {
        r_.holders.emplace_back();
        const std::size_t holder = r_.holders.size() - 1;
        if (!uid.empty()) { r_.holderOf.try_emplace(uid, holder); }
        return holder;
    }
    void AddView(std::string_view uid, Surroundings* in) {
        in->view = r_.views.size();
        const std::size_t above = in->holder;
        in->holder = AddHolder(uid);
        if (above != kNone) { r_.leads.emplace_back(in->holder, above); }
        r_.views.push_back({in->part, in->holder, {}, false});
        r_.parts[in->part].views.push_back(in->view);
        for (const std::string_view of : {uid, partUid_, versionUid_}) {
            if (!of.empty()) { r_.viewOf.try_emplace(of, in->view); }
        }
    }
    // The view for what stands in a part but in no view of it.
    void NeedView(Surroundings* in) {
        if (in->view != kNone || in->part == kNone) { return; }
        if (looseView_ == kNone) {
            Surroundings loose = *in;
            AddView({}, &loose);
            looseView_ = loose.view;
        }
        in->view = looseView_;
    }

    void Take(pugi::xml_node node, Surroundings* in) {
        const std::string_view name = LocalName(node);
        const std::string_view uid = UidOf(node);
        const std::string_view reference = UidRefOf(node);
        if (!uid.empty()) { r_.uids.try_emplace(uid, node); }
        if (name == "DataContainer") { r_.hasData = true; }
        if (IsOneOf(name, kItems)) { TakeItem(uid.empty() ? reference : uid, *in); }
        if (!reference.empty()) {
            TakeReference(node, name, reference, in);
            return;
        }
        if (in->file != kNone) { TakeNames(node, name, in); }
        if (name == "Part") {
            *in = {};
            in->part = r_.parts.size();
            in->holder = AddHolder(uid);
            r_.parts.push_back({node, in->holder, {}});
            partUid_ = uid;
            versionUid_ = {};
            looseView_ = kNone;
        } else if (name == "PartVersion" && in->part != kNone) {
            const std::size_t part = in->holder;
            in->holder = AddHolder(uid);
            if (part != kNone) { r_.leads.emplace_back(in->holder, part); }
            versionUid_ = uid;
        } else if (name == "PartView" && in->part != kNone) {
            AddView(uid, in);
        } else if (IsOneOf(name, kUses)) {
            NeedView(in);
            if (in->view != kNone) { r_.views[in->view].hasUses = true; }
            r_.uses.push_back({node, in->view});
            in->isInUse = true;
            in->isAside = true;
        } else if (IsOneOf(name, kOccurrences)) {
            TakeOccurrence(node, uid, in);
        } else if (IsOneOf(name, kContexts) || name == "DefaultUnits") {
            in->context = name == "DefaultUnits" ? 0 : r_.contexts.size();
            if (in->context != 0) { r_.contexts.emplace_back(); }
        } else if (name == "Unit") {
            if (LocalName(node.parent()) == "DataContainer") { r_.units.push_back(node); }
            if (in->context != kNone) { r_.contexts[in->context].units.push_back(node); }
        } else if (IsOneOf(name, kFiles) && in->file == kNone) {
            TakeFile(node, uid, in);
        } else if (IsOneOf(name, kDocuments) || IsModel(name)) {
            const std::size_t above = in->holder;
            in->holder = AddHolder(uid);
            const bool leads = !IsModel(name) || IsDefiningGeometry(node.parent());
            if (leads && above != kNone && !in->isAside) { r_.leads.emplace_back(above, in->holder); }
            if (IsModel(name)) { in->representation = uid; }
            if (IsDefiningGeometry(node.parent())) { TakeGeometry(uid, *in); }
        }
    }

    static bool IsDefiningGeometry(pugi::xml_node node) { return LocalName(node) == "DefiningGeometry"; }
    void TakeGeometry(std::string_view uid, const Surroundings& in) {
        if (in.view != kNone && r_.views[in.view].geometry.empty()) { r_.views[in.view].geometry = uid; }
    }

    void TakeItem(std::string_view uid, const Surroundings& in) {
        if (!uid.empty()) { r_.placeOf.try_emplace(uid, XmlItemPlace{in.representation, in.context}); }
    }

    void TakeReference(pugi::xml_node node, std::string_view name, std::string_view reference,
                       Surroundings* in) {
        if (name == "Unit") {
            if (in->context != kNone) {
                r_.contexts[in->context].units.push_back(node);
            } else {
                r_.unitsOfValues.insert(reference);
            }
            return;
        }
        const bool isGeometry = IsDefiningGeometry(node) || IsDefiningGeometry(node.parent());
        if (isGeometry) { TakeGeometry(reference, *in); }
        const bool leads =
            isGeometry || IsOneOf(name, kReferences) || IsOneOf(name, kDocuments) || IsOneOf(name, kFiles);
        if (leads && in->holder != kNone && !in->isAside) {
            r_.references.emplace_back(in->holder, reference);
        }
    }

    void TakeOccurrence(pugi::xml_node node, std::string_view uid, Surroundings* in) {
        // Inside a use it is what is used; its part is named, or unknown.
        if (!in->isInUse) { NeedView(in); }
        const std::size_t view = in->isInUse ? kNone : in->view;
        r_.occurrences.push_back({node, view});
        if (!uid.empty()) { r_.occurrenceOf.try_emplace(uid, r_.occurrences.size() - 1); }
        in->isAside = true;
    }

    void TakeFile(pugi::xml_node node, std::string_view uid, Surroundings* in) {
        const std::size_t above = in->holder;
        in->holder = AddHolder(uid);
        in->file = in->holder;
        if (above != kNone && !in->isAside) { r_.leads.emplace_back(above, in->holder); }
        Offer(IdOf(node), {}, in->file);
    }

    // Inside a file: what may be its name.
    void TakeNames(pugi::xml_node node, std::string_view name, Surroundings* in) {
        if (name == "ExternalItem") {
            const std::string_view source = TextOf(ChildOf(node, "Source"));
            Offer(IdOf(node), source, in->file);
        } else if (name == "FileLocationAssignment" || name == "FileLocationIdentification" ||
                   name == "Locations") {
            in->isInLocation = true;
        } else if (name == "SourceId" || name == "FileName" || (in->isInLocation && name == "Identifier")) {
            const std::string_view id = AttributeOf(node, "id");
            Offer(id.empty() ? OwnTextOf(node) : id, {}, in->file);
        }
    }

    // A name of a better rank comes first; among equals one with an extension, or that tells a folder too.
    void Offer(std::string_view name, std::string_view folder, std::size_t file) {
        if (name.empty() || name.size() + folder.size() > kLongestFile) { return; }
        XmlHolder& holder = r_.holders[file];
        const std::string path = InFolder(folder) + std::string(name);
        const auto at = std::find_if(holder.names.begin(), holder.names.end(),
                                     [&](const std::string& known) { return IsBefore(path, known); });
        if (std::find(holder.names.begin(), at, path) != at) { return; }
        holder.names.insert(at, path);
        if (holder.names.size() > kMostNames) { holder.names.pop_back(); }
        holder.rank = RankOf(holder.names[0]);
    }
    static bool IsBefore(const std::string& name, const std::string& other) {
        const FileRank rank = RankOf(name);
        const FileRank otherRank = RankOf(other);
        if (rank != otherRank) { return rank < otherRank; }
        const bool hasExtension = !ExtensionOf(name).empty();
        if (hasExtension == ExtensionOf(other).empty()) { return hasExtension; }
        return name.size() > other.size() && name.ends_with(other) &&
               IsSeparator(name[name.size() - other.size() - 1]);
    }
    static bool IsSeparator(char c) { return c == '/' || c == '\\'; }
    // A relative path that ends in a separator, or nothing: names of archives and disks lead nowhere here.
    static std::string InFolder(std::string_view folder) {
        while (folder.starts_with("./") || folder.starts_with(".\\")) { folder.remove_prefix(2); }
        const bool isPath = folder.find_first_of("/\\") != std::string_view::npos &&
                            folder.find(':') == std::string_view::npos && !IsSeparator(folder[0]);
        if (!isPath) { return {}; }
        std::string path(folder);
        if (!IsSeparator(path.back())) { path += '/'; }
        return path;
    }

    XmlRecords& r_;
    std::string_view partUid_; // of the part that the pass is in
    std::string_view versionUid_;
    std::size_t looseView_ = kNone;
};

// In small letters, and no longer than any unit's.
std::string UnitText(std::string_view text) {
    return LowerCase(std::string(text.substr(0, 32)));
}

double PrefixFactor(std::string_view prefix) {
    constexpr std::array<std::pair<std::string_view, double>, 8> kPrefixes{{{"nano", 1e-9},
                                                                            {"micro", 1e-6},
                                                                            {"milli", 1e-3},
                                                                            {"centi", 1e-2},
                                                                            {"deci", 1e-1},
                                                                            {"deca", 10},
                                                                            {"hecto", 100},
                                                                            {"kilo", 1000}}};
    for (const auto& [name, factor] : kPrefixes) {
        if (prefix == name) { return factor; }
    }
    return 1;
}

} // namespace

XmlRecords CollectXml(const pugi::xml_document& document) {
    XmlRecords records;
    XmlCollector(&records).Run(document);
    return records;
}

std::vector<std::size_t> FilesOfHolders(const XmlRecords& records) {
    const std::size_t count = records.holders.size();
    // For each holder those that lead to it, one holder after the other.
    std::vector<std::pair<std::size_t, std::size_t>> leads = records.leads;
    for (const auto& [from, uid] : records.references) {
        const auto to = records.holderOf.find(uid);
        if (to != records.holderOf.end()) { leads.emplace_back(from, to->second); }
    }
    std::vector<std::size_t> start(count + 1, 0);
    for (const auto& [from, to] : leads) { ++start[to + 1]; }
    for (std::size_t i = 0; i < count; ++i) { start[i + 1] += start[i]; }
    std::vector<std::size_t> sources(leads.size());
    std::vector<std::size_t> next(start.begin(), start.end() - 1);
    for (const auto& [from, to] : leads) { sources[next[to]++] = from; }

    // From each file, the best ones first, to all that lead there; a holder keeps the first that reaches it.
    std::vector<std::size_t> fileOf(count, kNone);
    std::vector<std::size_t> open;
    for (const FileRank rank : {FileRank::kStep, FileRank::kOther}) {
        for (std::size_t file = 0; file < count; ++file) {
            const XmlHolder& holder = records.holders[file];
            if (holder.names.empty() || holder.rank != rank) { continue; }
            open.assign(1, file);
            while (!open.empty()) {
                const std::size_t at = open.back();
                open.pop_back();
                if (fileOf[at] != kNone) { continue; }
                fileOf[at] = file;
                open.insert(open.end(), sources.begin() + static_cast<std::ptrdiff_t>(start[at]),
                            sources.begin() + static_cast<std::ptrdiff_t>(start[at + 1]));
            }
        }
    }
    return fileOf;
}

std::optional<double> LengthOfUnit(pugi::xml_node unit) {
    const std::string quantity = UnitText(TextOf(ChildOf(unit, "Quantity")));
    if (!quantity.empty() && quantity.find("length") == std::string::npos) { return std::nullopt; }
    std::string name = UnitText(TextOf(ChildOf(unit, "Name")));
    if (name.empty()) { name = UnitText(IdOf(unit)); }
    constexpr std::array<std::pair<std::string_view, double>, 14> kNames{{{"inch", 25.4},
                                                                          {"inches", 25.4},
                                                                          {"in", 25.4},
                                                                          {"foot", 304.8},
                                                                          {"feet", 304.8},
                                                                          {"ft", 304.8},
                                                                          {"yard", 914.4},
                                                                          {"mile", 1609344},
                                                                          {"mil", 0.0254},
                                                                          {"mm", 1},
                                                                          {"cm", 10},
                                                                          {"m", 1000},
                                                                          {"km", 1e6},
                                                                          {"micron", 1e-3}}};
    const double factor = PrefixFactor(UnitText(TextOf(ChildOf(unit, "Prefix"))));
    for (const auto& [known, millimetres] : kNames) {
        if (name == known) { return millimetres * factor; }
    }
    for (const std::string_view metre : {"metre", "meter", "metres", "meters"}) {
        if (!name.ends_with(metre)) { continue; }
        const std::string_view prefix(name.data(), name.size() - metre.size());
        if (prefix.empty()) { return 1000 * factor; }
        if (PrefixFactor(prefix) != 1) { return 1000 * PrefixFactor(prefix); }
    }
    return std::nullopt;
}

} // namespace tarnwick::prepare
