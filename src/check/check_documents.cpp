// STEP XML: reads the documents as the load does, then goes through their tags once more with the states of
// that reader, to find where it waits for a tag that doesn't come.

#include "check/check_documents.h"

#include "platform/paths.h"
#include "prepare/xml/xml_structure.h"
#include "text/look_up.h"
#include "text/text_file.h"
#include "xml/stpx_document.h"
#include "xml/stpx_driver.h"
#include "xml/stpx_file.h"
#include "xml/stpx_scan.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace tarnwick {

namespace {

using std::string_view;

// Replaces an "&" on which the load would stand still.
constexpr char kStop = '\x1A';
constexpr string_view kAmpersand = "&amp;";

enum class State : std::uint8_t {
    kStart,
    kContainer,
    kPart,
    kView,
    kProperty,
    kRelation,
    kPlacement,
    kAssignment,
    kFile,
    kFileId,
    kLocations,
    kDocument,
    kVersion,
    kDefinition,
    kFiles,
    kDone
};

// The tags that take the reader from one state to another. It passes over all others.
struct Move {
    State from;
    string_view tag;
    State to;
};
constexpr Move kMoves[] = {
    {State::kStart, "<DataContainer", State::kContainer},
    {State::kContainer, "<Part", State::kPart},
    {State::kContainer, "<File", State::kFile},
    {State::kContainer, "<Document", State::kDocument},
    {State::kContainer, "</DataContainer", State::kDone},
    {State::kPart, "<PartView", State::kView},
    {State::kPart, "</Part", State::kContainer},
    {State::kView, "<ShapeDependentProperty", State::kProperty},
    {State::kView, "<ViewOccurrenceRelationship", State::kRelation},
    {State::kView, "<DocumentAssignment", State::kAssignment},
    {State::kView, "</PartView", State::kPart},
    {State::kProperty, "</ShapeDependentProperty", State::kView},
    {State::kRelation, "<Placement", State::kPlacement},
    {State::kRelation, "</ViewOccurrenceRelationship", State::kView},
    {State::kPlacement, "</Placement", State::kRelation},
    {State::kAssignment, "</DocumentAssignment", State::kView},
    {State::kFile, "<Id", State::kFileId},
    {State::kFile, "<Locations", State::kLocations},
    {State::kFile, "</File", State::kContainer},
    {State::kFileId, "</Id", State::kFile},
    {State::kLocations, "</Locations", State::kFile},
    {State::kDocument, "<DocumentVersion", State::kVersion},
    {State::kDocument, "</Document", State::kContainer},
    {State::kVersion, "<DocumentDefinition", State::kDefinition},
    {State::kVersion, "</DocumentVersion", State::kDocument},
    {State::kDefinition, "<Files", State::kFiles},
    {State::kDefinition, "</DocumentDefinition", State::kVersion},
    {State::kFiles, "</Files", State::kDefinition},
};

// Past the ">" of the tag at `p`; one in quotes doesn't end it.
const char* TagEnd(const char* p, const char* end) {
    char quote = '\0';
    for (; p < end; ++p) {
        if (quote != '\0') {
            if (*p == quote) { quote = '\0'; }
        } else if (*p == '"' || *p == '\'') {
            quote = *p;
        } else if (*p == '>') {
            return p + 1;
        }
    }
    return end;
}

class TagCheck {
public:
    TagCheck(const char* text, std::size_t size, const char* problem, std::vector<Finding>* findings)
        : text_(text), end_(text + size), problem_(problem),
          findings_(*findings), scan_{text, text + size, ""} {}

    void Run() {
        while (state_ != State::kDone) {
            const bool isScanned =
                state_ == State::kStart ? ScanTagName(&scan_) : ScanTagWithAttributes(&scan_);
            if (!isScanned) { break; }
            // The reader looks for the attributes of a tag without any in what follows.
            const char* const tagEnd = TagEnd(scan_.tag.data(), end_);
            if (state_ != State::kStart && scan_.at >= tagEnd) {
                Add(FindingKind::kDocument, scan_.tag.data(),
                    "the tag " + Quoted(scan_.tag.data(), tagEnd) +
                        " has a blank or line end after its name or last attribute: the reader goes on into "
                        "what follows it");
            }
            last_ = scan_.tag.data();
            Step();
        }
        if (problem_ != nullptr) { TellProblem(); }
    }

private:
    void Add(FindingKind kind, const char* place, std::string text) {
        findings_.push_back(
            {.kind = kind, .offset = static_cast<std::int32_t>(place - text_), .text = std::move(text)});
    }
    std::string Quoted(const char* tag, const char* tagEnd) const {
        constexpr std::size_t kLongest = 100;
        return std::string(tag, static_cast<std::size_t>(tagEnd - tag)).substr(0, kLongest);
    }

    void Step() {
        if (state_ == State::kPart && scan_.tag == "<Name") { return CheckName(); }
        if (state_ == State::kView && scan_.tag == "<Occurrence") { CheckNamed(); }
        if (state_ == State::kRelation && scan_.tag == "<Related") { hasRelated_ = true; }
        if (state_ == State::kPlacement && scan_.tag == "<RotationMatrix") { hasRotation_ = true; }
        if (state_ == State::kPlacement && scan_.tag == "<TranslationVector") { hasTranslation_ = true; }
        const auto* const move = std::find_if(std::begin(kMoves), std::end(kMoves), [this](const Move& m) {
            return m.from == state_ && m.tag == scan_.tag;
        });
        if (move == std::end(kMoves)) { return; }
        const bool opens = scan_.tag[1] != '/';
        if (opens) {
            opener_ = scan_.tag.data();
            const char* const tagEnd = TagEnd(opener_, end_);
            if (tagEnd - opener_ > 1 && tagEnd[-2] == '/') { CheckEmpty(move->tag, tagEnd); }
        }
        if (move->to == State::kPart && opens) { nameState_ = NameState::kNone; }
        if (move->to == State::kView && state_ == State::kPart) { CheckNamed(); }
        if (move->to == State::kRelation && opens) {
            relation_ = opener_;
            hasRelated_ = hasPlacement_ = hasRotation_ = hasTranslation_ = isReference_ = false;
        }
        if (move->to == State::kPlacement) { hasPlacement_ = true; }
        if (state_ == State::kRelation && !opens) { CheckRelation(); }
        state_ = move->to;
    }

    void CheckName() {
        const char* const name = scan_.tag.data();
        nameState_ = NameState::kOther;
        if (!ScanTagName(&scan_)) { return; }
        if (scan_.tag == "<CharacterString") {
            nameState_ = NameState::kRead;
            return;
        }
        Add(FindingKind::kDocument, name,
            "the name of this Part is in " + Quoted(scan_.tag.data(), TagEnd(scan_.tag.data(), end_)) +
                ": only a <CharacterString> right in <Name> is read");
    }

    // What is read of a view belongs to the part whose name was read last.
    void CheckNamed() {
        if (nameState_ != NameState::kNone) { return; }
        nameState_ = NameState::kOther;
        Add(FindingKind::kDocument, last_,
            "the Part of this view has no Name before it: the view is taken for one of the part before");
    }

    // The reader knows no empty element: it waits for the end tag.
    void CheckEmpty(string_view tag, const char* tagEnd) {
        if (tag == "<Placement") {
            isReference_ = true;
            Add(FindingKind::kUse, opener_,
                "its placement is a reference, " + Quoted(opener_, tagEnd) +
                    ": what stands from here to the next </Placement> isn't read");
            return;
        }
        Add(FindingKind::kDocument, opener_,
            Quoted(opener_, tagEnd) + " is an empty element: the reader waits for </" +
                std::string(tag.substr(1)) + ">, and passes over what stands before");
    }

    void CheckRelation() {
        if (isReference_) { return; }
        const char* const what = !hasRelated_       ? "no Related"
                                 : !hasPlacement_   ? "no Placement"
                                 : !hasRotation_    ? "no RotationMatrix in its Placement"
                                 : !hasTranslation_ ? "no TranslationVector in its Placement"
                                                    : nullptr;
        if (what == nullptr) { return; }
        Add(FindingKind::kUse, relation_, std::string("the use has ") + what + ": it isn't drawn");
    }

    // Why the document is given up, where no finding tells it.
    void TellProblem() {
        if (std::any_of(findings_.begin(), findings_.end(), [](const Finding& finding) {
                return finding.kind == FindingKind::kDocument || finding.kind == FindingKind::kUse;
            })) {
            return;
        }
        std::string text = problem_;
        if (state_ == State::kStart) { text = "it has no <DataContainer>"; }
        Add(FindingKind::kDocument, last_, "the document is given up here: " + text);
    }

    enum class NameState : std::uint8_t { kNone, kRead, kOther };

    const char* const text_;
    const char* const end_;
    const char* const problem_;
    std::vector<Finding>& findings_;
    StpxScan scan_;
    State state_ = State::kStart;
    const char* opener_ = text_;   // the tag that led into the state
    const char* relation_ = text_; // that of the use
    const char* last_ = text_;     // the last tag
    NameState nameState_ = NameState::kNone;
    bool hasRelated_ = false;
    bool hasPlacement_ = false;
    bool isReference_ = false;
    bool hasRotation_ = false;
    bool hasTranslation_ = false;
};

class DocumentCheck {
public:
    explicit DocumentCheck(DocumentArchive* archive) : archive_(archive) {
        assemblies_.Allocate();
        parts_.Allocate();
    }

    CheckedDocuments Run(const std::string& path, const char* rootName) {
        if (archive_ == nullptr) { folder_ = FolderOf(path); }
        ProductNode* root = nullptr;
        Read(path, "", &root);
        std::unordered_set<std::string> read{path};
        for (std::int32_t i = 0; i < assemblies_.Count(); ++i) {
            const ProductNode& product = *assemblies_[i];
            if (!IsXmlFileName(product.fileName)) {
                Add(FindingKind::kUnread, "the file '" + std::string(product.fileName) + "' of product '" +
                                              product.name + "' has neither the extension stpx nor stpxz");
                continue;
            }
            const std::string next = PathOf(product.fileName);
            ProductNode* ignored = nullptr;
            if (read.insert(next).second) { Read(next, product.name, &ignored); }
        }
        if (rootName != nullptr && root != nullptr) {
            if (ProductNode* const child = FindChildByName(*root, rootName)) { root = child; }
        }
        if (root == nullptr && !out_.paths.empty() && out_.findings.empty()) {
            Add(FindingKind::kUse, "the document has no root product");
        }
        TakeParts();
        if (root != nullptr) { WalkTree(*root); }
        return std::move(out_);
    }

private:
    std::string PathOf(std::string name) const {
        if (archive_ != nullptr) { return name; }
        std::replace(name.begin(), name.end(), '\\', '/');
        return folder_ + name;
    }

    void Add(FindingKind kind, std::string text) {
        out_.findings.push_back({.kind = kind, .text = std::move(text)});
    }

    void Read(const std::string& path, const std::string& product, ProductNode** root) {
        TextMemory memory;
        TextFile file = OpenStpxFile(path);
        if (archive_ != nullptr) {
            file.text = archive_->ReadMember(path.c_str(), memory, &file.size, &file.problem);
        } else if (ReadTextFile(&file, &memory) != TextFileResult::kRead) {
            file.text = nullptr;
        }
        if (file.text == nullptr) {
            (file.problem == kNeedsMemory ? out_.tooLarge : out_.unread).push_back({path, product});
            return;
        }
        const auto number = static_cast<std::int32_t>(out_.paths.size());
        out_.paths.push_back(path);
        const string_view text(file.text, file.size);
        prepare::FileStructure truth;
        std::string error;
        const bool isWellFormed = prepare::ReadXmlStructure(text, &truth, &error) && error.empty();
        if (!isWellFormed) { truth = {}; }
        const std::size_t stops = MarkStops(file.text, file.size);
        StpxDocument document;
        document.text = file.text;
        document.size = file.size;
        document.name = path.c_str();
        const char* const problem = ReadStpxDocument(document, 0, assemblies_, parts_, arena_);
        std::vector<Finding> findings;
        if (!isWellFormed) {
            findings.push_back(
                {.kind = FindingKind::kDocument, .text = "it isn't well-formed XML: " + error});
        }
        if (stops > 0) { FindStops(text, document, &findings); }
        TagCheck(file.text, file.size, isWellFormed ? problem : nullptr, &findings).Run();
        if (problem == nullptr) { HoldAgainst(truth, document, &findings); }
        if (isWellFormed && truth.products.empty()) {
            findings.push_back({.kind = FindingKind::kNoShape, .text = "the document holds no part"});
        }
        *root = document.root;
        FindLines(text, &findings);
        for (Finding& finding : findings) {
            finding.file = number;
            out_.findings.push_back(std::move(finding));
        }
    }

    // Replaces each "&" in the text of an element except that of "&amp;". Returns how many there were.
    static std::size_t MarkStops(char* text, std::size_t size) {
        std::size_t stops = 0;
        const char* const end = text + size;
        for (char* p = text; p < end; ++p) {
            if (*p == '<') {
                p += TagEnd(p, end) - p - 1;
            } else if (*p == '&' &&
                       !string_view(p, static_cast<std::size_t>(end - p)).starts_with(kAmpersand)) {
                *p = kStop;
                ++stops;
            }
        }
        return stops;
    }

    // The "&" in texts that the reader takes: names.
    static void FindStops(string_view text, const StpxDocument& document, std::vector<Finding>* findings) {
        std::size_t from = 0;
        for (const ProductNode* const product : document.products) {
            if (product == nullptr || std::strchr(product->name, kStop) == nullptr) { continue; }
            const std::size_t place = text.find(kStop, from);
            if (place == string_view::npos) { return; }
            from = text.find('<', place);
            findings->push_back({.kind = FindingKind::kStands,
                                 .offset = static_cast<std::int32_t>(place),
                                 .text = "a name holds an \"&\" that isn't \"&amp;\": the load stands still "
                                         "on it for ever"});
        }
    }

    // Uses and files of the document that the reader hasn't taken, where no tag tells why.
    void HoldAgainst(const prepare::FileStructure& truth, const StpxDocument& document,
                     std::vector<Finding>* findings) {
        std::size_t wanted = 0;
        std::unordered_map<std::string, std::string> files;
        const bool isTold = std::any_of(findings->begin(), findings->end(), [](const Finding& finding) {
            return finding.kind == FindingKind::kUse || finding.kind == FindingKind::kDocument;
        });
        for (const prepare::FileProduct& product : truth.products) {
            wanted += product.uses.size();
            if (!product.uses.empty()) { saysMore_.insert({product.name, product.id}); }
            if (!product.files.empty()) { files[product.name] = files[product.id] = product.files.front(); }
        }
        std::size_t read = 0;
        std::unordered_set<const ProductNode*> seen;
        for (const ProductNode* const product : document.products) {
            if (product == nullptr || !seen.insert(product).second) { continue; }
            read += static_cast<std::size_t>(product->occurrenceCount);
            for (std::int32_t i = 0; i < product->occurrenceCount; ++i) {
                const Occurrence& use = *product->occurrences[i];
                if (use.child != nullptr) { continue; }
                findings->push_back({.kind = FindingKind::kUse,
                                     .text = std::string("product '") + product->name + "' uses '" +
                                             (use.relatedUid != nullptr ? use.relatedUid : "") +
                                             "', which is no product's"});
            }
            const auto file = files.find(product->name);
            if (file == files.end() || product->fileName != nullptr) { continue; }
            saysMore_.insert(product->name);
            if (isTold) { continue; }
            findings->push_back({.kind = FindingKind::kNoFileName,
                                 .text = "the file '" + file->second + "' of product '" + product->name +
                                         "' isn't found by the reader: it looks for a File right after the "
                                         "AssignedDocument, or else over Document, DocumentVersion, "
                                         "DocumentDefinition and DigitalFile"});
        }
        if (read < wanted && !isTold) {
            findings->push_back({.kind = FindingKind::kUse,
                                 .text = "the document holds " + std::to_string(wanted) + " uses, of which " +
                                         std::to_string(read) + " are read"});
        }
    }

    void TakeParts() {
        std::unordered_set<string_view> known;
        for (std::int32_t i = 0; i < parts_.Count(); ++i) {
            const ProductNode& product = *parts_[i];
            if (!known.insert(product.fileName).second) { continue; }
            out_.parts.push_back({PathOf(product.fileName), product.name});
        }
        std::sort(out_.parts.begin(), out_.parts.end(),
                  [](const DocumentFile& a, const DocumentFile& b) { return a.path < b.path; });
    }

    // Counts placed parts, and tells of products whose file hides their components.
    void WalkTree(const ProductNode& root) {
        // A product whose uses aren't read may have more than it seems.
        const bool isUseLost =
            std::any_of(out_.findings.begin(), out_.findings.end(),
                        [](const Finding& finding) { return finding.kind == FindingKind::kUse; });
        constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 2;
        std::unordered_map<const ProductNode*, std::int64_t> counts;
        std::vector<std::pair<const ProductNode*, std::int32_t>> open{{&root, 0}};
        counts[&root] = -1;
        const auto hasPart = [](const ProductNode& product) {
            return product.fileName != nullptr && !IsXmlByLastLetters(product.fileName);
        };
        while (!open.empty()) {
            auto& [product, next] = open.back();
            const bool isPart = hasPart(*product);
            if (isPart && next == 0 && product->occurrenceCount > 0) {
                Add(FindingKind::kHidden, std::string("product '") + product->name + "' has the file '" +
                                              product->fileName + "', which hides its " +
                                              std::to_string(product->occurrenceCount) + " components");
            }
            if (product->fileName == nullptr && product->occurrenceCount == 0 && !isUseLost &&
                !saysMore_.contains(product->name)) {
                Add(FindingKind::kNoShape,
                    std::string("product '") + product->name + "' has neither a file nor components");
            }
            if (!isPart && next < product->occurrenceCount) {
                const ProductNode* const child = product->occurrences[next++]->child;
                if (child != nullptr && counts.try_emplace(child, -1).second) { open.emplace_back(child, 0); }
                continue;
            }
            std::int64_t sum = isPart || product->occurrenceCount == 0 ? 1 : 0;
            for (std::int32_t i = 0; !isPart && i < product->occurrenceCount; ++i) {
                const auto child = counts.find(product->occurrences[i]->child);
                if (child != counts.end() && child->second > 0) {
                    sum = std::min(kMost, sum + child->second);
                }
            }
            counts[product] = sum;
            open.pop_back();
        }
        out_.placedParts = counts[&root];
    }

    DocumentArchive* archive_;
    std::string folder_;
    NamedProductTable assemblies_;
    ProductTable parts_;
    Arena arena_;
    CheckedDocuments out_;
    std::unordered_set<std::string> saysMore_; // products of which a document says more than is read
};

} // namespace

CheckedDocuments CheckDocuments(const std::string& path, const char* rootName, DocumentArchive* archive) {
    return DocumentCheck(archive).Run(path, rootName);
}

} // namespace tarnwick
