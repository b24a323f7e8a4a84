// tarnwick-picture beside the viewer: what it draws as the viewer frames it is what the window shows.

#include "dialog_fixture.h"
#include "support/run_program.h"

namespace tarnwick::test {
namespace {

class SamePicture : public DialogFixture {
protected:
    // How many pixels of the window differ from the picture of the same file and size; -1 without a picture.
    int Different(const std::string& file, const std::vector<std::string>& options = {}) {
        const QImage shown = Picture();
        const std::string path = folder_.filePath("drawn.png").toStdString();
        std::vector<std::string> arguments{
            file,        "-o",
            path,        "--no-fit",
            "--samples", "1",
            "--size",    std::to_string(shown.width()) + "x" + std::to_string(shown.height())};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramRun run = RunProgram(TARNWICK_PICTURE, arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
        const QImage drawn(QString::fromStdString(path));
        if (drawn.isNull() || drawn.size() != shown.size()) { return -1; }
        int different = 0;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                different += (shown.pixel(x, y) & 0xffffff) != (drawn.pixel(x, y) & 0xffffff);
            }
        }
        return different;
    }
};

TEST_F(SamePicture, OfEachSampleToThePixel) {
    const std::string samples = TARNWICK_SAMPLES;
    Open("", kLoadCommands);
    for (const char* const name :
         {"/gear.stp", "/flange.stpz", "/machine/machine.stp", "/machine.stpa", "/machine.stpj"}) {
        Load(samples + name);
        EXPECT_EQ(Different(samples + name, {"--view", "top"}), 0) << name;
    }
}

// They have no normals, and are lit by the last one of what the window drew before: here nothing.
TEST_F(SamePicture, OfFiniteElementsThatTheViewerStartsWithToThePixel) {
    const std::string panel = std::string(TARNWICK_SAMPLES) + "/panel-fem.stp";
    Open('"' + panel + '"', kLoadCommands);
    EXPECT_EQ(Different(panel, {"--view", "top"}), 0);
}

TEST_F(SamePicture, OfLinesAndOfAPickedFaceToThePixel) {
    const std::string gear = std::string(TARNWICK_SAMPLES) + "/gear.stp";
    Open("", kLoadCommands);
    Load(gear);
    OpenGLControl& view = dialog->View();
    const WindowPoint place{view.viewWidth / 2, view.viewHeight / 4};
    view.PickAt(place);
    EXPECT_EQ(
        Different(gear, {"--view", "top", "--pick", std::to_string(place.x) + "," + std::to_string(place.y)}),
        0);
    view.PickAt({1, 1});
    view.wireframe = 1;
    view.Redraw();
    EXPECT_EQ(Different(gear, {"--view", "top", "--wireframe"}), 0);
}

} // namespace
} // namespace tarnwick::test
