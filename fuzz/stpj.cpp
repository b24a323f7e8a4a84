// A summary file at several depths.
#include "formats/load_commands.h"
#include "harness.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        fuzz::Folder::Own().Clear();
        SceneView view;
        LoadStpjFile(view, fuzz::Folder::Own().Write("x.stpj", fuzz::Text(data, size)).c_str());
        fuzz::Touch(view);
        if (size < 4096) { fuzz::Report(view); }
        for (const std::int32_t depth : {0, 1, 2, view.loaded.maxDepth}) {
            SelectShownDepth(view, depth);
            fuzz::Touch(view);
        }
    });
}
