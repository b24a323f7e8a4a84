#include "load/view_setup.h"

#include "platform/console.h"
#include "platform/within_memory.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace tarnwick {

namespace {

const char* CopyText(Arena& arena, const char* text) {
    return text != nullptr ? arena.Copy(text, std::strlen(text)) : nullptr;
}

void SayNotKept() {
    ConsolePrint("<E> no memory to keep the solids and shells of the part before\n");
}

// Copies the containers into memory of their own, so that they outlive their scene; drops them when memory
// runs out.
void KeepContainers(LoadedScene* loaded) {
    if (loaded->containerCount == 0 || loaded->keptContainers != nullptr) { return; }
    const std::size_t count = static_cast<std::size_t>(loaded->containerCount);
    FaceContainer** kept = nullptr;
    FaceContainer* records = nullptr;
    WithinMemory([&] {
        loaded->keptContainers = std::make_unique<Arena>();
        kept = loaded->keptContainers->New<FaceContainer*>(count);
        records = loaded->keptContainers->New<FaceContainer>(count);
    });
    if (kept == nullptr || records == nullptr) {
        loaded->containers = nullptr;
        loaded->containerCount = 0;
        SayNotKept();
        return;
    }
    bool whole = true;
    for (std::size_t i = 0; i < count; ++i) {
        records[i] = *loaded->containers[i];
        records[i].materialName = CopyText(*loaded->keptContainers, records[i].materialName);
        whole =
            whole && (loaded->containers[i]->materialName == nullptr || records[i].materialName != nullptr);
        kept[i] = records + i;
    }
    if (!whole) { SayNotKept(); }
    loaded->containers = kept;
}

} // namespace

void ResetScene(SceneView& view, PartRecords partRecords) {
    view.selectedIndex = -1;
    view.selectedFaceId = 0;
    view.selectedExactFaceId = 0;
    view.selectedContainerId = 0;
    view.selectedExactContainerId = 0;
    ++view.sceneNumber;

    LoadedScene& loaded = view.loaded;
    if (partRecords == PartRecords::kKept) {
        KeepContainers(&loaded);
    } else {
        loaded.containers = nullptr;
        loaded.containerCount = 0;
        loaded.keptContainers.reset();
        loaded.rootName.clear();
        loaded.hasRootName = false;
    }
    loaded.drawList = nullptr;
    loaded.resultMesh = nullptr;
    loaded.boxList = nullptr;
    loaded.stpjFile = nullptr;
    loaded.summaryProducts = nullptr;
    loaded.summaryProductCount = 0;
    loaded.root = nullptr;
    loaded.unreadFiles.clear();
    loaded.boxMemory.reset();
    loaded.scene.reset();
}

void SetUpView(SceneView& view) {
    const float* const box = view.loaded.box;
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

void ShowNothing(SceneView& view) {
    view.loaded.drawnTriangles = 0;
    view.loaded.maxDepth = 0;
    view.loaded.pickMode = kPickNothing;
    std::fill(std::begin(view.loaded.box), std::end(view.loaded.box), 0.0f);
    view.modelSize = 120;
    std::fill(std::begin(view.centre), std::end(view.centre), 0.0f);
    std::fill(std::begin(view.eye), std::end(view.eye), 0.0f);
}

} // namespace tarnwick
