// STEP XML: its documents and the parts that they lead to, and the boxes of the first document.
#include "formats/load_commands.h"
#include "harness.h"
#include "xml/stpx_driver.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const auto paths = fuzz::Folder::Own().WriteBundle(fuzz::Text(data, size), "top.stpx");
        LoadedScene boxes;
        boxes.scene = std::make_unique<SceneMemory>();
        StpxSession session(boxes);
        TraiteSTEPXFileNewMT(session, paths[0].c_str(), nullptr, 1, false);
        SceneView view;
        LoadStpxFile(view, paths[0].c_str(), "wheel", 0);
        fuzz::Touch(view);
        if (size < 4096) { fuzz::Report(view); }
    });
}
