#include "load/load_driver.h"

#include "geometry/part_reader.h"
#include "load/p21/step_model.h"
#include "platform/console.h"

#include <algorithm>

namespace tarnwick {

namespace {

const char* UnreadReason(int result) {
    return result == StepModel::kNotOpened ? "can't be opened" : "isn't a valid ISO 10303-21 file";
}

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
        if (session.box[low] > box[low]) {
            session.box[low] = box[low];
        }
        if (box[high] > session.box[high]) {
            session.box[high] = box[high];
        }
    }
}

// A file that is one part.
void ReadSinglePart(LoadSession& session, StepModel& model) {
    PartScratch scratch;
    PartReader reader(model, nullptr, session.scene->Main(), scratch);
    reader.Run();
    ++session.partCount;
    session.root = reader.product;
    if (session.root != nullptr) {
        session.drawList = session.root->drawList;
    }
    session.containers = reader.containers;
    session.containerCount = reader.containerCount;
    session.triangleCount += static_cast<std::int32_t>(reader.triangleSum);
    MergeBox(session, reader.box);
}

} // namespace

int TraiteSTEPFile(LoadSession& session, const char* path, int useThreads) {
    ConsolePrint("Start TraiteSTEPFile\n");
    session.useThreads = useThreads != 0;
    ReaderWorkspace workspace;
    StepModel model(workspace, path);
    const int result = model.Read();
    if (result != StepModel::kRead) {
        session.unreadFiles.push_back({path, "", UnreadReason(result)});
        return 1;
    }
    session.isAssembly = model.isAssembly;
    if (session.isAssembly == 0) {
        ReadSinglePart(session, model);
    }
    if (session.root != nullptr) {
        session.rootName = session.root->name;
        session.hasRootName = true;
    }
    return 0;
}

} // namespace tarnwick
