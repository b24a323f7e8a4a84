#include "tools/make/document.h"

#include "write/real_text.h"

#include <unordered_map>

namespace tarnwick::make {

namespace {

class XmlText {
public:
    explicit XmlText(ByteSink* sink) : sink_(*sink) { buffer_.reserve(kBlockSize + (1 << 12)); }

    // A line, indented by so many levels. Pieces: text, numbers, Vec3.
    template <class... Pieces>
    void Line(std::size_t level, const Pieces&... pieces) {
        buffer_.append(2 * level, ' ');
        (Put(pieces), ...);
        buffer_ += '\n';
        if (buffer_.size() >= kBlockSize) { Flush(); }
    }
    void Flush() {
        sink_.Write(buffer_);
        buffer_.clear();
    }

private:
    void Put(std::string_view text) { buffer_ += text; }
    void Put(std::size_t number) { buffer_ += std::to_string(number); }
    void Put(const Vec3& v) {
        AppendReal(v.x, &buffer_);
        buffer_ += ' ';
        AppendReal(v.y, &buffer_);
        buffer_ += ' ';
        AppendReal(v.z, &buffer_);
    }

    static constexpr std::size_t kBlockSize = 1 << 20;
    ByteSink& sink_;
    std::string buffer_;
};

// Ids and names are plain letters and digits, so no text here has anything to escape. Readers of such
// documents may want a tag to end right behind its last attribute, and attributes to stand on one line.
class DocumentWriter {
public:
    DocumentWriter(const DocumentSet& set, ByteSink* sink) : set_(set), out_(sink) {}

    void Write(int top) {
        AddEntry({false, top, {}});
        NumberUses(0);
        out_.Line(0, R"(<?xml version="1.0" encoding="UTF-8"?>)");
        out_.Line(0, R"(<n0:Uos xmlns:n0="http://standards.iso.org/iso/ts/10303/-3001/-ed-1/tech/xml-schema/)"
                     R"(bo_model" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">)");
        // The time is a constant: the same options must give the same bytes.
        out_.Line(1, "<Header>");
        out_.Line(2, "<TimeStamp>2024-01-01T00:00:00</TimeStamp>");
        out_.Line(2, "<PreprocessorVersion>tarnwick-make</PreprocessorVersion>");
        out_.Line(1, "</Header>");
        out_.Line(1, R"(<DataContainer xsi:type="n0:AP242DataContainer">)");
        for (std::size_t i = 0; i < entries_.size(); ++i) { WritePart(i); }
        if (set_.route == FileRoute::kDocuments) { WriteDocumentsAndFiles(); }
        out_.Line(1, "</DataContainer>");
        out_.Line(0, "</n0:Uos>");
        out_.Flush();
    }

private:
    struct Entry {
        bool ofPart;
        int number;                           // in parts or nodes
        std::vector<std::size_t> occurrences; // their numbers in this document
        std::size_t firstUse = 0;             // the number of its own first use; the others follow
    };

    const Machine::Node& Node(const Entry& e) const {
        return set_.machine.nodes[static_cast<std::size_t>(e.number)];
    }
    const Machine::Part& Part(const Entry& e) const {
        return set_.machine.parts[static_cast<std::size_t>(e.number)];
    }
    const std::string& IdOf(const Entry& e) const { return e.ofPart ? Part(e).id : Node(e).id; }
    bool IsElsewhere(std::size_t entry) const {
        const Entry& e = entries_[entry];
        return e.ofPart || (entry != 0 && set_.ownDocument[static_cast<std::size_t>(e.number)]);
    }
    std::string FileOf(const Entry& e) const {
        return e.ofPart ? Part(e).stem + set_.partSuffix : FileStem(Node(e)) + set_.documentSuffix;
    }

    std::size_t AddEntry(Entry entry) {
        entries_.push_back(std::move(entry));
        return entries_.size() - 1;
    }
    std::size_t EntryOf(const Machine::Use& use) {
        if (!use.ofPart) {
            // No node is used twice.
            return AddEntry({false, use.number, {}});
        }
        auto [place, isNew] = partEntries_.emplace(use.number, entries_.size());
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

    void WritePart(std::size_t entry) {
        const Entry& e = entries_[entry];
        const std::size_t number = entry + 1;
        const bool elsewhere = IsElsewhere(entry);
        out_.Line(2, R"(<Part uid="p)", number, R"(">)");
        out_.Line(3, R"(<Id id=")", IdOf(e), R"("/>)");
        out_.Line(3, "<Name>");
        out_.Line(4, "<CharacterString>", IdOf(e), "</CharacterString>");
        out_.Line(3, "</Name>");
        out_.Line(3, "<Versions>");
        out_.Line(4, R"(<PartVersion uid="pv)", number, R"(">)");
        out_.Line(5, "<Views>");
        out_.Line(6, R"(<PartView uid="v)", number, R"(">)");
        for (const std::size_t occurrence : e.occurrences) {
            out_.Line(7, R"(<Occurrence uid="o)", occurrence, R"(" xsi:type="n0:SingleOccurrence"><Id id=")",
                      occurrence, R"("/></Occurrence>)");
        }
        if (elsewhere) {
            WriteAssignment(number);
        } else {
            WriteUses(Node(e), e.firstUse);
        }
        out_.Line(6, "</PartView>");
        out_.Line(5, "</Views>");
        out_.Line(4, "</PartVersion>");
        out_.Line(3, "</Versions>");
        out_.Line(2, "</Part>");
        // Right behind its part, where a reader can tell at once whose it is.
        if (elsewhere && set_.route == FileRoute::kDirect) { WriteFile(number, FileOf(e)); }
    }

    void WriteAssignment(std::size_t number) {
        const bool direct = set_.route == FileRoute::kDirect;
        out_.Line(7, R"(<DocumentAssignment uid="da)", number, R"(">)");
        out_.Line(8, R"(<AssignedDocument uidRef=")", direct ? "f" : "dv", number, R"("/>)");
        out_.Line(7, "</DocumentAssignment>");
    }

    void WriteUses(const Machine::Node& node, std::size_t firstUse) {
        for (std::size_t i = 0; i < node.uses.size(); ++i) {
            const Placement& at = node.uses[i].at;
            const std::size_t number = firstUse + i;
            out_.Line(7, R"(<ViewOccurrenceRelationship uid="u)", number,
                      R"(" xsi:type="n0:NextAssemblyOccurrenceUsage">)");
            out_.Line(8, R"(<Related uidRef="o)", number, R"("/>)");
            out_.Line(8, "<Placement>");
            // Column by column.
            out_.Line(9, "<RotationMatrix>", at.x, " ", Cross(at.z, at.x), " ", at.z, "</RotationMatrix>");
            out_.Line(9, "<TranslationVector>", at.origin, "</TranslationVector>");
            out_.Line(8, "</Placement>");
            out_.Line(7, "</ViewOccurrenceRelationship>");
        }
    }

    void WriteFile(std::size_t number, const std::string& name) {
        out_.Line(2, R"(<File uid="f)", number, R"(" xsi:type="n0:DigitalFile">)");
        out_.Line(3, "<Id>");
        out_.Line(4, R"(<Identifier id=")", name, R"("/>)");
        out_.Line(3, "</Id>");
        out_.Line(2, "</File>");
    }

    void WriteDocumentsAndFiles() {
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            if (!IsElsewhere(i)) { continue; }
            out_.Line(2, R"(<Document uid="d)", i + 1, R"(">)");
            out_.Line(3, R"(<Id id=")", FileOf(entries_[i]), R"("/>)");
            out_.Line(3, "<Versions>");
            out_.Line(4, R"(<DocumentVersion uid="dv)", i + 1, R"(">)");
            out_.Line(5, "<Views>");
            out_.Line(6, R"(<DocumentDefinition uid="dd)", i + 1,
                      R"(" xsi:type="n0:DigitalDocumentDefinition">)");
            out_.Line(7, "<Files>");
            out_.Line(8, R"(<DigitalFile uidRef="f)", i + 1, R"("/>)");
            out_.Line(7, "</Files>");
            out_.Line(6, "</DocumentDefinition>");
            out_.Line(5, "</Views>");
            out_.Line(4, "</DocumentVersion>");
            out_.Line(3, "</Versions>");
            out_.Line(2, "</Document>");
        }
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            if (IsElsewhere(i)) { WriteFile(i + 1, FileOf(entries_[i])); }
        }
    }

    const DocumentSet& set_;
    XmlText out_;
    std::vector<Entry> entries_; // the node of the document first
    std::unordered_map<int, std::size_t> partEntries_;
    std::size_t uses_ = 0;
};

// The nodes below the top, level by level.
std::vector<int> NodesByLevel(const Machine& machine) {
    std::vector<int> nodes{0};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (const Machine::Use& use : machine.nodes[static_cast<std::size_t>(nodes[i])].uses) {
            if (!use.ofPart) { nodes.push_back(use.number); }
        }
    }
    nodes.erase(nodes.begin());
    return nodes;
}

} // namespace

std::vector<bool> ChooseDocuments(const Machine& machine, int count) {
    std::vector<bool> own(machine.nodes.size());
    const std::vector<int> nodes = NodesByLevel(machine);
    for (std::size_t i = 0; i < nodes.size() && i < static_cast<std::size_t>(count); ++i) {
        own[static_cast<std::size_t>(nodes[i])] = true;
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

void WriteDocument(const DocumentSet& set, int node, ByteSink* sink) {
    DocumentWriter(set, sink).Write(node);
}

} // namespace tarnwick::make
