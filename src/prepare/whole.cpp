#include "prepare/whole.h"

#include "exchange/string_text.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "prepare/use_styles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <unordered_set>
#include <utility>

namespace tarnwick::prepare {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr std::size_t kLongestName = 200;

// ---- all files

// A product of any of the files, before places are looked at.
struct Node {
    std::string id;
    std::size_t file = 0;
    std::vector<ShapeItem> shape;
    std::vector<FileUse> uses; // of nodes
    std::vector<std::string> files;
    std::size_t origin = kNone; // the root of the file that describes it, which takes its place
};

class WholeReader {
public:
    WholeReader(Whole* whole, const std::atomic<bool>* cancel) : whole_(*whole), cancel_(cancel) {}

    std::vector<Node> Run(const std::string& path, std::size_t* root) {
        const std::vector<std::size_t> tops = OpenTops(path);
        if (tops.empty()) {
            whole_.error = lastError_;
            return {};
        }
        // Their roots come before those of the files that they name.
        for (const std::size_t top : tops) { RootOf(top); }
        // Files that nodes name bring further nodes, which name files in their turn.
        for (std::size_t i = 0; i < nodes_.size(); ++i) {
            if (cancel_ != nullptr && *cancel_) { break; }
            if (!nodes_[i].files.empty()) { Follow(i); }
        }
        *root = RootOfAll(tops, path);
        return std::move(nodes_);
    }

private:
    // The file, or all of the archive that it is.
    std::vector<std::size_t> OpenTops(const std::string& path) {
        StepMembers archive = StepMembersOf(path);
        if (!archive.error.empty()) { whole_.losses.push_back({"", 0, archive.error}); }
        if (archive.error == kNotEnoughMemory) { whole_.lacksMemory = true; }
        std::vector<std::string> members = std::move(archive.names);
        members_.insert(members.begin(), members.end());
        if (members.empty()) { members.emplace_back(); } // no archive, or none with names of STEP files
        std::vector<std::size_t> tops;
        for (const std::string& member : members) {
            if (cancel_ != nullptr && *cancel_) { break; }
            const std::size_t top = Open(path, member);
            if (top != kNone) {
                tops.push_back(top);
            } else if (!member.empty()) {
                // An archive may also hold XML of other kinds.
                const bool isStep = !member.ends_with(".xml");
                whole_.losses.push_back({member, 0, "it can't be read: " + lastError_, isStep});
            }
        }
        return tops;
    }

    // The root over the tops that no other file names; that of the first top where each is named.
    std::size_t RootOfAll(std::vector<std::size_t> tops, const std::string& path) {
        const std::size_t first = tops[0];
        std::erase_if(tops, [this](std::size_t top) { return named_.contains(top); });
        if (tops.empty()) { tops.push_back(first); }
        whole_.unit = whole_.files[tops[0]].structure.unit;
        if (tops.size() == 1) { return RootOf(tops[0]); }
        Node node;
        node.id = TextOf(PathOf(path).stem());
        for (const std::size_t top : tops) { node.uses.push_back({RootOf(top), {}}); }
        nodes_.push_back(std::move(node));
        return nodes_.size() - 1;
    }

    // The place of the file, or of the member of the archive that it is; kNone where it can't be read.
    std::size_t Open(const std::string& path, const std::string& member) {
        const std::string key = RealPath(path) + "\n" + member;
        const auto [known, isNew] = places_.emplace(key, kNone);
        if (!isNew) { return known->second; }
        std::unique_ptr<LoadedSource> source = LoadSource(path, member);
        if (source->bytes.error == kNotEnoughMemory) { whole_.lacksMemory = true; }
        if (!source->error.empty()) {
            lastError_ = source->error;
            return kNone;
        }
        const std::size_t place = whole_.files.size();
        known->second = place;
        if (source->file != nullptr) { ShareUseStyles(*source->file, &source->structure); }
        WholeFileEntry entry{path, member, source->bytes.digest, nullptr, std::move(source->structure)};
        for (Loss& loss : entry.structure.losses) { whole_.losses.push_back(std::move(loss)); }
        firstNode_.push_back(nodes_.size());
        for (FileProduct& product : entry.structure.products) {
            Node node{product.id.empty() ? product.name : product.id, place, std::move(product.shape),
                      std::move(product.uses), std::move(product.files)};
            for (FileUse& use : node.uses) { use.child += firstNode_.back(); }
            nodes_.push_back(std::move(node));
        }
        if (place == 0) { entry.source = std::move(source); }
        whole_.files.push_back(std::move(entry));
        return place;
    }

    // The one root of a file, or a node over all of them.
    std::size_t RootOf(std::size_t file) {
        if (const auto known = roots_.find(file); known != roots_.end()) { return known->second; }
        std::vector<std::size_t> roots;
        const FileStructure& structure = whole_.files[file].structure;
        const std::size_t first = firstNode_[file];
        const auto isBare = [&](std::size_t i) {
            const Node& node = nodes_[first + i];
            return node.shape.empty() && node.uses.empty() && node.files.empty();
        };
        for (const std::size_t root : structure.roots) {
            if (!isBare(root)) { roots.push_back(first + root); }
        }
        if (roots.empty() && !structure.roots.empty()) { roots.push_back(first + structure.roots.back()); }
        std::size_t root = kNone;
        if (roots.size() == 1) {
            root = roots[0];
        } else {
            Node node;
            const WholeFileEntry& entry = whole_.files[file];
            node.id = TextOf(PathOf(entry.member.empty() ? entry.path : entry.member).stem());
            node.file = file;
            for (const std::size_t child : roots) { node.uses.push_back({child, {}}); }
            root = nodes_.size();
            nodes_.push_back(std::move(node));
        }
        roots_[file] = root;
        return root;
    }

    // The file that a node of an archive names may be another member.
    std::size_t FollowMember(std::size_t place) {
        const WholeFileEntry& entry = whole_.files[nodes_[place].file];
        if (entry.member.empty()) { return kNone; }
        const std::string folder = TextOf(PathOf(entry.member).parent_path());
        bool isOther = false;
        const std::string member = FindMember(members_, folder, nodes_[place].files, &isOther);
        // The members are open by now, except those that can't be read.
        return member.empty() ? kNone : Open(entry.path, member);
    }

    std::size_t FollowFile(std::size_t place, bool hasOwn) {
        const std::vector<std::string> names = nodes_[place].files;
        const std::string folder = TextOf(PathOf(whole_.files[nodes_[place].file].path).parent_path());
        bool isOther = false;
        const std::string path = FindSource(folder, names, &isOther);
        if (path.empty() || isOther) { whole_.missed.push_back(folder + "/" + names[0]); }
        if (path.empty()) {
            if (!hasOwn) { AddLoss(place, "its file '" + names[0] + "' isn't there"); }
            return kNone;
        }
        if (isOther) {
            AddLoss(place, "its file '" + names[0] + "' isn't there; '" + path + "' is taken", false);
        }
        const std::size_t file = Open(path, "");
        if (file == kNone) { AddLoss(place, "its file '" + path + "' can't be read: " + lastError_); }
        return file;
    }

    void Follow(std::size_t place) {
        const bool hasOwn = !nodes_[place].shape.empty();
        std::size_t file = FollowMember(place);
        if (file == kNone) { file = FollowFile(place, hasOwn); }
        if (file == kNone) { return; }
        if (file != nodes_[place].file) { named_.insert(file); }
        const std::size_t root = RootOf(file);
        if (file == nodes_[place].file || root == place) { return; }
        // Where the other file has the shape and this one the components, both count; where both have
        // components, only these do.
        if (!nodes_[place].uses.empty() && !nodes_[root].uses.empty()) {
            if (nodes_[root].shape.empty()) { return; }
            Node shape;
            shape.id = nodes_[root].id;
            shape.file = file;
            shape.shape = nodes_[root].shape;
            nodes_.push_back(std::move(shape));
            nodes_[place].uses.push_back({nodes_.size() - 1, {}});
            return;
        }
        if (nodes_[place].uses.empty() && !hasOwn) {
            nodes_[place].origin = root;
        } else {
            nodes_[place].uses.push_back({root, {}});
        }
    }

    void AddLoss(std::size_t node, std::string why, bool isShape = true) {
        whole_.losses.push_back({nodes_[node].id, 0, std::move(why), isShape});
    }

    Whole& whole_;
    const std::atomic<bool>* const cancel_;
    std::vector<Node> nodes_;
    std::vector<std::size_t> firstNode_; // of each file
    std::map<std::string, std::size_t> places_;
    std::map<std::size_t, std::size_t> roots_;
    std::unordered_set<std::string> members_; // of the archive that the top is, often none
    std::set<std::size_t> named_;             // files that another one names
    std::string lastError_;
};

// ---- one tree

// A transform that mirrors or scales, as a key: rounded, so that noise makes no new part.
std::array<long long, 9> RoundedOf(const Transform& turn) {
    std::array<long long, 9> rounded{};
    for (std::size_t i = 0; i < 9; ++i) {
        rounded[i] = std::llround(std::clamp(turn.linear[i], -1e9, 1e9) * 1e6);
    }
    return rounded;
}

// Splits a transform into a rigid one and a rest that is applied before it. The rest is only a factor and a
// mirror where that suffices, so that few parts must be made anew.
void Split(const Transform& whole, Transform* rigid, Transform* rest) {
    *rigid = whole;
    *rest = {};
    if (IsRigid(whole)) { return; }
    const double determinant = Determinant(whole);
    const double scale = std::cbrt(std::abs(determinant));
    if (scale > 0 && std::isfinite(scale)) {
        Transform simple = Scaling(scale);
        if (determinant < 0) { simple.linear[0] = -scale; }
        const Transform left = whole * *Inverse(simple);
        if (IsRigid(left)) {
            *rigid = left;
            *rest = simple;
            return;
        }
    }
    *rigid = {};
    rigid->move = whole.move;
    *rest = whole;
    rest->move = {};
}

class TreeMaker {
public:
    TreeMaker(std::vector<Node> nodes, Whole* whole) : nodes_(std::move(nodes)), whole_(*whole) {}

    void Run(std::size_t root) {
        emptyNode_ = nodes_.size();
        nodes_.emplace_back();
        FindOrigins();
        CutCircles(Origin(root));
        whole_.root = PlaceOf({Origin(root), RoundedOf({}), 0, 0}, {}, nodes_[root].id);
        // Each product that is filled adds those that it uses.
        for (std::size_t i = 0; i < whole_.products.size(); ++i) {
            if (nodeOf_[i] != emptyNode_) { Fill(i); }
        }
    }

private:
    struct Key {
        std::size_t node;
        std::array<long long, 9> turn;
        std::uint64_t style;
        std::uint64_t context;
        auto operator<=>(const Key&) const = default;
    };

    // A node that another file describes gives way to the root of that file. A circle of such files is told,
    // and ends anywhere.
    void FindOrigins() {
        for (std::size_t i = 0; i < nodes_.size(); ++i) {
            std::size_t at = i;
            for (std::size_t steps = 0; nodes_[at].origin != kNone && steps < 64; ++steps) {
                at = nodes_[at].origin;
            }
            if (nodes_[at].origin != kNone) {
                whole_.losses.push_back(
                    {nodes_[i].id, 0, "its file names another one, and so on without end"});
            }
            origins_.push_back(at);
        }
    }
    std::size_t Origin(std::size_t node) const { return origins_[node]; }

    void CutCircles(std::size_t root) {
        enum State : char { kNew, kOpen, kDone };
        std::vector<char> states(nodes_.size(), kNew);
        std::vector<std::pair<std::size_t, std::size_t>> path{{root, 0}};
        states[root] = kOpen;
        while (!path.empty()) {
            auto& [node, next] = path.back();
            std::vector<FileUse>& uses = nodes_[node].uses;
            if (next == uses.size()) {
                states[node] = kDone;
                path.pop_back();
                continue;
            }
            const std::size_t child = Origin(uses[next].child);
            if (states[child] == kOpen) {
                whole_.losses.push_back({nodes_[node].id, 0, "it uses itself; that use is left out"});
                // Cheaper than erasing in the middle.
                uses[next] = uses.back();
                uses.pop_back();
                continue;
            }
            ++next;
            if (states[child] == kNew) {
                states[child] = kOpen;
                path.emplace_back(child, 0);
            }
        }
    }

    std::size_t PlaceOf(const Key& key, const Transform& turn, const std::string& id) {
        const auto [place, isNew] = places_.emplace(key, whole_.products.size());
        if (isNew) {
            WholeProduct product;
            std::string name = id.empty() ? nodes_[key.node].id : id;
            if (!IsIdentity(turn)) { name += Determinant(turn) < 0 ? " mirrored" : " scaled"; }
            product.name = UniqueName(name);
            product.file = nodes_[key.node].file;
            product.turn = turn;
            product.style = key.style;
            product.context = key.context;
            whole_.products.push_back(std::move(product));
            nodeOf_.push_back(key.node);
        }
        return place->second;
    }

    void Fill(std::size_t place) {
        const Node& node = nodes_[nodeOf_[place]];
        const Transform turn = whole_.products[place].turn;
        const std::uint64_t style = whole_.products[place].style;
        std::vector<WholeUse> uses;
        uses.reserve(node.uses.size());
        for (const FileUse& use : node.uses) {
            Transform rigid;
            Transform rest;
            Split(turn * use.at, &rigid, &rest);
            Key child{Origin(use.child), RoundedOf(rest), use.style != 0 ? use.style : style, use.context};
            // These numbers mean nothing in another file.
            if (nodes_[child.node].file != node.file) { child.style = child.context = 0; }
            uses.push_back({PlaceOf(child, rest, nodes_[use.child].id), rigid});
        }
        TakeShape(place, node, &uses);
        whole_.products[place].uses = std::move(uses);
    }

    // In the viewer's form a product has a file or components, so the shape of one with both becomes one more
    // component. Surfaces beside solids are mostly construction geometry; as parts of their own they can be
    // told from the body.
    void TakeShape(std::size_t place, const Node& node, std::vector<WholeUse>* uses) {
        std::vector<ShapeItem> solids;
        std::vector<ShapeItem> surfaces;
        for (const ShapeItem& item : node.shape) { (item.isSurface ? surfaces : solids).push_back(item); }
        if (solids.empty()) { std::swap(solids, surfaces); }
        const bool isPlain = surfaces.empty() && uses->empty();
        if (isPlain) {
            whole_.products[place].shape = std::move(solids);
            return;
        }
        const auto add = [&](std::vector<ShapeItem> shape, const char* what) {
            WholeProduct part;
            part.name = UniqueName(whole_.products[place].name + what);
            part.file = node.file;
            part.turn = whole_.products[place].turn;
            part.style = whole_.products[place].style;
            part.context = whole_.products[place].context;
            part.shape = std::move(shape);
            uses->push_back({whole_.products.size(), {}});
            whole_.products.push_back(std::move(part));
            // It has no uses to fill in.
            nodeOf_.push_back(emptyNode_);
        };
        if (!solids.empty()) { add(std::move(solids), " shape"); }
        for (ShapeItem& item : surfaces) { add({item}, " surface"); }
    }

    std::string UniqueName(const std::string& wanted) {
        std::string name = ViewerName(wanted);
        if (name.empty()) { name = "part"; }
        if (names_.insert(name).second) { return name; }
        std::size_t& next = nextNumber_[name];
        for (;;) {
            const std::string numbered = name + " (" + std::to_string(++next + 1) + ")";
            if (names_.insert(numbered).second) { return numbered; }
        }
    }

    std::vector<Node> nodes_;
    Whole& whole_;
    std::vector<std::size_t> origins_; // of nodes
    std::vector<std::size_t> nodeOf_;  // of products
    std::map<Key, std::size_t> places_;
    std::set<std::string> names_;
    std::map<std::string, std::size_t> nextNumber_;
    std::size_t emptyNode_ = kNone; // without shape and uses
};

} // namespace

std::string ViewerName(std::string_view name) {
    std::string result;
    for (const char c : name) {
        if (c == '\'' || c == '"') { continue; }
        const bool isOdd =
            c == ',' || c == ';' || static_cast<unsigned char>(c) < ' ' || c == 0x7F || c == '\\';
        result.push_back(isOdd ? '_' : c);
    }
    while (!result.empty() && result.back() == ' ') { result.pop_back(); }
    result.erase(0, std::min(result.find_first_not_of(' '), result.size()));
    result.resize(ClippedUtf8(result, kLongestName).size());
    return result;
}

std::vector<std::size_t> PlacesOf(const Whole& whole) {
    // Parents before their children.
    std::vector<std::size_t> waiting(whole.products.size());
    for (const WholeProduct& product : whole.products) {
        for (const WholeUse& use : product.uses) { ++waiting[use.child]; }
    }
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
    std::vector<std::size_t> places(whole.products.size());
    if (!places.empty()) { places[whole.root] = 1; }
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        if (waiting[i] == 0) { open.push_back(i); }
    }
    while (!open.empty()) {
        const std::size_t product = open.back();
        open.pop_back();
        for (const WholeUse& use : whole.products[product].uses) {
            places[use.child] += std::min(places[product], kMost - places[use.child]);
            if (--waiting[use.child] == 0) { open.push_back(use.child); }
        }
    }
    return places;
}

Whole LoadWhole(const std::string& path, const std::atomic<bool>* cancel) {
    Whole whole;
    std::size_t root = 0;
    std::vector<Node> nodes = WholeReader(&whole, cancel).Run(path, &root);
    if (!whole.error.empty()) { return whole; }
    TreeMaker(std::move(nodes), &whole).Run(root);
    return whole;
}

} // namespace tarnwick::prepare
