#include "xml/stpx_driver.h"

#include "platform/console.h"
#include "platform/helpers.h"
#include "platform/paths.h"
#include "product/draw_list.h"
#include "text/look_up.h"
#include "text/lower_case.h"
#include "text/one_line.h"
#include "xml/stpx_boxes.h"
#include "xml/stpx_document.h"
#include "xml/stpx_file.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tarnwick {

namespace {

// Reads one document, from the file system or from the archive. `product` has asked for it; null for the root
// document. False when it was given up; the reason is then on the console and in the list of unread files.
bool ReadDocument(StpxSession& session, TextMemory& memory, std::string path, std::int32_t place,
                  const ProductNode* product, int boxMode, ProductNode** root) {
    TextFile file;
    const char* problem = nullptr;
    if (session.zip != nullptr) {
        file.text = session.zip->ReadMember(path.c_str(), memory, &file.size, &problem);
    } else {
        file = OpenStpxFile(path);
        if (ReadTextFile(&file, &memory, session.helpers) != TextFileResult::kRead) {
            problem = file.problem != nullptr ? file.problem : "can't be opened";
        }
    }
    if (file.text != nullptr) {
        StpxDocument document;
        document.text = file.text;
        document.size = file.size;
        document.name = path.c_str();
        document.helpers = session.helpers;
        problem = ReadStpxDocument(document, boxMode, session.asmProdExt, session.geomProdExt,
                                   session.loaded.scene->Main());
        *root = document.root;
        if (problem != nullptr) {
            ConsolePrint("<E> %s: document given up, %s\n", OneLine(path).Text(), problem);
            problem = "isn't a complete STEP XML document";
        }
    } else {
        ConsolePrint("<E> %s: it %s\n", OneLine(path).Text(), problem);
    }
    if (problem == nullptr) { return true; }
    session.loaded.unreadFiles.push_back(
        {place, std::move(path), product != nullptr ? product->name : "", problem});
    return false;
}

// Finds documents that lead back to themselves. Each time that one is read again, it may add to the table,
// and so without end.
class DocumentCycles {
public:
    // Notes that the new entries, up to `count` in all, were added by the document at `place`; -1 is the root
    // document.
    void NoteAdded(std::int32_t place, std::int32_t count) {
        addedBy_.resize(static_cast<std::size_t>(count), place);
    }

    // Whether to leave out the document at `place`: it has led back to itself too often to come to an end.
    bool IsEndless(StpxSession& session, std::int32_t place) {
        const std::string_view name = session.asmProdExt[place]->fileName;
        if (names_.AddNew(name)) { return false; }
        std::int32_t above = addedBy_[static_cast<std::size_t>(place)];
        while (above >= 0 && name != session.asmProdExt[above]->fileName) {
            above = addedBy_[static_cast<std::size_t>(above)];
        }
        return above >= 0 && ++repeats_ > kMostRepeats;
    }

private:
    static constexpr std::int32_t kMostRepeats = 100; // a chain that ends does so after a few

    std::vector<std::int32_t> addedBy_;
    LookUp<std::string_view, bool> names_;
    std::int32_t repeats_ = 0;
};

// The documents of the table of assemblies, breadth first: reading one may add to the table.
void ReadExternalDocuments(StpxSession& session, TextMemory& memory) {
    std::string formerPath; // stays empty in an archive, whose names are no paths
    DocumentCycles cycles;
    bool saidEndless = false;
    cycles.NoteAdded(-1, session.asmProdExt.Count());
    for (std::int32_t i = 0; i < session.asmProdExt.Count(); ++i) {
        const ProductNode& product = *session.asmProdExt[i];
        if (!IsXmlFileName(product.fileName)) {
            ConsolePrint("<E> Error: non XML file in _asm_prod_ext: %s\n", OneLine(formerPath).Text());
            session.loaded.unreadFiles.push_back(
                {i + 1, product.fileName, product.name, "has neither the extension stpx nor stpxz"});
            continue;
        }
        if (session.zip == nullptr) { formerPath = StpxPath(session, product); }
        if (cycles.IsEndless(session, i)) {
            if (saidEndless) { continue; }
            saidEndless = true;
            ConsolePrint("<E> %s: it leads to itself without end, it isn't read any more\n",
                         OneLine(product.fileName).Text());
            session.loaded.unreadFiles.push_back(
                {i + 1, product.fileName, product.name, "leads to itself without end"});
            continue;
        }
        ProductNode* ignored = nullptr;
        ReadDocument(session, memory, session.zip != nullptr ? product.fileName : formerPath, i + 1, &product,
                     0, &ignored);
        cycles.NoteAdded(i, session.asmProdExt.Count());
    }
}

// 0 for a root that is a single part, by the extension of its file; else 1.
std::int32_t IsAssembly(const ProductNode& root) {
    if (root.occurrenceCount > 0 || root.fileName == nullptr) { return 1; }
    const std::string_view name = root.fileName;
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos) { return 1; }
    const std::string ending = LowerCase(std::string(name.substr(dot)));
    return ending == ".stp" || ending == ".stpx" ? 0 : 1;
}

// Says in one line how many of the occurrences that will be placed have no child. A product with meshes of
// its own is not looked into.
void SayUnmatched(const ProductNode& root, const char* fileName) {
    std::unordered_set<const ProductNode*> seen{&root};
    std::vector<const ProductNode*> open{&root};
    std::int32_t count = 0;
    const char* firstUid = nullptr;
    const char* firstParent = nullptr;
    while (!open.empty()) {
        const ProductNode& product = *open.back();
        open.pop_back();
        for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
            const Occurrence& occurrence = *product.occurrences[i];
            if (occurrence.child == nullptr) {
                if (count++ == 0) {
                    firstUid = occurrence.relatedUid;
                    firstParent = product.name;
                }
            } else if (occurrence.child->drawList == nullptr && seen.insert(occurrence.child).second) {
                open.push_back(occurrence.child);
            }
        }
    }
    if (count > 0) {
        ConsolePrint("<E> %s: uses without a product are left out: %d, among them '%s' in '%s'\n",
                     OneLine(fileName).Text(), count, OneLine(firstUid).Text(), OneLine(firstParent).Text());
    }
}

// Puts each product of the table of parts on the queue once, in the order of the table: its file is the same
// each time, and two threads must not write to the product.
void FillQueue(StpxSession& session, PartQueue* queue) {
    std::unordered_map<const ProductNode*, std::int32_t> times;
    for (std::int32_t i = 0; i < session.geomProdExt.Count(); ++i) { ++times[session.geomProdExt[i]]; }
    for (std::int32_t i = 0; i < session.geomProdExt.Count(); ++i) {
        const auto found = times.find(session.geomProdExt[i]);
        if (found->second > 0) { queue->Push(session.geomProdExt[i], std::exchange(found->second, 0)); }
    }
}

// The files of the parts, on disk or in the archive.
class StpxParts final : public PartFiles {
public:
    explicit StpxParts(StpxSession& session) : session_(session) {}

    const char* Open(PartThread& thread, const ProductNode& product, std::int32_t /*place*/,
                     std::optional<StepModel>* model) override {
        if (IsXmlFileName(product.fileName)) {
            ConsolePrint("<E> Error: XML file in _geom_prod_ext: %s\n", OneLine(thread.path).Text());
            return nullptr;
        }
        const char* const oddity = Prepare(thread, product, model);
        const int result = (*model)->Read();
        if (result != StepModel::kRead) { return oddity != nullptr ? oddity : UnreadReason(**model, result); }
        if ((*model)->isAssembly == 0) { return nullptr; }
        if (!thread.isLoadThread) {
            ConsolePrint("<E> Error: P21 assembly file in _geom_prod_ext: %s\n", OneLine(thread.path).Text());
        }
        return "is a P21 assembly, which can't be a part here";
    }

private:
    // Makes the model of a part's file, not read yet. Threads take turns to get bytes from an archive, but
    // not to inflate them: that is left to Read. Returns why the member won't inflate, if the archive tells,
    // or null.
    const char* Prepare(PartThread& thread, const ProductNode& product, std::optional<StepModel>* model) {
        if (session_.zip == nullptr) {
            thread.path = StpxPath(session_, product);
            model->emplace(thread.workspace, thread.path);
            return nullptr;
        }
        thread.path = product.fileName;
        DocumentArchive::Packed packed;
        {
            const std::lock_guard guard(session_.zipLock);
            packed = session_.zip->ReadPacked(product.fileName);
        }
        if (packed.oddity == kNeedsMemory) {
            ConsolePrint("<E> %s: no memory for its bytes\n", OneLine(thread.path).Text());
        }
        model->emplace(thread.workspace, std::move(packed.data), packed.size);
        (*model)->fileName = thread.path; // for its messages
        return packed.oddity;
    }

    StpxSession& session_;
};

void ReadAllParts(StpxSession& session) {
    PartQueue queue;
    FillQueue(session, &queue);
    StpxParts files(session);
    // The root document and the further ones were wanted first.
    const std::int32_t firstPlace = session.asmProdExt.Count() + 1;
    session.partsRead =
        ReadParts(queue, files, session.threads, firstPlace, session.progress, session.loaded);
}

void PlaceParts(StpxSession& session, const char* path) {
    LoadedScene& loaded = session.loaded;
    if (session.root == nullptr) {
        ConsolePrint("<E> Root not found\n");
    } else {
        SayUnmatched(*session.root, path);
        BuildStpxDrawLists(loaded.scene->Main(), session.root, path);
        loaded.drawList = session.root->drawList;
        loaded.WidenBox(session.root->box);
        if (loaded.drawList != nullptr) { loaded.drawnTriangles += CountTriangles(*loaded.drawList); }
    }
    ConsolePrint("Number of external products : %d\n", session.asmProdExt.Count());
    ConsolePrint("Number of parts (P21) : %d\n", session.partsRead);
}

// Reads the documents, and finds the product to be shown. False when the root document was given up.
bool ReadStructure(StpxSession& session, const char* path, const char* rootName, int boxMode) {
    TextMemory memory;
    if (!ReadDocument(session, memory, path, 0, nullptr, boxMode, &session.root)) { return false; }
    if (boxMode != 0) { return true; }
    ReadExternalDocuments(session, memory);
    if (rootName != nullptr && session.root != nullptr) {
        ProductNode* const child = FindChildByName(*session.root, rootName);
        if (child != nullptr) { session.root = child; }
    }
    if (session.root == nullptr) { return true; }
    session.isAssembly = IsAssembly(*session.root);
    if (session.root->occurrenceCount == 0 && session.root->fileName == nullptr) {
        ConsolePrint("<E> %s: its root '%s' has neither components nor a file\n", OneLine(path).Text(),
                     OneLine(session.root->name).Text());
    }
    return true;
}

} // namespace

std::string StpxPath(const StpxSession& session, const ProductNode& product) {
    std::string path = product.fileName;
    std::replace(path.begin(), path.end(), '\\', '/');
    return path.insert(0, session.directory);
}

int TraiteSTEPXFileNewMT(StpxSession& session, const char* path, const char* rootName, int boxMode,
                         bool threads) {
    ConsolePrint("Start TraiteSTEPXFileNewMT\n");
    StartedHelpers helpers;
    session.threads = threads;
    session.helpers = threads ? &helpers : nullptr;
    session.loaded.Clear();
    if (session.zip == nullptr) { session.directory = FolderOf(path); }
    session.asmProdExt.Allocate();
    session.geomProdExt.Allocate();
    session.gaveUp = !ReadStructure(session, path, rootName, boxMode);
    if (session.gaveUp) { return 0; }
    if (boxMode != 0) {
        BuildBoxList(session, path);
    } else {
        ReadAllParts(session);
        PlaceParts(session, path);
    }
    session.loaded.root = session.root;
    session.loaded.pickMode = session.isAssembly == 1 ? kPickProducts : kPickFaces;
    return 0;
}

int BuildStpxDrawLists(Arena& arena, ProductNode* product, const char* fileName) {
    return BuildDrawLists(arena, product, fileName, [](Occurrence* occurrence) {
        occurrence->rotation[3] = -occurrence->rotation[3];
        occurrence->rotation[5] = -occurrence->rotation[5];
    });
}

ProductNode* FindChildByName(const ProductNode& product, const char* name) {
    for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
        ProductNode* const child = product.occurrences[i]->child;
        if (child != nullptr && std::strcmp(child->name, name) == 0) { return child; }
    }
    return nullptr;
}

} // namespace tarnwick
