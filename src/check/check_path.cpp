#include "check/check_path.h"

#include "archive/stpa_archive.h"
#include "archive/stpa_driver.h"
#include "check/check_documents.h"
#include "exchange/file_bytes.h"
#include "formats/prepare_hint.h"
#include "load/file_kind.h"
#include "load/unread_files.h"
#include "platform/memory_left.h"
#include "platform/paths.h"
#include "prepare/source_files.h"
#include "prepare/whole.h"
#include "text/lower_case.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <limits>
#include <optional>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace tarnwick {

namespace {

// Adds a file's findings to the report, as those of one more file.
void AddFile(CheckReport* report, std::string path, std::vector<Finding> findings) {
    const auto number = static_cast<std::int32_t>(report->files.size());
    report->files.push_back(std::move(path));
    for (Finding& finding : findings) {
        finding.file = number;
        report->findings.push_back(std::move(finding));
    }
}

void AddUnread(CheckReport* report, const std::string& path, const std::string& product,
               const std::string& reason) {
    Finding finding{.kind = FindingKind::kUnread, .text = reason};
    if (!product.empty()) { finding.text = "the file of product '" + product + "' " + reason; }
    AddFile(report, path, {finding});
}

void AddTotals(const FileReferences& file, ShapeTotals* totals) {
    const prepare::FileStructure& structure = file.structure;
    const std::int64_t before = totals->tessellated;
    std::unordered_set<std::uint64_t> seen;
    for (const prepare::FileProduct& product : structure.products) {
        for (const prepare::ShapeItem& item : product.shape) {
            if (seen.insert(item.item).second) { CountShape(item, totals); }
        }
    }
    // Beside exact shape that no product has, tessellation isn't listed.
    if (file.hasTessellation && totals->tessellated == before) { ++totals->tessellated; }
    if (!seen.empty()) { ++totals->files; }
}

// Names out of files, each once.
class NameSet {
public:
    // Whether it is new.
    bool Insert(std::string_view name) {
        if (places_.Contains(name)) { return false; }
        places_.Add(names_.emplace_back(name), true);
        return true;
    }
    bool Contains(std::string_view name) { return places_.Contains(name); }

private:
    std::deque<std::string> names_;
    LookUp<std::string_view, bool> places_;
};

// The file and what its documents lead to, in the order of the references.
class StepFiles {
public:
    explicit StepFiles(CheckReport* report) : report_(report) {}

    void Check(const std::string& path) {
        wanted_.push_back({path, ""});
        folder_ = FolderOf(path);
        for (std::size_t i = 0; i < wanted_.size(); ++i) { CheckOne(i); }
        for (auto& [product, finding] : bareLeaves_) {
            if (!productsWithFile_.Contains(product)) { report_->findings.push_back(std::move(finding)); }
        }
        for (auto& [product, finding] : ofParts_) {
            if (parents_.Contains(product)) { report_->findings.push_back(std::move(finding)); }
        }
    }

private:
    struct Wanted {
        std::string path;
        std::string product;
        FileReferences::OtherNames other = {}; // of the file
        std::int32_t from = 0;                 // the file that names it
        bool isElsewhere = false;              // the load looks for it under another name
    };

    void CheckOne(std::size_t number) {
        const Wanted wanted = wanted_[number];
        StepModel model(workspace_, wanted.path);
        std::vector<Finding> findings;
        const int result = ReadToCheck(model, &findings);
        if (result == StepModel::kNotOpened) { return TellUnopened(wanted, UnreadReason(model, result)); }
        FileReferences references;
        CheckStepFile(model, result, number == 0 ? FileRole::kTop : FileRole::kPartOrAssembly,
                      &report_->counts, &findings, &references);
        if (number == 0) { compression_ = model.compression; }
        const auto file = static_cast<std::int32_t>(report_->files.size());
        for (std::size_t i = 0; i < references.bareProducts.size(); ++i) {
            references.bareFindings[i].file = file;
            bareLeaves_.emplace_back(references.bareProducts[i], references.bareFindings[i]);
        }
        AddFile(report_, wanted.path, std::move(findings));
        AddTotals(references, &report_->totals);
        if (number == 0) {
            report_->top = std::move(references.structure);
            if (references.elements > 0) {
                report_->totals.elements = references.elements;
                report_->elementsDrawn = references.elementsDrawn;
                report_->hasElementSurface = references.hasElementSurface || references.elementsDrawn > 0;
            }
        }
        for (const std::string& parent : references.parents) { parents_.Insert(parent); }
        if (number > 0 && !references.isAssembly && !wanted.isElsewhere) {
            ofParts_.emplace_back(
                wanted.product, Finding{.kind = FindingKind::kHidden,
                                        .file = file,
                                        .text = "product '" + wanted.product + "' shows this file alone, " +
                                                (references.isDrawn ? "" : "of which nothing is drawn, ") +
                                                "and none of the components that hang under it in the tree"});
        }
        TakeReferences(references, file);
    }

    // A file that isn't there, or under another name than the one that is read.
    void TellUnopened(const Wanted& wanted, const char* reason) {
        bool isOther = false;
        const std::string found =
            wanted.other.names.empty() ? "" : prepare::FindSource(folder_, wanted.other.names, &isOther);
        if (found.empty() || found == wanted.path) {
            return AddUnread(report_, wanted.path, wanted.product, reason);
        }
        Finding finding = wanted.other.finding;
        finding.file = wanted.from;
        const std::string name = wanted.path.substr(FolderOf(wanted.path).size());
        finding.text = "the file of product '" + wanted.product + "' is looked for under the name '" + name +
                       "', the first argument of its DOCUMENT_FILE; what lies there is '" +
                       found.substr(FolderOf(found).size()) + "'";
        report_->findings.push_back(std::move(finding));
        if (paths_.Insert(found)) {
            wanted_.push_back({.path = found, .product = wanted.product, .isElsewhere = true});
        }
    }

    void TakeReferences(const FileReferences& references, std::int32_t from) {
        std::vector<bool> isTaken(references.names.size()); // a name of a file or of a product, never of both
        const auto take = [&isTaken](std::size_t place) {
            const bool isNew = !isTaken[place];
            isTaken[place] = true;
            return isNew;
        };
        for (const auto& [file, product] : references.references) {
            const std::string& productName = references.names[product];
            if (take(product)) { productsWithFile_.Insert(productName); }
            if (!take(file)) { continue; }
            std::string path = folder_ + PartName(references.names[file]);
            if (!paths_.Insert(path)) { continue; }
            const auto other = references.otherNames.find(file);
            wanted_.push_back(
                {std::move(path), productName,
                 other != references.otherNames.end() ? other->second : FileReferences::OtherNames{}, from});
        }
    }

    // As the load forms it: a "\" separates too, and parts are packed as the top file is.
    std::string PartName(std::string name) const {
        std::replace(name.begin(), name.end(), '\\', '/');
        if (compression_ == TextFile::kTwoCharacterSuffix) { name += ".Z"; }
        if (compression_ == TextFile::kOneCharacterSuffix) { name += 'z'; }
        return name;
    }

    CheckReport* report_;
    ReaderWorkspace workspace_;
    std::string folder_;
    std::int32_t compression_ = 0;
    std::vector<Wanted> wanted_;
    NameSet paths_;
    NameSet productsWithFile_;
    NameSet parents_;                                         // products that use others
    std::vector<std::pair<std::string, Finding>> bareLeaves_; // by product
    std::vector<std::pair<std::string, Finding>> ofParts_;    // those that hide components, if there are any
};

// STEP XML and archives: the documents, and then their parts.
void CheckXml(CheckReport* report, const char* rootName, ZipArchive* archive, const std::string& root) {
    CheckedDocuments documents = CheckDocuments(root, rootName, archive);
    report->placedInTree = documents.placedParts;
    const auto first = static_cast<std::int32_t>(report->files.size());
    for (std::string& path : documents.paths) { report->files.push_back(std::move(path)); }
    for (Finding& finding : documents.findings) {
        finding.file += first;
        report->findings.push_back(std::move(finding));
    }
    for (const DocumentFile& file : documents.unread) {
        AddUnread(report, file.path, file.product, "can't be opened");
    }
    for (const DocumentFile& file : documents.tooLarge) {
        AddUnread(report, file.path, file.product, kNeedsMemory);
    }
    ReaderWorkspace workspace;
    for (const DocumentFile& part : documents.parts) {
        std::optional<StepModel> model;
        if (archive == nullptr) {
            model.emplace(workspace, part.path);
        } else {
            ZipArchive::Packed packed = archive->ReadPacked(part.path.c_str());
            if (packed.data == nullptr) {
                AddUnread(report, part.path, part.product,
                          packed.oddity != nullptr ? packed.oddity : "isn't there");
                continue;
            }
            model.emplace(workspace, std::move(packed.data), packed.size);
            model->fileName = part.path;
        }
        std::vector<Finding> findings;
        const int result = ReadToCheck(*model, &findings);
        if (result == StepModel::kNotOpened) {
            AddUnread(report, part.path, part.product, UnreadReason(*model, result));
            continue;
        }
        FileReferences references;
        CheckStepFile(*model, result, FileRole::kPart, &report->counts, &findings, &references);
        AddFile(report, part.path, std::move(findings));
        AddTotals(references, &report->totals);
    }
}

void CheckArchive(CheckReport* report, const char* rootName) {
    const std::string& path = report->path;
    ZipArchive archive(path.c_str());
    TextMemory memory;
    std::size_t size = 0;
    const char* problem = nullptr;
    const char* const ini =
        archive.IsOpen() ? archive.ReadMember("stpa.ini", memory, &size, &problem) : nullptr;
    std::string root;
    int isStpx = 0;
    if (!archive.IsOpen()) {
        AddUnread(report, path, "",
                  archive.Failure() == ENOMEM ? kNeedsMemory : "can't be opened as an archive");
    } else if (ini == nullptr) {
        AddUnread(report, path, "",
                  problem == kNeedsMemory ? kNeedsMemory : "has no member stpa.ini that can be read");
    } else if (ParseStpaIni(ini, &root, &isStpx) != 0) {
        AddUnread(report, path, "", "names no root in its member stpa.ini");
    } else if (isStpx != 1) {
        AddUnread(report, path, "", "has a root that is no stpx document");
    } else {
        report->files.push_back(path);
        CheckXml(report, rootName, &archive, root);
    }
}

// A file's name without its extension.
std::string StemOf(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

// The name under which a copy of a file is taken.
std::string NameToCopy(const std::string& path, FileKind kind) {
    const std::string name = NameOf(path);
    std::string stem = StemOf(name);
    const std::string extension = LowerCase(name.substr(stem.size()));
    const bool isPacked = extension == ".z" || extension == ".gz";
    if (isPacked) { stem = StemOf(stem); }
    return stem + (kind == FileKind::kStepXml ? ".stpx" : ".stp") + (isPacked ? "z" : "");
}

void CheckByKind(CheckReport* report, const char* rootName) {
    const std::string& path = report->path;
    const FileKind kind = KindToCheck(path);
    if (FileKindOf(path) == FileKind::kUnknown) {
        std::string text = "isn't taken under a name with this extension";
        if (kind != FileKind::kUnknown) {
            text += "; a copy of it under the name '" + NameToCopy(path, kind) + "' is";
        }
        report->findings.push_back({.kind = FindingKind::kExtension, .text = std::move(text)});
    }
    switch (kind) {
    case FileKind::kStep:
        return StepFiles(report).Check(path);
    case FileKind::kStepXml:
        return CheckXml(report, rootName, nullptr, path);
    case FileKind::kArchive:
        return CheckArchive(report, rootName);
    case FileKind::kSummary:
    case FileKind::kUnknown:
        report->files.push_back(path);
        for (const UnreadName& file : report->outcome.unread) {
            AddUnread(report, file.path, file.product, file.reason);
        }
    }
}

// Adds what the load found no memory for, where no finding tells it.
void AddWantOfMemory(CheckReport* report) {
    const bool isTold = std::any_of(report->findings.begin(), report->findings.end(), [](const Finding& f) {
        return f.text.find(kNeedsMemory) != std::string::npos;
    });
    if (isTold) { return; }
    for (const UnreadName& file : report->outcome.unread) {
        if (file.reason == kNeedsMemory) { AddUnread(report, file.path, file.product, file.reason); }
    }
    if (report->outcome.lacksMemory) { AddUnread(report, report->path, "", kNeedsMemory); }
}

// Adds what only the outcome of the load tells.
void AddOutcome(CheckReport* report) {
    const LoadOutcome& outcome = report->outcome;
    const auto has = [report](FindingKind kind) {
        return std::any_of(report->findings.begin(), report->findings.end(),
                           [kind](const Finding& finding) { return finding.kind == kind; });
    };
    if (outcome.end == LoadOutcome::End::kEnded && !has(FindingKind::kTooLong)) {
        report->findings.push_back({.kind = FindingKind::kTooLong, .text = "the load ends the program"});
    }
    if (outcome.end == LoadOutcome::End::kStands && !has(FindingKind::kStands)) {
        report->findings.push_back({.kind = FindingKind::kStands, .text = "the load stands still for ever"});
    }
    if (outcome.end != LoadOutcome::End::kDone || outcome.triangles > 0) { return; }
    const bool isTold = std::any_of(report->findings.begin(), report->findings.end(),
                                    [](const Finding& f) { return TextOf(f.kind).isLoss; });
    if (isTold) { return; }
    std::string text = "the load draws nothing of the file";
    if (!outcome.errors.empty()) { text += "; it says: " + outcome.errors.front(); }
    report->findings.push_back({.kind = FindingKind::kNothing, .text = std::move(text)});
}

// Adds the command, where a shape is there and something keeps it from being shown.
void AddCommand(CheckReport* report) {
    const FileKind kind = KindToCheck(report->path);
    const ShapeTotals& totals = report->totals;
    const bool hasShape =
        totals.tessellated + totals.exactSolids + totals.exactSurfaces > 0 || report->hasElementSurface;
    const bool isMended = std::any_of(report->findings.begin(), report->findings.end(),
                                      [](const Finding& f) { return TextOf(f.kind).isMended; });
    if (!hasShape || !isMended || (kind != FileKind::kStep && kind != FileKind::kStepXml)) { return; }
    report->command = PrepareCommand(report->path);
}

} // namespace

FileKind KindToCheck(const std::string& path) {
    const FileKind kind = FileKindOf(path);
    if (kind != FileKind::kUnknown) { return kind; }
    const FileBytes bytes = ReadFileBytes(path, MemoryLeft());
    std::string_view text = bytes.IsRead() ? bytes.Text().substr(0, 1000) : std::string_view();
    if (text.find(StepModel::kStart) != std::string_view::npos) { return FileKind::kStep; }
    if (text.starts_with("\xEF\xBB\xBF")) { text.remove_prefix(3); }
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    return text.starts_with('<') ? FileKind::kStepXml : FileKind::kUnknown;
}

CheckReport CheckWith(const std::string& path, const char* rootName, LoadOutcome outcome) {
    CheckReport report;
    report.path = path;
    report.outcome = std::move(outcome);
    CheckByKind(&report, rootName);
    CountParts(&report);
    AddWantOfMemory(&report);
    AddOutcome(&report);
    AddCommand(&report);
    std::stable_sort(report.findings.begin(), report.findings.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.kind, a.file, a.line) < std::tie(b.kind, b.file, b.line);
    });
    return report;
}

CheckReport CheckPath(LoadDispatch& dispatch, const std::string& path, const char* rootName,
                      bool useThreads) {
    const FileKind kind = KindToCheck(path);
    LoadOutcome outcome;
    if (kind != FileKind::kUnknown) { outcome = TryLoad(dispatch, path, rootName, useThreads, kind); }
    return CheckWith(path, rootName, std::move(outcome));
}

} // namespace tarnwick
