#include "formats/load_commands.h"

#include "archive/stpa_driver.h"
#include "load/step_driver.h"
#include "load/view_setup.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "platform/within_memory.h"
#include "product/draw_list.h"
#include "summary/select_depth.h"
#include "summary/stpj_reader.h"
#include "text/one_line.h"
#include "xml/stpx_driver.h"

#include <memory>
#include <utility>

namespace tarnwick {

namespace {

// What stays of the previous load.
struct Remainder {
    PartRecords partRecords;
    bool numbersStay; // after a failed load: counts, times and box; else the view is as before its first load
};
constexpr Remainder kOfStep{PartRecords::kDropped, true};
constexpr Remainder kOfStepXml{PartRecords::kKept, false};
constexpr Remainder kOfSummary{PartRecords::kKept, false};
constexpr Remainder kOfArchive{PartRecords::kKept, true};

// A record for the next scene, with the values of the one before that a format may leave as they are.
LoadedScene NextScene(const LoadedScene& before) {
    LoadedScene next;
    next.readSeconds = before.readSeconds;
    next.inflateSeconds = before.inflateSeconds;
    next.partSeconds = before.partSeconds;
    next.pickMode = before.pickMode;
    next.maxDepth = before.maxDepth;
    next.rootName = before.rootName;
    next.hasRootName = before.hasRootName;
    next.containers = before.containers;
    next.containerCount = before.containerCount;
    next.scene = std::make_unique<SceneMemory>();
    return next;
}

// Runs a driver, which fills a record and returns whether there is something to show, and shows that.
template <class Driver>
void Load(SceneView& view, const char* path, Remainder remainder, Driver driver) {
    const double start = ClockSeconds();
    ResetScene(view, remainder.partRecords);
    LoadedScene next;
    bool loaded = false;
    const bool enough = WithinMemory([&] {
        next = NextScene(view.loaded);
        loaded = driver(next);
    });
    if (!enough) { GiveUpForMemory(path, "", 0, &next.unreadFiles); }
    if (!enough || !loaded) {
        view.loaded.unreadFiles = std::move(next.unreadFiles);
        if (!remainder.numbersStay) { ShowNothing(view); }
        return;
    }
    next.keptContainers = std::move(view.loaded.keptContainers);
    view.loaded = std::move(next);
    SetUpView(view);
    view.loadSeconds = ClockSeconds() - start;
    view.Redraw();
}

LoadProgress ProgressOf(SceneView& view) {
    return [&view](std::int32_t read, std::int32_t known) { view.ShowProgress(read, known); };
}

} // namespace

void LoadStepFile(SceneView& view, const char* path, bool useThreads) {
    Load(view, path, kOfStep, [&](LoadedScene& next) {
        LoadSession session(next);
        session.progress = ProgressOf(view);
        return TraiteSTEPFile(session, path, useThreads) == 0;
    });
}

void LoadStpxFile(SceneView& view, const char* path, const char* rootName, bool useThreads) {
    view.boxMode = 0;
    Load(view, path, kOfStepXml, [&](LoadedScene& next) {
        StpxSession session(next);
        session.progress = ProgressOf(view);
        TraiteSTEPXFileNewMT(session, path, rootName, view.boxMode, useThreads);
        return !session.gaveUp;
    });
}

void LoadStpjFile(SceneView& view, const char* path) {
    Load(view, path, kOfSummary, [&](LoadedScene& next) {
        TraiteSTPJFile(next, path);
        return next.stpjFile != nullptr;
    });
}

void LoadZIPFile(SceneView& view, const char* path, const char* rootName, bool useThreads) {
    view.loaded.pickMode = kPickNothing;
    ConsolePrint("LoadZIPFile : ZIPReader::TraiteZIPFile %s\n", OneLine(path).Text());
    Load(view, path, kOfArchive, [&](LoadedScene& next) {
        ZIPReader reader(next);
        reader.progress = ProgressOf(view);
        return TraiteSTPA(reader, path, rootName, useThreads) == ZIPReader::kSuccess;
    });
}

void SelectShownDepth(SceneView& view, std::int32_t depth) {
    LoadedScene& loaded = view.loaded;
    if (loaded.stpjFile == nullptr) { return; }
    FreeBoxList(*loaded.boxMemory, loaded.boxList);
    if (!SelectDepth(*loaded.stpjFile, depth, loaded.boxList, *loaded.boxMemory)) {
        ConsolePrint("<E> %s: no memory for all of its boxes\n", OneLine(loaded.stpjFile->path).Text());
    }
    loaded.drawnTriangles = CountBoxTriangles(*loaded.boxList);
    ++view.sceneNumber; // other boxes may come to the same addresses
}

} // namespace tarnwick
