#include "load/step_driver.h"

#include "geometry/finite_elements.h"
#include "geometry/part_reader.h"
#include "load/read_parts.h"
#include "p21/step_model.h"
#include "platform/console.h"
#include "platform/paths.h"
#include "product/assembly_reader.h"
#include "product/draw_list.h"

#include <algorithm>

namespace tarnwick {

namespace {

// Why a file is unread, from what ReadAssemblyStructure returned; null when it was read.
const char* ReasonOf(int structure) {
    switch (structure) {
    case 0:
        return nullptr;
    case kStructureNeedsMemory:
        return kNeedsMemory;
    default:
        return kGivenUpReason;
    }
}

// The files of an assembly: a part is read by the caller, a sub-assembly adds to the tree and to the queue.
class AssemblyFiles final : public PartFiles {
public:
    explicit AssemblyFiles(LoadSession& session) : session_(session) {}

    const char* Open(PartThread& thread, const ProductNode& product, std::int32_t place,
                     std::optional<StepModel>* model) override {
        thread.path = PathOf(product);
        StepModel& opened = model->emplace(thread.workspace, thread.path);
        const int result = opened.Read();
        if (result != StepModel::kRead) { return UnreadReason(opened, result); }
        if (opened.isAssembly == 0) { return nullptr; }
        session_.tree.queue.WaitForThoseBefore(place);
        const std::lock_guard guard(session_.structureLock);
        const int structure = ReadAssemblyStructure(session_.tree, opened, false, thread.arena);
        model->reset();
        return ReasonOf(structure);
    }

private:
    // From the top file's folder on, and compressed as that file is.
    std::string PathOf(const ProductNode& product) const {
        std::string path = product.fileName;
        std::replace(path.begin(), path.end(), '\\', '/');
        path.insert(0, session_.folder);
        if (session_.compression == TextFile::kTwoCharacterSuffix) { path += ".Z"; }
        if (session_.compression == TextFile::kOneCharacterSuffix) { path += 'z'; }
        return path;
    }

    LoadSession& session_;
};

void NoteGivenUp(LoadedScene& loaded, const std::string& path, const char* reason) {
    loaded.unreadFiles.push_back({0, path, "", reason});
}

// What a file that is the whole document leaves.
void TakeOver(LoadSession& session, const PartReader& reader) {
    LoadedScene& loaded = session.loaded;
    if (const char* const reason = WhyGivenUp(reader)) { NoteGivenUp(loaded, reader.model.fileName, reason); }
    ++session.partCount;
    loaded.root = reader.product;
    loaded.drawnTriangles += static_cast<std::int32_t>(reader.triangleSum);
    loaded.WidenBox(reader.box);
}

void ReadFiniteElementFile(LoadSession& session, StepModel& model) {
    PartScratch scratch;
    FiniteElementReader reader(model, session.loaded.scene->Main(), scratch);
    ReadFiniteElements(reader);
    TakeOver(session, reader.part);
    session.loaded.resultMesh = reader.resultMesh;
}

void ReadSinglePart(LoadSession& session, StepModel& model) {
    LoadedScene& loaded = session.loaded;
    PartScratch scratch;
    PartReader reader(model, nullptr, loaded.scene->Main(), scratch);
    reader.Run();
    TakeOver(session, reader);
    if (loaded.root != nullptr) { loaded.drawList = loaded.root->drawList; }
    loaded.containers = reader.containers;
    loaded.containerCount = reader.containerCount;
}

void ReadAssembly(LoadSession& session, StepModel& model, const char* path) {
    LoadedScene& loaded = session.loaded;
    Arena& arena = loaded.scene->Main();
    loaded.drawList = MakeDrawList(arena, 100);
    session.compression = model.compression;
    session.folder = FolderOf(path);
    if (const char* const reason = ReasonOf(ReadAssemblyStructure(session.tree, model, true, arena))) {
        NoteGivenUp(loaded, path, reason);
    }
    AssemblyFiles files(session);
    session.partCount = ReadParts(session.tree.queue, files, session.useThreads, 0, session.progress, loaded);
    loaded.root = session.tree.root;
    if (loaded.root != nullptr) {
        BuildDrawLists(arena, loaded.root, path, nullptr);
        loaded.drawList = loaded.root->drawList;
        loaded.WidenBox(loaded.root->box);
        if (loaded.drawList != nullptr) { loaded.drawnTriangles += CountTriangles(*loaded.drawList); }
    } else {
        ConsolePrint("<E> Root not found\n");
    }
    ConsolePrint("Number of files=%d  ; Number of parts=%d \n", session.fileCount, session.partCount);
}

} // namespace

int TraiteSTEPFile(LoadSession& session, const char* path, bool useThreads) {
    ConsolePrint("Start TraiteSTEPFile\n");
    LoadedScene& loaded = session.loaded;
    loaded.Clear();
    session.useThreads = useThreads;
    StartedHelpers helpers;
    ReaderWorkspace workspace;
    if (useThreads) { workspace.helpers = &helpers; }
    StepModel model(workspace, path);
    const int result = model.Read();
    if (result != StepModel::kRead) {
        loaded.unreadFiles.push_back({0, path, "", UnreadReason(model, result)});
        return 1;
    }
    session.isAssembly = model.isAssembly;
    if (session.isAssembly != 0) {
        ReadAssembly(session, model, path);
    } else if (model.apNumber == StepModel::kFiniteElementSchema) {
        ReadFiniteElementFile(session, model);
    } else {
        ReadSinglePart(session, model);
    }
    if (loaded.root != nullptr) {
        loaded.rootName = loaded.root->name;
        loaded.hasRootName = true;
    }
    loaded.pickMode = session.isAssembly == 1 ? kPickProducts : kPickFaces;
    return 0;
}

} // namespace tarnwick
