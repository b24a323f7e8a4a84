#include "load/load_commands.h"

#include "load/load_driver.h"
#include "load/no_memory.h"
#include "platform/clock.h"

#include <algorithm>
#include <utility>

namespace tarnwick {

void ResetScene(SceneView& view) {
    view.selectedIndex = -1;
    view.selectedFaceId = 0;
    view.selectedExactFaceId = 0;
    view.selectedContainerId = 0;
    view.selectedExactContainerId = 0;
    view.drawList = nullptr;
    view.resultMesh = nullptr;
    view.boxList = nullptr;
    view.boxMemory.reset();
    view.stpjFile = nullptr;
    view.summaryProducts = nullptr;
    view.summaryProductCount = 0;
    ++view.sceneNumber;
}

namespace {

// Drops the records themselves: nothing shows them any more.
void DropRecords(SceneView& view) {
    view.containers = nullptr;
    view.containerCount = 0;
    view.root = nullptr;
    view.rootName.clear();
    view.hasRootName = false;
    view.unreadFiles.clear();
    view.scene.reset();
}

} // namespace

void SetUpView(SceneView& view) {
    const float* const box = view.box;
    for (int axis = 0; axis < 3; ++axis) { view.centre[axis] = (box[2 * axis] + box[2 * axis + 1]) * 0.5f; }
    view.modelSize = box[1] - box[0] + box[3] - box[2] + box[5] - box[4];
    if (view.modelSize == 0) {
        view.modelSize = 10;
        std::fill(std::begin(view.centre), std::end(view.centre), 0.0f);
    }
    view.eye[0] = view.centre[0];
    view.eye[1] = view.centre[1] + 2 * view.modelSize;
    view.eye[2] = view.centre[2] + 2 * view.modelSize;
}

void DrawTimedFrame(SceneView& view) {
    const double start = ClockSeconds();
    view.Redraw();
    const double seconds = ClockSeconds() - start;
    view.framesPerSecond = seconds > 0 ? 1 / seconds : 0;
}

void LoadStepFile(SceneView& view, const char* path, int useThreads) {
    const double start = ClockSeconds();
    ResetScene(view);
    DropRecords(view);
    LoadSession session;
    session.progress = [&view](std::int32_t read, std::int32_t known) { view.ShowProgress(read, known); };
    int result = 0;
    const bool enough = WithinMemory([&] { result = TraiteSTEPFile(session, path, useThreads); });
    view.unreadFiles = std::move(session.unreadFiles);
    if (!enough) { GiveUpForMemory(path, "", 0, &view.unreadFiles); }
    if (!enough || result != 0) { return; }
    view.readSeconds = session.readSeconds;
    view.inflateSeconds = session.inflateSeconds;
    view.partSeconds = session.partSeconds;
    view.drawnTriangles = session.triangleCount;
    std::copy_n(session.box, 6, view.box);
    view.drawList = session.drawList;
    view.resultMesh = session.resultMesh;
    view.containers = session.containers;
    view.containerCount = session.containerCount;
    view.rootName = std::move(session.rootName);
    view.hasRootName = session.hasRootName;
    view.pickMode = session.isAssembly == 1 ? 2 : 1;
    view.root = session.root;
    view.scene = std::move(session.scene);
    SetUpView(view);
    view.loadSeconds = ClockSeconds() - start;
    DrawTimedFrame(view);
}

} // namespace tarnwick
