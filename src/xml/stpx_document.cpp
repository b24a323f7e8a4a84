#include "xml/stpx_document.h"

#include "platform/append_pointer.h"
#include "platform/console.h"
#include "platform/within_memory.h"
#include "text/look_up.h"
#include "text/scan_reals.h"
#include "text/text_find.h"
#include "xml/stpx_scan.h"
#include "xml/uses_ahead.h"
#include "xml/usual_tags.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <optional>
#include <unordered_map>

namespace tarnwick {

namespace {

using std::string_view;

enum class State {
    kFindContainer,
    kContainer,
    kInPart,
    kInPartView,
    kCentreProperty,
    kFindContext,
    kInContext,
    kBoxProperty,
    kSkipProperty,
    kInRelation,
    kInPlacement,
    kInAssignment,
    kInFile,
    kInFileId,
    kInLocations,
    kInDocument,
    kInVersion,
    kInDefinition,
    kInFiles,
};

enum class PropertyKind { kNone, kCornerPoint, kBoundingBox };

// Uids and file names point into the text, or into the reader's own memory; both end with the reader.
struct AssignedDocument {
    ProductNode* product;
    string_view uid;
};

// A product that was in the table of assemblies before this document named it.
struct JoinedProduct {
    ProductNode former; // to go back to when the document is given up
    bool resolved = false;
};

// Successive uses by one product; a thread takes a few runs at a time.
struct Run {
    Occurrence* const* uses;
    std::int32_t count;
};
constexpr std::int32_t kLongestRun = 1024;

constexpr const char* kNoMemory = "no memory";
constexpr const char* kNoProduct = "a view belongs to no part with a name";
constexpr const char* kManyPoints = "a view has more points than a box";

class DocumentReader {
public:
    DocumentReader(StpxDocument& document, int boxMode, NamedProductTable& assemblies, ProductTable& parts,
                   Arena& arena)
        : document_(document), boxMode_(boxMode), assemblies_(assemblies), parts_(parts), arena_(arena),
          formerAssemblies_(assemblies.Count()),
          formerParts_(parts.Count()), scan_{document.text, document.text + document.size, document.name} {}

    const char* Read() {
        // An occurrence takes some hundred characters; room that isn't needed is never touched.
        constexpr std::size_t kUsualOccurrence = 400;
        occurrenceUids_.Reserve(document_.size / kUsualOccurrence);
        PrepareText(document_.text, document_.size);
        if (IsForHelpers() ? ScanWithHelpers() : ScanAll()) {
            ResolveOccurrences();
            if (resolvedDirectly_ == 1 || ResolveFileNames()) { return nullptr; }
        }
        Undo();
        return problem_ != nullptr ? problem_ : scan_.problem;
    }

private:
    bool IsForHelpers() const {
        return document_.helpers != nullptr && document_.helpers->AreFor(document_.size);
    }
    bool ScanWithHelpers();
    bool ScanAll();
    bool TakeUsualTags();
    bool TakeUsesAhead(UsualTags& tags);
    void StartRelation();
    bool Step();
    void StepContainer();
    bool StepPart();
    bool StepPartView();
    void StepProperty();
    bool StepContext();
    bool StepRelation();
    bool StepPlacement();
    bool StepFile();
    void StepDocument();
    bool ReadPartName();
    bool ReadNumbers(double* values, int count);
    bool ReadPoint();
    bool AddUse(string_view uid);
    bool AddKeptUse(const char* uid, std::size_t length);
    bool AddOccurrence();
    bool AppendOccurrence(Occurrence* occurrence);
    bool StoreBox();
    bool TakeIdentifier();
    bool NameFile(ProductNode* product, string_view fileName);
    bool AddPart(ProductNode* product, string_view fileName);
    bool AddAssembly(ProductNode* product, string_view fileName);
    void ResolveOccurrences();
    void FindChildren();
    void FindChildrenOf(Run run);
    bool ResolveFileNames();
    void Undo();

    bool Fail(const char* problem) {
        problem_ = problem;
        return false;
    }
    string_view Tag() const { return scan_.tag; }
    string_view Uid() const { return find::CutAtNul(scan_.uid); }

    StpxDocument& document_;
    const int boxMode_;
    NamedProductTable& assemblies_;
    ProductTable& parts_;
    Arena& arena_;
    Arena scratch_;
    const std::int32_t formerAssemblies_;
    const std::int32_t formerParts_;
    const char* problem_ = nullptr;

    StpxScan scan_;
    State state_ = State::kFindContainer;
    bool done_ = false;
    char textBuffer_[kTextRoom + 8]; // with the eight characters that may be read after a number
    string_view pointRefA_;
    string_view pointRefB_;
    string_view fileUid_;
    string_view versionUid_;
    string_view relatedUid_;
    float box_[6] = {};
    double rotationValues_[9] = {};
    double translationValues_[3] = {};
    const Occurrence* lastAhead_ = nullptr; // whose values these must become, read ahead; null for none
    ProductNode* currentProduct_ = nullptr; // kept after "</Part"
    bool productIsNew_ = false;
    std::int32_t pointCount_ = 0;
    std::int32_t viewOccurrences_ = 0;
    PropertyKind propertyKind_ = PropertyKind::kNone;
    const char* resumePosition_ = nullptr; // where to go back to after a look ahead
    int resolvedDirectly_ = -1;            // 1 once any file name was matched to the last assignment
    bool digitalFileSeen_ = false;
    bool hasRelated_ = false;
    bool hasRotation_ = false;
    bool hasTranslation_ = false;

    std::optional<UsesAhead> ahead_;
    LookUp<string_view, ProductNode*> occurrenceUids_; // the product whose view holds the occurrence
    std::vector<AssignedDocument> assignedDocuments_;
    LookUp<string_view, string_view> mapDV_DF_;       // document version to digital file
    LookUp<string_view, string_view> mapDF_Filename_; // file to file name
    std::unordered_map<ProductNode*, JoinedProduct> joined_;
    std::vector<Run> runs_; // of the uses whose children are looked for
};

bool DocumentReader::ScanWithHelpers() {
    ahead_.emplace(document_.text, scan_.end, document_.pieceBytes);
    bool scanned = false;
    bool enough = false;
    const auto scan = [&](bool isOwn) {
        if (!isOwn) { return ahead_->ReadPieces(); }
        enough = WithinMemory([&] { scanned = ScanAll(); });
        ahead_->Stop();
    };
    document_.helpers->Run(std::ref(scan)); // a reference, which needs no memory
    return enough && (!scanned || ahead_->HandOver(&arena_)) ? scanned : Fail(kNoMemory);
}

bool DocumentReader::ScanAll() {
    while (!done_) {
        if (!document_.plainly && !TakeUsualTags()) { return false; }
        const bool scanned =
            state_ == State::kFindContainer ? ScanTagName(&scan_) : ScanTagWithAttributes(&scan_);
        if (!scanned || !Step()) { return false; }
    }
    return true;
}

// Takes the tags that make up most of a large document, the uses of parts and their placements, as long as
// they have their usual form. The effect is that of Step.
bool DocumentReader::TakeUsualTags() {
    if (state_ != State::kInPartView && state_ != State::kInRelation && state_ != State::kInPlacement) {
        return true;
    }
    UsualTags tags(&scan_);
    string_view value;
    for (;;) {
        if (state_ == State::kInPartView) {
            if (ahead_.has_value() && !TakeUsesAhead(tags)) { return false; }
            if (TakeUse(tags, &value) && !AddUse(find::CutAtNul(value))) { return false; }
            if (!TakeRelationStart(tags)) { return true; }
            StartRelation();
        }
        if (state_ == State::kInRelation) {
            if (TakeRelated(tags, &value)) {
                relatedUid_ = value;
                hasRelated_ = true;
            }
            if (TakeRelationEnd(tags)) {
                state_ = State::kInPartView;
                if (!AddOccurrence()) { return false; }
                continue;
            }
            if (!tags.Take("<Placement>")) { return true; }
            state_ = State::kInPlacement;
        }
        if (TakeRotation(tags, &value)) {
            ScanReals(value, rotationValues_, 9);
            hasRotation_ = true;
            tags.Take("</RotationMatrix>");
        }
        if (TakeTranslation(tags, &value)) {
            ScanReals(value, translationValues_, 3);
            hasTranslation_ = true;
            tags.Take("</TranslationVector>");
        }
        if (!tags.Take("</Placement>")) { return true; }
        state_ = State::kInRelation;
    }
}

// Takes the next uses of a view as long as other threads have read them. The effect is the same as if they
// were read here.
bool DocumentReader::TakeUsesAhead(UsualTags& tags) {
    while (const UsesAhead::Use* const use = ahead_->Take(tags.Next())) {
        if (use->occurrence == nullptr) {
            if (!AddKeptUse(use->uid, use->length)) { return false; }
        } else {
            if (!AppendOccurrence(use->occurrence)) { return false; }
            lastAhead_ = use->occurrence;
        }
        tags.GoTo(ahead_->NextTag(*use));
    }
    return true;
}

// Begins a use. Numbers that can't be read will be those of the placement before.
void DocumentReader::StartRelation() {
    if (lastAhead_ != nullptr) {
        std::copy_n(lastAhead_->rotation, 9, rotationValues_);
        std::copy_n(lastAhead_->translation, 3, translationValues_);
        lastAhead_ = nullptr;
    }
    hasRelated_ = hasRotation_ = hasTranslation_ = false;
    state_ = State::kInRelation;
}

// What the current tag does in the current state. A tag that isn't listed does nothing.
bool DocumentReader::Step() {
    switch (state_) {
    case State::kFindContainer:
        if (Tag() == "<DataContainer") { state_ = State::kContainer; }
        return true;
    case State::kContainer:
        StepContainer();
        return true;
    case State::kInPart:
        return StepPart();
    case State::kInPartView:
        return StepPartView();
    case State::kCentreProperty:
    case State::kBoxProperty:
    case State::kSkipProperty:
        StepProperty();
        return true;
    case State::kFindContext:
    case State::kInContext:
        return StepContext();
    case State::kInRelation:
        return StepRelation();
    case State::kInPlacement:
        return StepPlacement();
    case State::kInAssignment:
        if (Tag() == "</DocumentAssignment") {
            state_ = State::kInPartView;
        } else if (Tag() == "<AssignedDocument") {
            assignedDocuments_.push_back({currentProduct_, Uid()});
        }
        return true;
    case State::kInFile:
    case State::kInFileId:
    case State::kInLocations:
        return StepFile();
    case State::kInDocument:
    case State::kInVersion:
    case State::kInDefinition:
    case State::kInFiles:
        break;
    }
    StepDocument();
    return true;
}

void DocumentReader::StepContainer() {
    if (Tag() == "<Part") {
        productIsNew_ = false;
        state_ = State::kInPart;
    } else if (Tag() == "<File") {
        fileUid_ = Uid();
        state_ = State::kInFile;
    } else if (Tag() == "<Document") {
        state_ = State::kInDocument;
    } else if (Tag() == "</DataContainer") {
        done_ = true;
    }
}

bool DocumentReader::StepPart() {
    if (Tag() == "<Name") { return ReadPartName(); }
    if (Tag() == "</Part") {
        document_.products.push_back(currentProduct_);
        state_ = State::kContainer;
    } else if (Tag() == "<PartView") {
        pointCount_ = 0;
        viewOccurrences_ = 0;
        state_ = State::kInPartView;
    }
    return true;
}

bool DocumentReader::StepPartView() {
    if (Tag() == "</PartView") {
        state_ = State::kInPart;
        return StoreBox();
    }
    if (Tag() == "<ShapeDependentProperty") {
        propertyKind_ = PropertyKind::kNone;
        pointRefA_ = pointRefB_ = {};
        state_ = State::kSkipProperty;
        const string_view type = find::CutAtNul(scan_.xsiType);
        if (type == "n0:CentreOfMass" && boxMode_ != 0) {
            state_ = State::kCentreProperty;
        } else if (type == "n0:BoundingBox" && boxMode_ > 0) {
            propertyKind_ = PropertyKind::kBoundingBox;
            state_ = State::kBoxProperty;
        }
    } else if (Tag() == "<ViewOccurrenceRelationship") {
        StartRelation();
    } else if (Tag() == "<Occurrence") {
        return AddUse(Uid());
    } else if (Tag() == "<DocumentAssignment") {
        state_ = State::kInAssignment;
    }
    return true;
}

// The properties of a view: which points its box has. Where these are follows in a context.
void DocumentReader::StepProperty() {
    if (Tag() == "</ShapeDependentProperty") {
        const bool complete =
            state_ == State::kCentreProperty
                ? propertyKind_ == PropertyKind::kCornerPoint && !pointRefA_.empty()
                : propertyKind_ == PropertyKind::kBoundingBox && !pointRefA_.empty() && !pointRefB_.empty();
        if (state_ != State::kSkipProperty) { resumePosition_ = scan_.at; }
        state_ = complete ? State::kFindContext : State::kInPartView;
    } else if (state_ == State::kCentreProperty) {
        if (Tag() == "<Id") {
            if (find::CutAtNul(scan_.id) == "bounding box corner point") {
                propertyKind_ = PropertyKind::kCornerPoint;
            }
        } else if (Tag() == "<CentrePoint") {
            pointRefA_ = Uid();
        }
    } else if (state_ == State::kBoxProperty) {
        if (Tag() == "<PointMin") {
            pointRefA_ = Uid();
        } else if (Tag() == "<PointMax") {
            pointRefB_ = Uid();
        }
    }
}

// Looks for the points of a property in the text after it.
bool DocumentReader::StepContext() {
    if (state_ == State::kFindContext) {
        if (Tag() == "<RepresentationContext") {
            state_ = State::kInContext;
        } else if (Tag() == "</DataContainer") {
            scan_.at = resumePosition_;
            state_ = State::kInPartView;
        }
        return true;
    }
    if (Tag() == "</RepresentationContext") {
        state_ = State::kFindContext;
        return true;
    }
    if (Tag() != "<RepresentationItem") { return true; }
    // An item without a uid matches an empty reference.
    const bool isA = Uid() == pointRefA_;
    if (!isA && Uid() != pointRefB_) { return true; }
    if (!ReadPoint()) { return false; }
    const bool found = propertyKind_ == PropertyKind::kCornerPoint ? isA : pointCount_ == 2;
    if (found) {
        scan_.at = resumePosition_;
        state_ = State::kInPartView;
    }
    return true;
}

bool DocumentReader::StepRelation() {
    if (Tag() == "</ViewOccurrenceRelationship") {
        state_ = State::kInPartView;
        return AddOccurrence();
    }
    if (Tag() == "<Related") {
        relatedUid_ = scan_.uid;
        hasRelated_ = true;
    } else if (Tag() == "<Placement") {
        state_ = State::kInPlacement;
    }
    return true;
}

bool DocumentReader::StepPlacement() {
    if (Tag() == "</Placement") {
        state_ = State::kInRelation;
    } else if (Tag() == "<RotationMatrix") {
        hasRotation_ = true;
        return ReadNumbers(rotationValues_, 9);
    } else if (Tag() == "<TranslationVector") {
        hasTranslation_ = true;
        return ReadNumbers(translationValues_, 3);
    }
    return true;
}

bool DocumentReader::StepFile() {
    if (state_ == State::kInLocations) {
        if (Tag() == "</Locations") { state_ = State::kInFile; }
    } else if (state_ == State::kInFileId) {
        if (Tag() == "</Id") {
            state_ = State::kInFile;
        } else if (Tag() == "<Identifier") {
            return TakeIdentifier();
        }
    } else if (Tag() == "</File") {
        state_ = State::kContainer;
    } else if (Tag() == "<Id") {
        state_ = State::kInFileId;
    } else if (Tag() == "<Locations") {
        state_ = State::kInLocations;
    }
    return true;
}

// Goes through a document down to the file of its definition, with a state for each level.
void DocumentReader::StepDocument() {
    struct Level {
        string_view close;
        State outer;
        string_view open;
        State inner;
    };
    static constexpr Level kLevels[] = {
        {"</Document", State::kContainer, "<DocumentVersion", State::kInVersion},
        {"</DocumentVersion", State::kInDocument, "<DocumentDefinition", State::kInDefinition},
        {"</DocumentDefinition", State::kInVersion, "<Files", State::kInFiles},
        {"</Files", State::kInDefinition, "<DigitalFile", State::kInFiles},
    };
    const Level& level = kLevels[static_cast<int>(state_) - static_cast<int>(State::kInDocument)];
    if (Tag() == level.close) {
        state_ = level.outer;
    } else if (Tag() == level.open) {
        if (state_ == State::kInDocument) { versionUid_ = Uid(); }
        if (state_ == State::kInFiles) {
            digitalFileSeen_ = true;
            mapDV_DF_.Add(versionUid_, Uid());
        }
        state_ = level.inner;
    }
}

// Reads the name of a part from the next element, unless that is another one. A part of a further document
// may be the product that asked for the document; the name tells.
bool DocumentReader::ReadPartName() {
    currentProduct_ = nullptr;
    if (!ScanTagName(&scan_)) { return false; }
    if (Tag() != "<CharacterString") { return true; }
    ++scan_.at;
    char buffer[kTagRoom];
    string_view name;
    if (!ReadElementText(&scan_, buffer, sizeof buffer, &name)) { return false; }
    name = find::CutAtNul(name);
    ProductNode* const known = assemblies_.FindByName(name);
    if (known != nullptr) {
        joined_.emplace(known, JoinedProduct{*known});
        currentProduct_ = known;
        return true;
    }
    ProductNode* const made = arena_.New<ProductNode>();
    const char* const copy = arena_.Copy(name.data(), name.size());
    if (made == nullptr || copy == nullptr) { return Fail(kNoMemory); }
    made->isRoot = 1;
    made->name = copy;
    currentProduct_ = made;
    productIsNew_ = true;
    return true;
}

// The numbers in the text of the current element. Values that can't be read keep what they were.
bool DocumentReader::ReadNumbers(double* values, int count) {
    ++scan_.at;
    string_view text;
    if (!ReadElementText(&scan_, textBuffer_, kTextRoom, &text)) { return false; }
    ScanReals(text, values, count);
    return true;
}

// Reads one point of a box from the first child of the current item, whatever that is called. The first point
// in the text has the minimums, the second the maximums.
bool DocumentReader::ReadPoint() {
    if (!ScanTagName(&scan_)) { return false; }
    ++scan_.at;
    string_view text;
    if (!ReadElementText(&scan_, textBuffer_, kTextRoom, &text)) { return false; }
    if (pointCount_ >= 2) { return Fail(kManyPoints); }
    float point[3] = {box_[pointCount_], box_[pointCount_ + 2], box_[pointCount_ + 4]};
    ScanReals(text, point, 3);
    for (int axis = 0; axis < 3; ++axis) { box_[pointCount_ + 2 * axis] = point[axis]; }
    ++pointCount_;
    return true;
}

bool DocumentReader::AddUse(string_view uid) {
    // A copy, so that all uids are close together in memory when they are looked up.
    const char* const copy = scratch_.Copy(uid.data(), uid.size());
    return copy != nullptr ? AddKeptUse(copy, uid.size()) : Fail(kNoMemory);
}

bool DocumentReader::AddKeptUse(const char* uid, std::size_t length) {
    if (currentProduct_ == nullptr) { return Fail(kNoProduct); }
    currentProduct_->isRoot = 0;
    occurrenceUids_.Add({uid, length}, currentProduct_);
    ++viewOccurrences_;
    return true;
}

bool DocumentReader::AddOccurrence() {
    if (!hasRelated_ || !hasRotation_ || !hasTranslation_) { return true; }
    const string_view related = find::CutAtNul(relatedUid_);
    Occurrence* const occurrence = arena_.New<Occurrence>();
    const char* const uid = arena_.Copy(related.data(), related.size());
    if (occurrence == nullptr || uid == nullptr) { return Fail(kNoMemory); }
    std::copy_n(rotationValues_, 9, occurrence->rotation);
    std::copy_n(translationValues_, 3, occurrence->translation);
    occurrence->relatedUid = uid;
    return AppendOccurrence(occurrence);
}

bool DocumentReader::AppendOccurrence(Occurrence* occurrence) {
    if (currentProduct_ == nullptr) { return Fail(kNoProduct); }
    ProductNode& parent = *currentProduct_;
    if (!AppendPointer(arena_, &parent.occurrences, &parent.occurrenceCapacity, &parent.occurrenceCount,
                       occurrence)) {
        return Fail(kNoMemory);
    }
    return true;
}

// A view with two points has a box, unless its product has components and is one itself.
bool DocumentReader::StoreBox() {
    if (currentProduct_ == nullptr) { return Fail(kNoProduct); }
    if (pointCount_ == 2 && (currentProduct_->occurrenceCount == 0 || viewOccurrences_ == 0)) {
        std::copy_n(box_, 6, currentProduct_->box);
        currentProduct_->hasBox = 1;
    }
    return true;
}

// Gives a file's name to the last part with a document, if that document is the file; else keeps the name.
bool DocumentReader::TakeIdentifier() {
    const string_view fileName = find::CutAtNul(scan_.id);
    ProductNode* const product = assignedDocuments_.empty() ? nullptr : assignedDocuments_.back().product;
    if (product == nullptr || assignedDocuments_.back().uid != fileUid_) {
        mapDF_Filename_.Add(fileUid_, fileName);
        return true;
    }
    resolvedDirectly_ = 1;
    if (!IsXmlByLastLetters(fileName)) { return AddPart(product, fileName); }
    return !productIsNew_ || AddAssembly(product, fileName);
}

bool DocumentReader::NameFile(ProductNode* product, string_view fileName) {
    product->fileName = arena_.Copy(fileName.data(), fileName.size());
    if (product->fileName == nullptr) { return Fail(kNoMemory); }
    return true;
}

bool DocumentReader::AddPart(ProductNode* product, string_view fileName) {
    if (!NameFile(product, fileName)) { return false; }
    parts_.Append(product);
    return true;
}

bool DocumentReader::AddAssembly(ProductNode* product, string_view fileName) {
    if (!NameFile(product, fileName)) { return false; }
    assemblies_.Append(product);
    return true;
}

// Finds the root and the child of every occurrence.
void DocumentReader::ResolveOccurrences() {
    if (occurrenceUids_.IsEmpty()) {
        document_.root = currentProduct_;
        return;
    }
    const ProductNode* former = nullptr;
    for (ProductNode* const product : document_.products) {
        if (product == nullptr) { break; }
        if (product->isRoot != 0) { document_.root = product; }
        // The occurrences of a product that is listed again already have their children.
        if (product == former) { continue; }
        former = product;
        const auto joined = joined_.empty() ? joined_.end() : joined_.find(product);
        if (joined != joined_.end()) {
            if (joined->second.resolved) { continue; }
            joined->second.resolved = true;
        }
        for (std::int32_t i = 0; i < product->occurrenceCount; i += kLongestRun) {
            runs_.push_back({product->occurrences + i, std::min(product->occurrenceCount - i, kLongestRun)});
        }
    }
    FindChildren();
}

// The child of each use in the runs.
void DocumentReader::FindChildren() {
    constexpr std::size_t kAtATime = 8;
    occurrenceUids_.Place();
    std::atomic<std::size_t> next = 0;
    const auto find = [&](bool) {
        for (std::size_t i = next.fetch_add(kAtATime); i < runs_.size(); i = next.fetch_add(kAtATime)) {
            const std::size_t end = std::min(i + kAtATime, runs_.size());
            std::for_each(runs_.begin() + i, runs_.begin() + end, [&](Run run) { FindChildrenOf(run); });
        }
    };
    if (IsForHelpers()) {
        document_.helpers->Run(std::ref(find));
    } else {
        find(true);
    }
}

void DocumentReader::FindChildrenOf(Run run) {
    occurrenceUids_.FindEach(
        run.count, [&](std::int32_t i) { return string_view(run.uses[i]->relatedUid); },
        [&](std::int32_t i, ProductNode* const* child) {
            if (child != nullptr) { run.uses[i]->child = *child; }
        });
}

// Gives parts their file names through documents and files, for a text in which no file came right after its
// part.
bool DocumentReader::ResolveFileNames() {
    // This channel is Latin-1: 0xE9 is the "e" with an acute accent.
    constexpr const char* kNotInFiles = "<E> Chaine %.*s non trouv\xE9"
                                        "e dans mapDF_Filename\n";
    constexpr const char* kNotInVersions = "<E> Chaine %.*s non trouv\xE9"
                                           "e dans mapDV_DF\n";
    for (const AssignedDocument& assigned : assignedDocuments_) {
        string_view file = assigned.uid;
        if (digitalFileSeen_) {
            const string_view* const found = mapDV_DF_.Find(assigned.uid);
            if (found == nullptr) {
                ConsolePrint(kNotInVersions, static_cast<int>(file.size()), file.data());
                continue;
            }
            file = *found;
        }
        const string_view* const fileName = mapDF_Filename_.Find(file);
        if (fileName == nullptr) {
            ConsolePrint(kNotInFiles, static_cast<int>(file.size()), file.data());
            continue;
        }
        if (!IsXmlByLastLetters(*fileName)) {
            if (!AddPart(assigned.product, *fileName)) { return false; }
        } else if (assigned.product->fileName == nullptr && !AddAssembly(assigned.product, *fileName)) {
            return false;
        }
    }
    return true;
}

void DocumentReader::Undo() {
    for (const auto& [product, joined] : joined_) { *product = joined.former; }
    assemblies_.Shrink(formerAssemblies_);
    parts_.Shrink(formerParts_);
    document_.products.clear();
    document_.root = nullptr;
}

} // namespace

bool IsXmlByLastLetters(string_view name) {
    const auto isOne = [&](std::size_t fromEnd, char lower, char upper) {
        const char c = name[name.size() - fromEnd];
        return c == lower || c == upper;
    };
    if (name.empty()) { return false; }
    return isOne(1, 'x', 'X') || (name.size() >= 2 && isOne(2, 'x', 'X') && isOne(1, 'z', 'Z'));
}

const char* ReadStpxDocument(StpxDocument& document, int boxMode, NamedProductTable& assemblies,
                             ProductTable& parts, Arena& arena) {
    return DocumentReader(document, boxMode, assemblies, parts, arena).Read();
}

} // namespace tarnwick
