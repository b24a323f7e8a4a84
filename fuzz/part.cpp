// One part, from its file to the scene.
#include "formats/load_commands.h"
#include "harness.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        fuzz::Folder::Own().Clear();
        SceneView view;
        LoadStepFile(view, fuzz::Folder::Own().Write("x.stp", fuzz::Text(data, size)).c_str(), 0);
        fuzz::Touch(view);
        if (size < 8192) { fuzz::Report(view); }
    });
}
