#include "load/load_driver.h"

#include "geometry/finite_elements.h"
#include "geometry/part_reader.h"
#include "load/part_queue.h"
#include "p21/step_model.h"
#include "platform/console.h"
#include "platform/paths.h"
#include "product/assembly_reader.h"
#include "product/draw_list.h"

#include <algorithm>

namespace tarnwick {

namespace {

constexpr std::int32_t kFiniteElementSchema = 209;

// Widens the box of the load by that of a reader.
void MergeBox(LoadSession& session, const float box[6]) {
    if (session.hasBox == 0) {
        std::copy_n(box, 6, session.box);
        session.hasBox = 1;
        return;
    }
    for (int axis = 0; axis < 3; ++axis) {
        const int low = 2 * axis;
        const int high = low + 1;
        if (session.box[low] > box[low]) { session.box[low] = box[low]; }
        if (box[high] > session.box[high]) { session.box[high] = box[high]; }
    }
}

void NoteGivenUp(LoadSession& session, const std::string& path) {
    session.unreadFiles.push_back({0, path, "", kGivenUpReason});
}

// What a file that is the whole document leaves.
void TakeOver(LoadSession& session, const PartReader& reader) {
    if (reader.givenUp) { NoteGivenUp(session, reader.model.fileName); }
    ++session.partCount;
    session.root = reader.product;
    session.triangleCount += static_cast<std::int32_t>(reader.triangleSum);
    MergeBox(session, reader.box);
}

void ReadFiniteElementFile(LoadSession& session, StepModel& model) {
    PartScratch scratch;
    FiniteElementReader reader(model, session.scene->Main(), scratch);
    ReadFiniteElements(reader);
    TakeOver(session, reader.part);
    session.resultMesh = reader.resultMesh;
}

void ReadSinglePart(LoadSession& session, StepModel& model) {
    PartScratch scratch;
    PartReader reader(model, nullptr, session.scene->Main(), scratch);
    reader.Run();
    TakeOver(session, reader);
    if (session.root != nullptr) { session.drawList = session.root->drawList; }
    session.containers = reader.containers;
    session.containerCount = reader.containerCount;
}

void ReadAssembly(LoadSession& session, StepModel& model, const char* path) {
    Arena& arena = session.scene->Main();
    session.products.Allocate(LoadSession::kFirstCapacity);
    session.queue.Allocate(LoadSession::kFirstCapacity);
    session.drawList = MakeDrawList(arena, 100);
    session.compression = model.compression;
    session.folder = FolderOf(path);
    if (ReadAssemblyStructure(session, model, true, arena) != 0) { NoteGivenUp(session, path); }
    ReadQueuedFiles(session);
    if (session.root != nullptr) {
        BuildDrawLists(arena, session.root, path, nullptr);
        session.drawList = session.root->drawList;
        MergeBox(session, session.root->box);
        if (session.drawList != nullptr) { session.triangleCount += CountTriangles(*session.drawList); }
    } else {
        ConsolePrint("<E> Root not found\n");
    }
    ConsolePrint("Number of files=%d  ; Number of parts=%d \n", session.fileCount, session.partCount.load());
}

} // namespace

int TraiteSTEPFile(LoadSession& session, const char* path, int useThreads) {
    ConsolePrint("Start TraiteSTEPFile\n");
    session.useThreads = useThreads != 0;
    ReaderWorkspace workspace;
    StepModel model(workspace, path);
    const int result = model.Read();
    if (result != StepModel::kRead) {
        session.unreadFiles.push_back({0, path, "", UnreadReason(result)});
        return 1;
    }
    session.isAssembly = model.isAssembly;
    if (session.isAssembly != 0) {
        ReadAssembly(session, model, path);
    } else if (model.apNumber == kFiniteElementSchema) {
        ReadFiniteElementFile(session, model);
    } else {
        ReadSinglePart(session, model);
    }
    if (session.root != nullptr) {
        session.rootName = session.root->name;
        session.hasRootName = true;
    }
    return 0;
}

} // namespace tarnwick
