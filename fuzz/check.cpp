// Why a file shows less than it should: the check of the files of an assembly, and its two reports.
#include "check/check_path.h"
#include "formats/load_commands.h"
#include "harness.h"
#include "load/no_controls.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const auto paths = fuzz::Folder::Own().WriteBundle(fuzz::Text(data, size), "top.stp");
        SceneView view;
        NoControls controls;
        LoadDispatch dispatch{view, controls, kLoadCommands};
        const CheckReport report = CheckPath(dispatch, paths[0], nullptr, 0);
        CheckText(report);
        CheckJson(report);
    });
}
