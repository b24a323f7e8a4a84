#include "tools/make/document.h"

#include "tools/make/output.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarnwick::make {

namespace {

// Written in one pass, after one that gives every occurrence its number.
class DocumentWriter {
public:
    DocumentWriter(const DocumentSet& set, ByteSink* sink) : set_(set), out_(set.route, sink) {}

    void Write(std::size_t top) {
        AddEntry({false, top, {}});
        NumberUses(0);
        out_.Begin(kProgram);
        for (std::size_t i = 0; i < entries_.size(); ++i) { WriteEntry(i); }
        out_.End();
    }

private:
    struct Entry {
        bool ofPart = false;
        std::size_t number = 0;               // in parts or nodes
        std::vector<std::size_t> occurrences; // their numbers in this document
        std::size_t firstUse = 0;             // the number of its own first use; the others follow
    };

    const Machine::Node& Node(const Entry& e) const { return set_.machine.nodes[e.number]; }
    const Machine::Part& Part(const Entry& e) const { return set_.machine.parts[e.number]; }
    bool IsElsewhere(std::size_t entry) const {
        const Entry& e = entries_[entry];
        return e.ofPart || (entry != 0 && set_.ownDocument[e.number]);
    }
    std::string FileOf(const Entry& e) const {
        return e.ofPart ? Part(e).stem + set_.partSuffix : FileStem(Node(e)) + set_.documentSuffix;
    }

    std::size_t AddEntry(Entry entry) {
        entries_.push_back(std::move(entry));
        return entries_.size() - 1;
    }
    std::size_t EntryOf(const Machine::Use& use) {
        // No node is used twice.
        if (!use.ofPart) { return AddEntry({false, use.number, {}}); }
        const auto [place, isNew] = partEntries_.emplace(use.number, entries_.size());
        if (isNew) { AddEntry({true, use.number, {}}); }
        return place->second;
    }
    void NumberUses(std::size_t entry) {
        const Machine::Node& node = Node(entries_[entry]);
        entries_[entry].firstUse = uses_ + 1;
        std::vector<std::size_t> below;
        for (const Machine::Use& use : node.uses) {
            const std::size_t child = EntryOf(use);
            entries_[child].occurrences.push_back(++uses_);
            if (!IsElsewhere(child)) { below.push_back(child); }
        }
        for (const std::size_t child : below) { NumberUses(child); }
    }

    void WriteEntry(std::size_t entry) {
        const Entry& e = entries_[entry];
        XmlPart part{e.ofPart ? Part(e).id : Node(e).id, e.occurrences, "", e.firstUse, {}};
        if (IsElsewhere(entry)) {
            part.file = FileOf(e);
        } else {
            for (const Machine::Use& use : Node(e).uses) { part.uses.push_back(use.at); }
        }
        out_.AddPart(part);
    }

    const DocumentSet& set_;
    XmlDocument out_;
    std::vector<Entry> entries_; // the node of the document first
    std::unordered_map<std::size_t, std::size_t> partEntries_;
    std::size_t uses_ = 0;
};

// The nodes below the top, level by level.
std::vector<std::size_t> NodesByLevel(const Machine& machine) {
    std::vector<std::size_t> nodes{0};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (const Machine::Use& use : machine.nodes[nodes[i]].uses) {
            if (!use.ofPart) { nodes.push_back(use.number); }
        }
    }
    nodes.erase(nodes.begin());
    return nodes;
}

} // namespace

std::vector<bool> ChooseDocuments(const Machine& machine, int count) {
    std::vector<bool> own(machine.nodes.size());
    const std::vector<std::size_t> nodes = NodesByLevel(machine);
    for (std::size_t i = 0; i < nodes.size() && i < static_cast<std::size_t>(count); ++i) {
        own[nodes[i]] = true;
    }
    return own;
}

std::vector<bool> ChooseDocuments(const Machine& machine) {
    std::vector<bool> own;
    for (const Machine::Node& node : machine.nodes) { own.push_back(!node.stem.empty()); }
    return own;
}

int MostDocuments(const Machine& machine) {
    return static_cast<int>(machine.nodes.size()) - 1;
}

void WriteDocument(const DocumentSet& set, std::size_t node, ByteSink* sink) {
    DocumentWriter(set, sink).Write(node);
}

} // namespace tarnwick::make
