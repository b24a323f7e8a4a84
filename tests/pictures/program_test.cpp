// tarnwick-picture as a program: what it writes where, and what it says when it doesn't.

#include "pictures/picture.h"
#include "support/p21_text.h"
#include "support/sanitized.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr Pixel kGrey{204, 204, 204, 255};

class PictureProgram : public testing::Test {
protected:
    ProgramRun Run(std::vector<std::string> arguments, const std::vector<std::string>& environment = {}) {
        arguments.insert(arguments.end(), {"--size", "96x64"});
        return RunPicture(arguments, environment);
    }
    Picture Draw(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"-o", "-"});
        const ProgramRun run = Run(arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
        return PictureOfBytes(run.output);
    }
    // Columns and rows that hold anything but a background.
    static std::array<int, 4> Filled(const Picture& picture, const Pixel& background) {
        std::array<int, 4> box{picture.width, -1, picture.height, -1}; // left, right, top, bottom
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                if (picture.At(x, y) == background) { continue; }
                box = {std::min(box[0], x), std::max(box[1], x), std::min(box[2], y), std::max(box[3], y)};
            }
        }
        return box;
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path(""))) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    // Nothing is written, and one line says why.
    void ExpectNone(const ProgramRun& run, int status, const std::string& why) {
        EXPECT_EQ(run.status, status) << run.errors;
        EXPECT_THAT(run.errors, HasSubstr(why));
        EXPECT_THAT(run.output, IsEmpty());
        EXPECT_THAT(Names(), Each(testing::Not(testing::EndsWith(".png"))));
    }

    const std::string gear_ = TARNWICK_SAMPLES "/gear.stp";
    TempFolder folder_;
};

TEST_F(PictureProgram, WritesAPictureOfTheSizeAndSaysNothing) {
    const ProgramRun run = Run({gear_, "-o", folder_.Path("gear.png")});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, IsEmpty());
    EXPECT_THAT(run.errors, IsEmpty());
    const Picture picture = ReadPicture(folder_.Path("gear.png"));
    EXPECT_EQ(picture.width, 96);
    EXPECT_EQ(picture.height, 64);
    EXPECT_THAT(Names(), testing::ElementsAre("gear.png")); // no temporary file
}

// As thumbnailing services do.
TEST_F(PictureProgram, FillsAnEmptyFileThatSomebodyHoldsOpen) {
    const std::string path = folder_.Write("held", "");
    std::FILE* const held = std::fopen(path.c_str(), "rb");
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(Run({gear_, "-o", path}).status, 0);
    char start[5] = {};
    EXPECT_EQ(std::fread(start, 1, 4, held), 4u);
    EXPECT_STREQ(start, "\x89PNG");
    std::fclose(held);
}

TEST_F(PictureProgram, FillsThePictureButForAMargin) {
    for (const char* const view : {"top", "front", "iso", "left"}) {
        const Picture picture = Draw({gear_, "--view", view});
        const auto [left, right, top, bottom] = Filled(picture, kGrey);
        const int across = right - left + 1;
        const int down = bottom - top + 1;
        // 0.94 of 96 by 64.
        EXPECT_TRUE(std::abs(across - 90) <= 2 || std::abs(down - 60) <= 2) << view << across << 'x' << down;
        EXPECT_LE(across, 92) << view;
        EXPECT_LE(down, 62) << view;
    }
}

TEST_F(PictureProgram, WritesEachViewOfOneLoad) {
    const ProgramRun run = Run({gear_, "--view", "iso,front,top", "-o", folder_.Path("part-%v.png")});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(Names(), testing::ElementsAre("part-front.png", "part-iso.png", "part-top.png"));
    for (const char* const view : {"iso", "front", "top"}) {
        EXPECT_EQ(DifferentPixels(ReadPicture(folder_.Path(std::string("part-") + view + ".png")),
                                  Draw({gear_, "--view", view}), 0),
                  0);
    }
}

TEST_F(PictureProgram, TurnsTheModelOnATurntable) {
    const ProgramRun run =
        Run({gear_, "--view", "front", "--turntable", "12", "-o", folder_.Path("turn-%n.png")});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(Names().size(), 12u);
    EXPECT_EQ(Names().front(), "turn-00.png");
    EXPECT_EQ(Names().back(), "turn-11.png");
    EXPECT_NE(
        DifferentPixels(ReadPicture(folder_.Path("turn-00.png")), ReadPicture(folder_.Path("turn-01.png"))),
        0);
}

TEST_F(PictureProgram, TurnsAsTheViewsDo) {
    EXPECT_EQ(DifferentPixels(Draw({gear_, "--rotate", "-90,0,0"}), Draw({gear_, "--view", "front"}), 0), 0);
    EXPECT_EQ(DifferentPixels(Draw({gear_, "--rotate", "0,0,0"}), Draw({gear_, "--view", "top"}), 0), 0);
}

TEST_F(PictureProgram, TakesABackground) {
    EXPECT_EQ(Draw({gear_}).At(0, 0), kGrey);
    EXPECT_EQ(Draw({gear_, "--background", "#12f"}).At(0, 0), (Pixel{0x11, 0x22, 0xff, 255}));
    EXPECT_EQ(Draw({gear_, "--background", "white"}).At(0, 0), (Pixel{255, 255, 255, 255}));
}

TEST_F(PictureProgram, LaysOverAnyBackgroundWhatItDrewOnNone) {
    const std::string flange = TARNWICK_SAMPLES "/flange.stpz"; // half of it is translucent
    const Picture clear = Draw({flange, "--background", "transparent"});
    EXPECT_EQ(clear.At(0, 0)[3], 0);
    const Picture onBlue = Draw({flange, "--background", "#0000ff"});
    int translucent = 0;
    for (std::size_t i = 0; i < clear.pixels.size(); ++i) {
        const Pixel& pixel = clear.pixels[i];
        translucent += pixel[3] > 0 && pixel[3] < 255;
        for (std::size_t c = 0; c < 3; ++c) {
            const int ground = c == 2 ? 255 : 0;
            const double laid = (pixel[c] * pixel[3] + ground * (255 - pixel[3])) / 255.0;
            EXPECT_NEAR(laid, onBlue.pixels[i][c], 3) << i;
        }
    }
    EXPECT_GT(translucent, 200);
}

TEST_F(PictureProgram, SmoothsEdgesUnlessToldNotTo) {
    const Picture rough = Draw({gear_, "--samples", "1"});
    for (const char* const samples : {"4", "9", "16"}) {
        const Picture smooth = Draw({gear_, "--samples", samples});
        EXPECT_GT(DifferentPixels(rough, smooth), 100) << samples;
        // The pictures are the same but for that: their means differ by less than one of 255.
        double difference = 0;
        for (std::size_t i = 0; i < rough.pixels.size(); ++i) {
            difference += rough.pixels[i][0] - smooth.pixels[i][0];
        }
        EXPECT_NEAR(difference / static_cast<double>(rough.pixels.size()), 0, 1) << samples;
    }
}

TEST_F(PictureProgram, ClicksFirstAndTellsWhatIsHit) {
    const ProgramRun run = Run({gear_, "--view", "top", "--pick", "48,18", "-o", "-"});
    EXPECT_THAT(run.errors, HasSubstr("Selected face: #"));
    EXPECT_EQ(PictureOfBytes(run.output).At(48, 18)[1], 0); // no green in the colour of what is picked
}

TEST_F(PictureProgram, NeedsNoDisplayAndNoHome) {
    const ProgramRun run = Run({gear_, "-o", "-"}, {"DISPLAY=", "WAYLAND_DISPLAY=", "HOME=/proc/none",
                                                    "XDG_CACHE_HOME=/proc/none", "XDG_RUNTIME_DIR="});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.errors, IsEmpty());
}

TEST_F(PictureProgram, SaysThatThereIsNoDriver) {
    ExpectNone(Run({gear_, "-o", folder_.Path("a.png")},
                   {"LIBGL_DRIVERS_PATH=/nonexistent", "__EGL_VENDOR_LIBRARY_DIRS=/nonexistent"}),
               1, "no graphics driver can be loaded");
}

TEST_F(PictureProgram, SendsAFileWithNothingToShowToThePreparation) {
    const std::string exact =
        folder_.Write("exact.stp", "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('AP242'));\nENDSEC;\n"
                                   "DATA;\n#1=CARTESIAN_POINT('',(0.,0.,0.));\nENDSEC;\n"
                                   "END-ISO-10303-21;\n");
    ExpectNone(Run({exact, "-o", folder_.Path("a.png")}), 1, "tarnwick-prepare");
    ExpectNone(Run({folder_.Write("x.step", "ISO-10303-21;"), "-o", folder_.Path("a.png")}), 1,
               "tarnwick-prepare");
}

TEST_F(PictureProgram, PreparesFirstWhatTheViewerShowsNothingOf) {
#ifndef TARNWICK_HAS_OPEN
    GTEST_SKIP() << "built without tarnwick-open";
#endif
    const std::vector<std::string> environment = {"XDG_CACHE_HOME=" + folder_.Path("cache")};
    const std::string other = folder_.Write("gear.step", ReadWholeFile(gear_));
    const ProgramRun run = Run({other, "--prepare", "-o", "-"}, environment);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.errors, IsEmpty());
    EXPECT_EQ(PictureOfBytes(run.output).pixels, Draw({gear_}).pixels);
    EXPECT_TRUE(std::filesystem::exists(folder_.Path("cache/tarnwick/prepared")));
    // What is shown by itself isn't prepared.
    const ProgramRun plain = Run({gear_, "--prepare", "-o", "-"}, {"XDG_CACHE_HOME=" + folder_.Path("b")});
    EXPECT_EQ(plain.status, 0) << plain.errors;
    EXPECT_FALSE(std::filesystem::exists(folder_.Path("b")));
    ExpectNone(Run({folder_.Write("x.step", "ISO-10303-21;"), "--prepare", "-o", folder_.Path("a.png")},
                   environment),
               1, "x.step: nothing of it could be prepared; tarnwick-open tells why");
}

TEST_F(PictureProgram, WritesNothingOfAFileThatCannotBeRead) {
    ExpectNone(Run({"/nonexistent.stp", "-o", folder_.Path("a.png")}), 1, "/nonexistent.stp can't be opened");
    ExpectNone(Run({folder_.Write("x.stp", "no such file"), "-o", folder_.Path("a.png")}), 1, "x.stp");
    ExpectNone(Run({folder_.Write("x.stpa", "no such file"), "-o", folder_.Path("a.png")}), 1, "x.stpa");
    ExpectNone(Run({folder_.Write("x.stpj", "{}"), "-o", folder_.Path("a.png")}), 1, "x.stpj");
}

TEST_F(PictureProgram, KeepsToItsLimits) {
    ExpectNone(Run({gear_, "-o", folder_.Path("a.png"), "--size-limit", "0.05"}), 1, "larger than the limit");
    EXPECT_EQ(Run({gear_, "-o", folder_.Path("b"), "--size-limit", "1", "--time-limit", "100"}).status, 0);
}

TEST_F(PictureProgram, EndsALoadThatStandsStill) {
    std::string text = ReadWholeFile(TARNWICK_SAMPLES "/machine-xml/machine.stpx");
    const std::string name = "<CharacterString>";
    text.insert(text.find(name) + name.size(), "A &lt; B");
    const std::string path = folder_.Write("still.stpx", text);
    const ProgramRun run = Run({path, "-o", folder_.Path("a.png"), "--time-limit", "0.3"});
    ExpectNone(run, 1, "it takes longer than the limit");
    EXPECT_THAT(run.errors, HasSubstr("stands still"));
}

TEST_F(PictureProgram, TellsOfAPictureThatCannotBeWritten) {
    EXPECT_EQ(Run({gear_, "-o", "/proc/none/a.png"}).status, 1);
    EXPECT_THAT(Run({gear_, "-o", "/proc/none/a.png"}).errors, HasSubstr("No such file or directory"));
    EXPECT_EQ(Run({gear_, "-o", "/dev/full"}).status, 1);
}

TEST_F(PictureProgram, RefusesAWrongCommandLine) {
    const std::vector<std::vector<std::string>> wrong{
        {},
        {gear_},
        {"-o", "a.png"},
        {gear_, "-o", "a.png", "--view", "side"},
        {gear_, "-o", "a.png", "--view", "iso,top"},
        {gear_, "-o", "-", "--view", "iso,top"},
        {gear_, "-o", "a.png", "--turntable", "3"},
        {gear_, "-o", "a-%n.png", "--turntable", "0"},
        {gear_, "-o", "a.png", "--rotate", "1,2"},
        {gear_, "-o", "a.png", "--rotate", "1,2,nan"},
        {gear_, "-o", "a.png", "--rotate", "1,2,3", "--view", "iso"},
        {gear_, "-o", "a.png", "--background", "blueish"},
        {gear_, "-o", "a.png", "--background", "#12345"},
        {gear_, "-o", "a.png", "--samples", "0"},
        {gear_, "-o", "a.png", "--samples", "5"},
        {gear_, "-o", "a.png", "--pick", "3"},
        {gear_, "-o", "a.png", "--depth", "-1"},
        {gear_, "-o", "a.png", "--odd"},
    };
    for (const auto& arguments : wrong) {
        const ProgramRun run = RunPicture(arguments);
        EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments) << run.errors;
        EXPECT_THAT(run.errors, testing::Not(IsEmpty()));
    }
    for (const char* const size : {"0x4", "5x", "x5", "5x5x5", "17000x5", "-3", "3.5"}) {
        EXPECT_EQ(RunPicture({gear_, "-o", "a.png", "--size", size}).status, 2) << size;
    }
}

TEST_F(PictureProgram, TellsItsVersionAndUse) {
    EXPECT_EQ(RunPicture({"--version"}).output, std::string("tarnwick-picture ") + TARNWICK_VERSION + "\n");
    EXPECT_THAT(RunPicture({"--help"}).output, HasSubstr("--turntable"));
}

// Also where it is the driver that doesn't look at what it gets.
TEST_F(PictureProgram, EndsInWordsWhereMemoryIsShort) {
    if (kSanitized) { GTEST_SKIP() << "a sanitizer needs more address space than any limit leaves"; }
    int written = 0;
    for (int kilobytes = 15000; kilobytes < 500000; kilobytes += kilobytes / 6) {
        const std::string limit = "ulimit -v " + std::to_string(kilobytes);
        const ProgramRun run =
            RunProgram("/bin/sh", {"-c", limit + "; exec \"$0\" \"$1\" --size 64 -o \"$2\"", TARNWICK_PICTURE,
                                   gear_, folder_.Path("a.png")});
        ASSERT_TRUE(run.status == 0 || run.status == 1) << kilobytes << ": " << run.status << run.errors;
        EXPECT_EQ(run.status == 0, std::filesystem::exists(folder_.Path("a.png"))) << kilobytes;
        EXPECT_EQ(run.status == 0, run.errors.empty()) << kilobytes << run.errors;
        written += run.status == 0;
        std::filesystem::remove(folder_.Path("a.png"));
    }
    EXPECT_GT(written, 0);
}

} // namespace
} // namespace tarnwick::test
