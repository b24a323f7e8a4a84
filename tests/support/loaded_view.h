#pragma once

#include "formats/load_commands.h"
#include "load/scene_view.h"
#include "load/view_setup.h"
#include "support/capture.h"

#include <string>
#include <vector>

namespace tarnwick::test {

// A view that counts its frames, and keeps what a load prints.
struct CountingView final : SceneView {
    void Redraw() override { ++redraws; }

    // Loads a P21 file and keeps what that printed.
    void Load(const std::string& path, bool useThreads = 0) {
        LogCapture log;
        LoadStepFile(*this, path.c_str(), useThreads);
        output = log.TakeOutput();
        console = log.TakeConsole();
    }
    std::vector<const StepFaceB*> Faces() const {
        std::vector<const StepFaceB*> faces;
        for (std::int32_t i = 0; loaded.drawList != nullptr && i < loaded.drawList->count; ++i) {
            const DrawItem& item = *loaded.drawList->items[i];
            faces.insert(faces.end(), item.meshes, item.meshes + item.meshCount);
        }
        return faces;
    }

    int redraws = 0;
    std::string output;
    std::string console;
};

} // namespace tarnwick::test
