#include "make_files.h"

namespace tarnwick::make {
namespace {

TEST_F(MakeFiles, WrongCommandLinesGiveTwoAndWriteNothing) {
    const std::vector<std::vector<std::string>> wrong{
        {},
        {"part"},
        {"house", Path("x")},
        {"part", Path("x"), "--triangles", "-3"},
        {"part", Path("x"), "--triangles", "11"},
        {"part", Path("x"), "--triangles", "many"},
        {"part", Path("x"), "--kind", "1"},
        {"part", Path("x"), "--kind", "cubes"},
        {"part", Path("x"), "--shape", "teapot"},
        {"part", Path("x"), "--normals", "two"},
        {"part", Path("x"), "--colours", "0"},
        {"part", Path("x"), "--colours", "1001"},
        {"part", Path("x"), "--faces", "0"},
        {"part", Path("x"), "--faces", "20000"},
        {"part", Path("x"), "--kind", "sets", "--material"},
        {"part", Path("x"), "--loud"},
        {"assembly", Path("x"), "--parts", "0"},
        {"assembly", Path("x"), "--depth", "-1"},
        {"assembly", Path("x"), "--parts", "9999", "--uses", "9999"},
        {"assembly", Path("gear-0004.stp")},
        {"assembly", Path("group-0001.stpz")},
        {"fem", Path("x"), "--quads", "0"},
        {"stpx", Path("gear-0004.stpx")},
        {"stpx", Path("unit-0001.stpx")},
        {"stpx", Path("x"), "--route", "round"},
        {"stpx", Path("x"), "--documents", "6"},
        {"stpx", Path("x"), "--stored-documents"},
        {"stpx", Path("x"), "--parts", "9999", "--uses", "9999"},
        {"stpa", Path("x"), "--compress"},
        {"stpa", Path("x"), "--documents", "-1"},
        {"stpj", Path("x"), "--occurrences", "0"},
        {"stpj", Path("x"), "--occurrences", "5", "--uses", "2"},
    };
    for (const auto& arguments : wrong) EXPECT_EQ(Run(arguments), 2) << testing::PrintToString(arguments);
    EXPECT_EQ(FileCount(), 0u);
}

TEST_F(MakeFiles, UnwritableOutputGivesOne) {
    for (const char* kind : {"part", "assembly", "fem", "stpx", "stpa", "stpj"})
        EXPECT_EQ(Run({kind, Path("no/such/folder/x.stp")}), 1);
    if (fs::exists("/dev/full")) {
        EXPECT_EQ(Run({"part", "/dev/full"}), 1);
        EXPECT_EQ(Run({"part", "/dev/full", "--compress"}), 1);
        EXPECT_EQ(Run({"stpa", "/dev/full", "--triangles-per-part", "100"}), 1);
        EXPECT_EQ(Run({"stpj", "/dev/full"}), 1);
    }
}

TEST_F(MakeFiles, HelpAndVersionGiveZero) {
    EXPECT_EQ(Run({"--help"}), 0);
    EXPECT_EQ(Run({"--version"}), 0);
    EXPECT_EQ(Run({"part", "--help"}), 0);
}

} // namespace
} // namespace tarnwick::make
