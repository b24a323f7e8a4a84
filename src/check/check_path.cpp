#include "check/check_path.h"

#include "archive/stpa_archive.h"
#include "load/file_kind.h"
#include "load/load_file.h"
#include "load/unread_files.h"
#include "platform/paths.h"
#include "xml/stpx_file.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <memory>
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
    }

private:
    struct Wanted {
        std::string path;
        std::string product;
    };

    void CheckOne(std::size_t number) {
        const Wanted wanted = wanted_[number];
        StepModel model(workspace_, wanted.path);
        std::vector<Finding> findings;
        const int result = ReadToCheck(model, &findings);
        if (result == StepModel::kNotOpened) {
            AddUnread(report_, wanted.path, wanted.product, UnreadReason(model, result));
            return;
        }
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
        TakeReferences(references);
    }

    void TakeReferences(const FileReferences& references) {
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
            if (paths_.Insert(path)) { wanted_.push_back({std::move(path), productName}); }
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
    std::vector<std::pair<std::string, Finding>> bareLeaves_; // by product
};

// The part files of a tree that was loaded from documents, each once. Uses without a product become findings.
std::vector<std::string> PartFiles(const ProductNode* root, std::vector<Finding>* findings) {
    std::vector<std::string> names;
    if (root == nullptr) { return names; }
    std::unordered_set<const ProductNode*> seen{root};
    LookUp<std::string_view, bool> known;
    std::vector<const ProductNode*> open{root};
    while (!open.empty()) {
        const ProductNode& product = *open.back();
        open.pop_back();
        if (product.fileName != nullptr && !IsXmlFileName(product.fileName) &&
            known.AddNew(product.fileName)) {
            names.emplace_back(product.fileName);
        }
        for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
            const Occurrence& use = *product.occurrences[i];
            if (use.child == nullptr) {
                findings->push_back({.kind = FindingKind::kUse,
                                     .text = std::string("product '") + product.name + "' uses '" +
                                             (use.relatedUid != nullptr ? use.relatedUid : "") +
                                             "', which is no product's"});
            } else if (seen.insert(use.child).second) {
                open.push_back(use.child);
            }
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Whether the load has told of a file.
bool IsTold(const SceneView& view, const std::string& path) {
    return std::any_of(view.loaded.unreadFiles.begin(), view.loaded.unreadFiles.end(),
                       [&path](const UnreadFile& file) { return file.path == path; });
}

void CheckDocumentPart(CheckReport* report, const SceneView& view, StepModel& model,
                       const std::string& name) {
    std::vector<Finding> findings;
    const int result = ReadToCheck(model, &findings);
    if (result != StepModel::kRead) {
        // What the load could read may fail now.
        if (!IsTold(view, name)) { AddUnread(report, name, "", UnreadReason(model, result)); }
        return;
    }
    FileReferences none;
    if (model.isAssembly != 0) { return; } // told by the load
    CheckStepFile(model, result, FileRole::kPart, &report->counts, &findings, &none);
    AddFile(report, name, std::move(findings));
}

// STEP XML, archives and summaries: what the load could not read, and the parts.
void CheckLoaded(CheckReport* report, const SceneView& view, FileKind kind) {
    const std::string& path = report->path;
    report->files.push_back(path);
    for (const UnreadFile& file : view.loaded.unreadFiles) {
        AddUnread(report, file.path, file.productName, file.reason);
    }
    if (kind == FileKind::kSummary) { return; }
    if (view.loaded.root == nullptr && view.loaded.unreadFiles.empty()) {
        report->findings.push_back({.kind = FindingKind::kUse, .text = "the document has no root product"});
    }
    std::unique_ptr<ZipArchive> archive;
    if (kind == FileKind::kArchive) {
        archive = std::make_unique<ZipArchive>(path.c_str());
        if (!archive->IsOpen()) {
            // The load could open it, or has told that it couldn't.
            if (!IsTold(view, path)) {
                AddUnread(report, path, "",
                          archive->Failure() == ENOMEM ? kNeedsMemory : "can't be opened as an archive");
            }
            return;
        }
    }
    ReaderWorkspace workspace;
    for (const std::string& name : PartFiles(view.loaded.root, &report->findings)) {
        if (archive == nullptr) {
            std::string part = name;
            std::replace(part.begin(), part.end(), '\\', '/');
            part.insert(0, FolderOf(path));
            StepModel model(workspace, part);
            CheckDocumentPart(report, view, model, part);
        } else {
            ZipArchive::Packed packed = archive->ReadPacked(name.c_str());
            if (packed.data == nullptr) {
                if (!IsTold(view, name)) { AddUnread(report, name, "", packed.oddity); }
                continue;
            }
            StepModel model(workspace, std::move(packed.data), packed.size);
            model.fileName = name;
            CheckDocumentPart(report, view, model, name);
        }
    }
}

} // namespace

CheckReport CheckPath(LoadDispatch& dispatch, const std::string& path, const char* rootName,
                      bool useThreads) {
    CheckReport report;
    report.path = path;
    const FileKind kind = FileKindOf(path);
    if (kind == FileKind::kStep) {
        StepFiles(&report).Check(path);
    } else if (LoadFile(dispatch, path.c_str(), rootName, useThreads)) {
        CheckLoaded(&report, dispatch.view, kind);
    } else {
        AddUnread(&report, path, "", "isn't of a kind that can be loaded, by its extension");
    }
    std::stable_sort(report.findings.begin(), report.findings.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.kind, a.file, a.line) < std::tie(b.kind, b.file, b.line);
    });
    return report;
}

} // namespace tarnwick
