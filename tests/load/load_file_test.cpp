#include "load/load_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What LoadFile did, in order.
std::vector<std::string>* steps = nullptr;

void Note(const std::string& step) {
    steps->push_back(step);
}

struct NotingView final : SceneView {
    void DeleteDisplayList() override { Note("delete display list"); }
};

struct NotingControls final : LoadControls {
    void SetStatusText(const std::string& text) override { Note("status " + text); }
    void ShowDepthSlider(bool visible) override { Note(visible ? "show slider" : "hide slider"); }
    void EnableDepthSlider(bool enabled) override { Note(enabled ? "enable slider" : "disable slider"); }
    void SetDepthRange(std::int32_t low, std::int32_t high) override {
        Note("range " + std::to_string(low) + " " + std::to_string(high));
    }
    void SetDepthPosition(std::int32_t position) override { Note("position " + std::to_string(position)); }
    void SetDepthLabel(std::int32_t depth) override { Note("label " + std::to_string(depth)); }
    void UpdateData() override { Note("update data"); }
};

std::string Name(const char* rootName) {
    return rootName != nullptr ? rootName : "null";
}

const LoadCommands kCommands{
    .loadStepFile =
        [](SceneView& view, const char* path, bool useThreads) {
            view.loaded.drawnTriangles = 5;
            view.loadSeconds = 0.5;
            Note(std::string("step ") + path + " " + std::to_string(useThreads));
        },
    .loadStpxFile =
        [](SceneView&, const char* path, const char* rootName, bool useThreads) {
            Note(std::string("stpx ") + path + " " + Name(rootName) + " " + std::to_string(useThreads));
        },
    .loadStpjFile =
        [](SceneView& view, const char* path) {
            view.loaded.drawnTriangles = 5;
            view.loadSeconds = 0.5;
            view.loaded.maxDepth = 4;
            Note(std::string("stpj ") + path);
        },
    .loadZipFile =
        [](SceneView&, const char* path, const char* rootName, bool useThreads) {
            Note(std::string("stpa ") + path + " " + Name(rootName) + " " + std::to_string(useThreads));
        },
};

class LoadFileTest : public testing::Test {
protected:
    std::vector<std::string> Load(const std::string& path, const char* rootName = nullptr,
                                  bool useThreads = 0) {
        std::vector<std::string> noted;
        steps = &noted;
        LoadFile(dispatch_, path.c_str(), rootName, useThreads);
        return noted;
    }

    NotingView view_;
    NotingControls controls_;
    LoadDispatch dispatch_{view_, controls_, kCommands};
};

TEST_F(LoadFileTest, LoadsAStepFile) {
    EXPECT_THAT(Load("/a/b.stp", "ignored", 1),
                ElementsAre("delete display list", "hide slider", "step /a/b.stp 1",
                            "status Nb Triangles: 5  CPU tot: 0.500s "));
    EXPECT_EQ(dispatch_.currentPath, "/a/b.stp");
}

TEST_F(LoadFileTest, LoadsStepXml) {
    EXPECT_THAT(Load("b.stpx", "Gear", 1),
                ElementsAre("delete display list", "hide slider", "stpx b.stpx Gear 1",
                            "status Nb Triangles: 0  CPU tot: 0.000s ", "range 0 0", "position 0", "label 0",
                            "disable slider", "update data"));
    EXPECT_EQ(Load("b.stpxz")[2], "stpx b.stpxz null 0");
}

TEST_F(LoadFileTest, LoadsASummary) {
    EXPECT_THAT(Load("b.stpj"),
                ElementsAre("delete display list", "stpj b.stpj", "status 5  CPU tot: 0.500s ", "show slider",
                            "enable slider", "range 0 4", "position 4", "label 4", "update data"));
}

TEST_F(LoadFileTest, LoadsAnArchive) {
    EXPECT_THAT(Load("b.stpa", "Gear", 1),
                ElementsAre("delete display list", "hide slider", "stpa b.stpa Gear 1",
                            "status Nb Triangles: 0  CPU tot: 0.000s "));
}

TEST_F(LoadFileTest, TakesExtensionsWithoutRegardToCase) {
    for (const char* const path : {"b.STP", "b.Stp", "b.stpz", "b.STPZ", "b.sTPz"}) {
        EXPECT_EQ(Load(path).at(2), std::string("step ") + path + " 0");
    }
    EXPECT_EQ(Load("b.STPX").at(2), "stpx b.STPX null 0");
    EXPECT_EQ(Load("b.STPJ").at(1), "stpj b.STPJ");
    EXPECT_EQ(Load("b.STPA").at(2), "stpa b.STPA null 0");
}

TEST_F(LoadFileTest, DoesNothingForOtherExtensions) {
    for (const std::string path : {"b.step", "b.p21", "b.stp.Z", "b.Z", "b.zip", "b.st", "b.stpp", "b.stp ",
                                   "b.", "b.stpxzz", "b.123456789", "b.stpstpstp", "b.12345678"}) {
        EXPECT_THAT(Load(path), IsEmpty()) << path;
        EXPECT_EQ(dispatch_.currentPath, path) << "the path has changed all the same";
    }
}

TEST_F(LoadFileTest, DoesNothingForAPathWithoutExtension) {
    for (const std::string path : {"", "b", "stp", ".stp", "/a/b", "/a.stp/b", "."}) {
        EXPECT_THAT(Load(path), IsEmpty()) << path;
        EXPECT_EQ(dispatch_.currentPath, path);
    }
}

TEST_F(LoadFileTest, LooksForTheLastPoint) {
    EXPECT_EQ(Load("b.stpx.stp").at(2), "step b.stpx.stp 0");
    EXPECT_EQ(Load("..stp").at(2), "step ..stp 0");
    EXPECT_EQ(Load("/.stp").at(2), "step /.stp 0");
}

TEST_F(LoadFileTest, MayBeGivenItsOwnCurrentPath) {
    Load("/some/rather/long/path/of/a/part.stp");
    std::vector<std::string> noted;
    steps = &noted;
    LoadFile(dispatch_, dispatch_.currentPath.c_str(), nullptr, 0);
    EXPECT_EQ(noted.at(2), "step /some/rather/long/path/of/a/part.stp 0");
    EXPECT_EQ(dispatch_.currentPath, "/some/rather/long/path/of/a/part.stp");
}

TEST_F(LoadFileTest, FollowsTheSliderToAnotherDepth) {
    dispatch_.commands.selectDepth = [](SceneView& view, std::int32_t depth) {
        view.loaded.drawnTriangles = 24;
        Note("select " + std::to_string(depth));
    };
    view_.selectedIndex = 3;
    view_.loadSeconds = 0.5;
    std::vector<std::string> noted;
    steps = &noted;
    ChangeDepth(dispatch_, 2);
    EXPECT_THAT(noted, ElementsAre("label 2", "update data", "select 2",
                                   "status Nb Triangles: 24  CPU tot: 0.500s "));
    EXPECT_EQ(view_.selectedIndex, -1) << "another box may stand there";
    dispatch_.commands = {};
    noted.clear();
    ChangeDepth(dispatch_, 0);
    EXPECT_THAT(noted, ElementsAre("label 0", "update data", "status Nb Triangles: 24  CPU tot: 0.500s "));
}

TEST_F(LoadFileTest, DoesNothingForAKindThatTheProgramDoesNotLoad) {
    dispatch_.commands = {};
    for (const char* const path : {"b.stp", "b.stpx", "b.stpj", "b.stpa"}) {
        EXPECT_THAT(Load(path), IsEmpty());
    }
}

} // namespace
} // namespace tarnwick::test
