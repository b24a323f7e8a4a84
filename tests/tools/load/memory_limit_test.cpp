// A process that may not have more than so much memory: a load that doesn't fit is given up in words, and
// never ends the program.

#include "support/assembly_text.h"
#include "support/packed.h"
#include "support/sanitized.h"
#include "tools/load/load_program.h"

namespace tarnwick::test {
namespace {

using testing::HasSubstr;

class MemoryLimit : public LoadProgram {
protected:
    void SetUp() override {
        if (kSanitized) { GTEST_SKIP() << "a sanitizer needs more address space than any limit leaves"; }
#ifdef TARNWICK_COUNTS_LINES
        GTEST_SKIP() << "who has no memory to write the counts of its lines spoils those of all others";
#endif
    }
    // Loads with so many kilobytes of address space in all.
    ProgramRun RunWithin(int kilobytes, const std::string& path) {
        return RunProgram("/bin/sh", {"-c", "ulimit -v " + std::to_string(kilobytes) + "; exec \"$0\" \"$1\"",
                                      TARNWICK_LOAD, path});
    }
    static std::ptrdiff_t ErrorLines(const ProgramRun& run) {
        std::ptrdiff_t count = 0;
        for (std::size_t at = 0; (at = run.errors.find("<E>", at)) != std::string::npos; ++at) { ++count; }
        return count;
    }
    // Of a program that the system found no room for, its libraries included.
    static constexpr int kNotStarted = 127;
    // Every limit from one at which nothing can be loaded to one at which everything can.
    void LoadWithinAll(const std::string& path, bool isOneFile) {
        int loaded = 0;
        int givenUp = 0;
        for (int kilobytes = 11000; kilobytes < 120000; kilobytes += kilobytes / 16) {
            const ProgramRun run = RunWithin(kilobytes, path);
            if (run.status == kNotStarted) { continue; }
            ASSERT_TRUE(run.status == 0 || run.status == 1) << kilobytes << ": " << run.status << run.errors;
            if (run.status == 0) {
                ++loaded;
                continue;
            }
            ++givenUp;
            EXPECT_GE(ErrorLines(run), 1) << kilobytes << ": " << run.errors;
            if (isOneFile) { EXPECT_EQ(ErrorLines(run), 1) << kilobytes << ": " << run.errors; }
        }
        EXPECT_GT(loaded, 0);
        EXPECT_GT(givenUp, 0);
    }
};

TEST_F(MemoryLimit, GivesUpAPartInOneLine) {
    Lines lines{"#3=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)));"};
    std::string ids;
    for (int i = 0; i < 60000; ++i) {
        if (i > 0) { ids += ','; }
        const std::string id = "#" + std::to_string(10 + i);
        ids += id;
        lines.push_back(id + "=TRIANGULATED_FACE('',#3,3,$,$,$,((1,2,3)));");
    }
    lines.push_back("#4=TESSELLATED_SHELL('',(" + ids + "),$);");
    LoadWithinAll(folder_.Write("large.stp", PartText("(#4)", lines)), true);
}

TEST_F(MemoryLimit, GivesUpWhatDoesntFitOfAnAssembly) {
    AssemblyText top;
    const int root = top.Product("root");
    for (int i = 0; i < 8; ++i) {
        const std::string name = "part" + std::to_string(i);
        const int part = top.Product(name);
        top.Use(root, part);
        top.File(part, name + ".stp");
        folder_.Write(name + ".stp", PlateText(20000));
    }
    LoadWithinAll(folder_.Write("top.stp", top.Text()), false);
}

TEST_F(MemoryLimit, TakesTheCountsOfAFileForHints) {
    const std::string points = "#10=COORDINATES_LIST('',2147483647,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)));";
    const std::string face = "#11=TRIANGULATED_FACE('',#10,2147483647,$,$,$,((1,2,3)));";
    const std::string shell = "#12=TESSELLATED_SHELL('',(#11),$);";
    const std::string summary =
        R"({"products_table":{"nb_products":1,"products":[{"idx":1,"name":"a","bbox":[0 1 0 1 0 1 ]}]},)"
        R"("occurrences_table":{"nb_occurrences":2147483647,"max_depth":0,"occurrences":[)"
        R"({"depth":0,"idx_prd":1,"rotation":[1 0 0 0 1 0 0 0 1 ],"translation":[0 0 0 ]}]}})";
    for (const std::string& path : {folder_.Write("x.stp", PartText("(#12)", {points, face, shell})),
                                    folder_.Write("x.stpj", summary)}) {
        const ProgramRun run = RunWithin(20000, path);
        EXPECT_EQ(run.status, 0) << path << run.errors;
    }
}

TEST_F(MemoryLimit, EndsInflatedBytesAtTheEndOfTheirBlock) {
    // Packed 1000 to 1, where the block has room for 21 to 1 and a little more.
    std::string text = SmallPartText();
    text.insert(text.find("DATA;\n") + 6, std::string(2000, '\n'));
    text += std::string(30'000'000, '\n');
    const ProgramRun run = RunWithin(40000, folder_.Write("x.stpz", ZlibPacked(text)));
    EXPECT_EQ(run.status, 0) << run.errors;
    const std::string::size_type at = run.output.find("total uncompress size = ");
    ASSERT_NE(at, std::string::npos) << run.output;
    EXPECT_LT(std::stoul(run.output.substr(at + 24)), 2'000'000u);
}

} // namespace
} // namespace tarnwick::test
