// What a comparison of pictures must notice, small as the pictures are.

#include "pictures/picture.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>

namespace tarnwick::test {
namespace {

class Noticed : public testing::Test {
protected:
    Noticed() {
        std::filesystem::copy(TARNWICK_SAMPLES "/machine", folder_.Path("machine"));
        std::filesystem::copy(TARNWICK_SAMPLES "/gear.stp", folder_.Path("gear.stp"));
    }

    Picture Draw(const std::string& name) {
        const ProgramRun run = RunPicture({folder_.Path(name), "--size", "192", "-o", "-"});
        EXPECT_EQ(run.status, 0) << run.errors;
        return PictureOfBytes(run.output);
    }
    // Changes one line of a file, the one that begins like this.
    template <class Change>
    void ChangeLine(const std::string& name, const std::string& beginning, Change change) {
        std::string text = ReadWholeFile(folder_.Path(name));
        const std::size_t from = text.find("\n" + beginning) + 1;
        ASSERT_NE(from, 0u) << beginning;
        const std::size_t to = text.find('\n', from);
        std::string line = text.substr(from, to - from);
        const std::string before = line;
        change(line);
        ASSERT_NE(line, before);
        folder_.Write(name, text.replace(from, to - from, line));
    }
    static void Replace(std::string& line, const std::string& what, const std::string& by) {
        const std::size_t at = line.find(what);
        ASSERT_NE(at, std::string::npos) << what;
        line.replace(at, what.size(), by);
    }
    void ExpectOthersThan(const Picture& before, const std::string& name) {
        const Picture after = Draw(name);
        EXPECT_FALSE(Alike(before, after)) << DifferentPixels(before, after);
    }

    TempFolder folder_;
};

TEST_F(Noticed, TheSameFileIsAlike) {
    const Picture before = Draw("gear.stp");
    EXPECT_TRUE(Alike(before, Draw("gear.stp")));
}

TEST_F(Noticed, AFaceThatIsMissing) {
    const Picture before = Draw("gear.stp");
    ChangeLine("gear.stp", "#235=TESSELLATED_SOLID", [](std::string& line) { Replace(line, "#78,", ""); });
    ExpectOthersThan(before, "gear.stp");
}

TEST_F(Noticed, AFaceWhoseTrianglesTurnTheOtherWay) {
    const Picture before = Draw("gear.stp");
    ChangeLine("gear.stp", "#78=TRIANGULATED_FACE", [](std::string& line) {
        const std::size_t list = line.find("((", line.find(",(),"));
        ASSERT_NE(list, std::string::npos);
        line = line.substr(0, list) +
               std::regex_replace(line.substr(list), std::regex("\\((\\d+),(\\d+),(\\d+)\\)"), "($1,$3,$2)");
    });
    ExpectOthersThan(before, "gear.stp");
}

TEST_F(Noticed, AColourThatIsLost) {
    const Picture before = Draw("machine/machine.stp");
    ChangeLine("machine/gear-0011.stp", "#15=COLOUR_RGB",
               [](std::string& line) { Replace(line, "COLOUR_RGB", "COLOUR_SPECIFICATION"); });
    ExpectOthersThan(before, "machine/machine.stp");
}

TEST_F(Noticed, APartThatIsTwoPerCentOfThePictureOff) {
    const Picture before = Draw("machine/machine.stp");
    // The gear of a unit, along its shaft: the machine is 630 long.
    ChangeLine("machine/group-0001.stp", "#116=CARTESIAN_POINT",
               [](std::string& line) { Replace(line, "(-42.,", "(-29.4,"); });
    ExpectOthersThan(before, "machine/machine.stp");
}

TEST_F(Noticed, APartThatIsTwoPerCentTooHigh) {
    const Picture before = Draw("gear.stp");
    std::string text = ReadWholeFile(folder_.Path("gear.stp"));
    // All lists of points.
    std::string scaled;
    const std::regex point("\\(([-0-9.E+]+),([-0-9.E+]+),([-0-9.E+]+)\\)");
    std::size_t from = 0;
    while (from < text.size()) {
        const std::size_t to = std::min(text.find('\n', from), text.size());
        const std::string line = text.substr(from, to - from);
        from = to + 1;
        if (line.find("COORDINATES_LIST") == std::string::npos) {
            scaled += line + '\n';
            continue;
        }
        auto rest = line.begin();
        for (std::sregex_iterator match(line.begin(), line.end(), point), end; match != end; ++match) {
            scaled.append(rest, (*match)[0].first);
            scaled += "(" + match->str(1) + "," + match->str(2) + "," +
                      std::to_string(1.02 * std::stod(match->str(3))) + ")";
            rest = (*match)[0].second;
        }
        scaled.append(rest, line.end());
        scaled += '\n';
    }
    folder_.Write("gear.stp", scaled);
    ExpectOthersThan(before, "gear.stp");
}

} // namespace
} // namespace tarnwick::test
