// Each sample beside a picture that a person has looked at.

#include "pictures/picture.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

struct Golden {
    std::string name;
    std::string file;
    std::vector<std::string> options;
};

std::ostream& operator<<(std::ostream& out, const Golden& golden) {
    return out << golden.name;
}

std::vector<Golden> ReadList() {
    std::vector<Golden> list;
    std::ifstream file(TARNWICK_GOLDEN "/list");
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#') { continue; }
        std::istringstream words(line);
        Golden golden;
        words >> golden.name >> golden.file;
        for (std::string word; words >> word;) { golden.options.push_back(word); }
        list.push_back(golden);
    }
    return list;
}

Picture Draw(const Golden& golden, const std::vector<std::string>& environment = {}) {
    std::vector<std::string> arguments{TARNWICK_SAMPLES "/" + golden.file, "--size", "192", "-o", "-"};
    arguments.insert(arguments.end(), golden.options.begin(), golden.options.end());
    const ProgramRun run = RunPicture(arguments, environment);
    EXPECT_EQ(run.status, 0) << run.errors;
    return PictureOfBytes(run.output);
}

// Beside the golden picture of that name; keeps what is drawn where it isn't like it.
void ExpectGolden(const Golden& golden, const Picture& expected, const Picture& drawn) {
    EXPECT_GT(expected.width, 0) << "no such picture: tests/pictures/make-golden " << golden.name;
    EXPECT_TRUE(Alike(expected, drawn))
        << DifferentPixels(expected, drawn) << " pixels differ; look at it with "
        << "tarnwick-picture samples/" << golden.file;
}

class GoldenPicture : public testing::TestWithParam<Golden> {};

TEST_P(GoldenPicture, IsWhatIsDrawn) {
    ExpectGolden(GetParam(), ReadPicture(TARNWICK_GOLDEN "/" + GetParam().name + ".png"), Draw(GetParam()));
}

// Drivers of other processors take fewer pixels at once, and round differently.
TEST_P(GoldenPicture, IsWhatAnotherProcessorDraws) {
    ExpectGolden(GetParam(), ReadPicture(TARNWICK_GOLDEN "/" + GetParam().name + ".png"),
                 Draw(GetParam(), {"LP_NATIVE_VECTOR_WIDTH=128"}));
}

INSTANTIATE_TEST_SUITE_P(OfTheSamples, GoldenPicture, testing::ValuesIn(ReadList()),
                         [](const testing::TestParamInfo<Golden>& golden) {
                             std::string name = golden.param.name;
                             std::erase(name, '-');
                             return name;
                         });

TEST(GoldenPictures, OneMachineInFourFormatsIsOnePicture) {
    const Picture machine = ReadPicture(TARNWICK_GOLDEN "/assembly.png");
    for (const char* const file : {"machine-xml/machine.stpx", "machine.stpa", "machine.stpz"}) {
        ExpectGolden({"assembly", file, {}}, machine, Draw({"assembly", file, {}}));
    }
}

} // namespace
} // namespace tarnwick::test
