#include "formats/format_commands.h"

#include "archive/stpa_driver.h"
#include "load/load_commands.h"
#include "load/no_memory.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "product/draw_list.h"
#include "summary/select_depth.h"
#include "summary/stpj_reader.h"
#include "xml/stpx_driver.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace tarnwick {

namespace {

const char* CopyText(Arena& arena, const char* text) {
    return text != nullptr ? arena.Copy(text, std::strlen(text)) : nullptr;
}

// Moves the containers of an earlier part into another scene: they are still asked for when the scene that
// they came with is gone.
void KeepContainers(SceneView& view, Arena& arena) {
    if (view.containerCount == 0) { return; }
    FaceContainer** const kept = arena.New<FaceContainer*>(static_cast<std::size_t>(view.containerCount));
    FaceContainer* const records = arena.New<FaceContainer>(static_cast<std::size_t>(view.containerCount));
    if (kept == nullptr || records == nullptr) {
        view.containerCount = 0;
        view.containers = nullptr;
        return;
    }
    for (std::int32_t i = 0; i < view.containerCount; ++i) {
        records[i] = *view.containers[i];
        records[i].materialName = CopyText(arena, records[i].materialName);
        records[i].materialComment = CopyText(arena, records[i].materialComment);
        kept[i] = records + i;
    }
    view.containers = kept;
}

// Drops the former scene and gives the memory for the next one.
std::unique_ptr<SceneMemory> ReplaceScene(SceneView& view) {
    ResetScene(view);
    auto scene = std::make_unique<SceneMemory>();
    KeepContainers(view, scene->Main());
    view.root = nullptr;
    view.unreadFiles.clear();
    view.scene.reset();
    return scene;
}

// The view as before its first load, for a file of which there is nothing to show.
void ShowNothing(SceneView& view) {
    view.drawnTriangles = 0;
    view.maxDepth = 0;
    view.pickMode = 0;
    view.modelSize = 120;
    std::fill(std::begin(view.box), std::end(view.box), 0.0f);
    std::fill(std::begin(view.centre), std::end(view.centre), 0.0f);
    std::fill(std::begin(view.eye), std::end(view.eye), 0.0f);
}

// Runs a load; false when a library had no memory for it, which is then said.
template <class Load>
bool LoadWithinMemory(const char* path, std::vector<UnreadFile>* unreadFiles, Load load) {
    if (WithinMemory(load)) { return true; }
    GiveUpForMemory(path, "", 0, unreadFiles);
    return false;
}

void EndLoad(SceneView& view, double start) {
    SetUpView(view);
    view.loadSeconds = ClockSeconds() - start;
    DrawTimedFrame(view);
}

// Twelve triangles for each box.
std::int32_t BoxTriangles(const DrawList& boxes) {
    const std::int64_t triangles = std::int64_t{12} * boxes.count;
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(triangles, std::numeric_limits<std::int32_t>::max()));
}

} // namespace

void LoadStpxFile(SceneView& view, const char* path, const char* rootName, int useThreads) {
    StpxSession session;
    session.progress = [&view](std::int32_t read, std::int32_t known) { view.ShowProgress(read, known); };
    session.scene = ReplaceScene(view);
    const double start = ClockSeconds();
    view.boxMode = 0;
    const bool enough = LoadWithinMemory(path, &session.unreadFiles, [&] {
        TraiteSTEPXFileNewMT(session, path, rootName, view.boxMode, useThreads);
    });
    view.unreadFiles = std::move(session.unreadFiles);
    view.scene = std::move(session.scene);
    if (!enough || session.gaveUp) {
        ShowNothing(view);
        return;
    }
    view.readSeconds = session.readSeconds;
    view.inflateSeconds = session.inflateSeconds;
    view.partSeconds = session.parseSeconds;
    view.drawList = session.drawList;
    view.drawnTriangles = session.triangleCount;
    std::copy_n(session.box, 6, view.box);
    view.pickMode = session.isAssembly == 1 ? 2 : 1;
    view.root = session.root;
    EndLoad(view, start);
}

void LoadStpjFile(SceneView& view, const char* path) {
    StpjResult result;
    result.scene = ReplaceScene(view);
    const double start = ClockSeconds();
    view.selectedIndex = -1;
    const bool enough = LoadWithinMemory(path, &result.unreadFiles, [&] { TraiteSTPJFile(result, path); });
    view.unreadFiles = std::move(result.unreadFiles);
    view.scene = std::move(result.scene);
    if (!enough || result.file == nullptr) {
        ShowNothing(view);
        return;
    }
    view.stpjFile = result.file;
    view.summaryProducts = result.file->products;
    view.summaryProductCount = result.file->productCount;
    view.boxList = result.drawList;
    view.boxMemory = std::move(result.boxMemory);
    std::copy_n(result.box, 6, view.box);
    view.maxDepth = result.maxDepth;
    view.drawnTriangles = BoxTriangles(*view.boxList);
    EndLoad(view, start);
}

void LoadZIPFile(SceneView& view, const char* path, const char* rootName, int useThreads) {
    const double start = ClockSeconds();
    view.pickMode = 0;
    ZIPReader reader;
    reader.progress = [&view](std::int32_t read, std::int32_t known) { view.ShowProgress(read, known); };
    reader.scene = ReplaceScene(view);
    ConsolePrint("LoadZIPFile : ZIPReader::TraiteZIPFile %s\n", path);
    int result = 0;
    const bool enough = LoadWithinMemory(path, &reader.unreadFiles,
                                         [&] { result = TraiteSTPA(reader, path, rootName, useThreads); });
    view.unreadFiles = std::move(reader.unreadFiles);
    view.scene = std::move(reader.scene);
    if (!enough || result != ZIPReader::kSuccess) { return; }
    view.readSeconds = reader.readSeconds;
    view.inflateSeconds = reader.inflateSeconds;
    view.partSeconds = reader.parseSeconds;
    view.drawnTriangles = reader.triangleCount;
    std::copy_n(reader.box, 6, view.box);
    view.drawList = reader.drawList;
    view.pickMode = reader.isAssembly == 1 ? 2 : 1;
    view.root = reader.root;
    EndLoad(view, start);
}

void SelectShownDepth(SceneView& view, std::int32_t depth) {
    if (view.stpjFile != nullptr) {
        FreeBoxList(*view.boxMemory, view.boxList);
        if (!SelectDepth(*view.stpjFile, depth, view.boxList, *view.boxMemory)) {
            ConsolePrint("<E> %s: no memory for all of its boxes\n", view.stpjFile->path);
        }
        view.drawnTriangles = BoxTriangles(*view.boxList);
        ++view.sceneNumber; // other boxes may stand where these did
    }
}

} // namespace tarnwick
