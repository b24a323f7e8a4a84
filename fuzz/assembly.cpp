// An assembly over several files.
#include "formats/load_commands.h"
#include "harness.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const auto paths = fuzz::Folder::Own().WriteBundle(fuzz::Text(data, size), "top.stp");
        SceneView view;
        LoadStepFile(view, paths[0].c_str(), 0);
        fuzz::Touch(view);
        if (size < 8192) { fuzz::Report(view); }
    });
}
