// Why a file shows less than it should: the check of the files of an assembly, and its two reports.
#include "check/check_path.h"
#include "formats/format_commands.h"
#include "harness.h"

using namespace tarnwick;

namespace {

class NoControls final : public LoadControls {
public:
    void SetStatusText(const std::string&) override {}
    void ShowDepthSlider(bool) override {}
    void EnableDepthSlider(bool) override {}
    void SetDepthRange(std::int32_t, std::int32_t) override {}
    void SetDepthPosition(std::int32_t) override {}
    void SetDepthLabel(std::int32_t) override {}
    void UpdateData() override {}
};

} // namespace

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
