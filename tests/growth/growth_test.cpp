// Loads and checks take steps as their files grow, whatever is in them.

#include "check/check_path.h"
#include "formats/load_commands.h"
#include "growth/step_counter.h"
#include "growth_cases.h"
#include "load/load_file.h"
#include "load/no_controls.h"
#include "product/draw_list.h"
#include "support/capture.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

class GrowthOf : public testing::TestWithParam<growth::Case> {};

// The steps of a load or of a check, without those that an empty file takes too.
template <class Work>
std::uint64_t Steps(const std::string& path, Work work) {
    const LogCapture log;
    SceneView view;
    NoControls controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    const std::uint64_t before = StepsTaken();
    work(dispatch, path);
    return StepsTaken() - before;
}

template <class Work>
void ExpectFourTimesTheStepsForFourTimesTheFile(const growth::Case& tried, Work work) {
    const TempFolder folder;
    const auto steps = [&](int times) {
        const std::string name = "times" + std::to_string(times) + "." + tried.extension;
        return Steps(folder.Write(name, tried.text(tried.n / 8 * times)), work);
    };
    const std::uint64_t once = steps(1);
    const std::uint64_t fourTimes = steps(4);
    EXPECT_GT(once, 1000u) << "it wasn't read";
    EXPECT_LT(fourTimes, 6 * once) << once << " and " << fourTimes << " steps";
}

TEST_P(GrowthOf, ALoadIsThatOfItsFile) {
    ExpectFourTimesTheStepsForFourTimesTheFile(GetParam(),
                                               [](LoadDispatch& dispatch, const std::string& path) {
                                                   LoadFile(dispatch, path.c_str(), nullptr, 0);
                                               });
}

TEST_P(GrowthOf, ACheckIsThatOfItsFile) {
    ExpectFourTimesTheStepsForFourTimesTheFile(
        GetParam(), [](LoadDispatch&, const std::string& path) { CheckWith(path, nullptr, {}); });
}

// Uses of one part that has as many faces.
std::uint64_t StepsToCount(int n) {
    StepFaceB face{};
    face.triangleCount = 1;
    std::vector<StepFaceB*> meshes(static_cast<std::size_t>(n), &face);
    DrawItem item{meshes.data(), n, nullptr, nullptr};
    std::vector<DrawItem*> items(static_cast<std::size_t>(n), &item);
    DrawList list{{items.data()}, n, n};
    const std::uint64_t before = StepsTaken();
    EXPECT_EQ(CountTriangles(list), n * n);
    return StepsTaken() - before;
}

TEST(Growth, OfTheCountOfTrianglesIsThatOfFacesAndUses) {
    EXPECT_LT(StepsToCount(4000), 6 * StepsToCount(1000));
}

std::string NameOf(const testing::TestParamInfo<growth::Case>& info) {
    std::string name;
    bool isStart = true;
    for (const char c : std::string(info.param.name)) {
        if (c != ' ') { name += isStart ? static_cast<char>(std::toupper(c)) : c; }
        isStart = c == ' ';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(With, GrowthOf, testing::ValuesIn(growth::Cases().begin(), growth::Cases().end()),
                         NameOf);

} // namespace
} // namespace tarnwick::test
