#include "support/packed.h"
#include "tools/load/load_program.h"

#include <string>

namespace tarnwick::test {
namespace {

using testing::HasSubstr;

const std::string kCount = "\nNombre d'entites dans le fichier d'entree: 35\n";

bool IsStatus(const std::string& text) {
    const std::string start = "Nb Triangles: 8  CPU tot: ";
    const std::string end = "s \n";
    if (text.size() < start.size() + 5 + end.size() || text.substr(0, start.size()) != start ||
        text.substr(text.size() - end.size()) != end) {
        return false;
    }
    const std::string seconds = text.substr(start.size(), text.size() - start.size() - end.size());
    return seconds.find('.') == seconds.size() - 4 &&
           seconds.find_first_not_of("0123456789.") == std::string::npos &&
           seconds.rfind('.') == seconds.find('.');
}

TEST_F(LoadProgram, PrintsTheStatusTextLast) {
    const ProgramRun run = Run({part_});
    ASSERT_EQ(run.output.substr(0, kCount.size()), kCount);
    EXPECT_TRUE(IsStatus(run.output.substr(kCount.size()))) << run.output;
    EXPECT_EQ(run.errors, "Start TraiteSTEPFile\n");
}

TEST_F(LoadProgram, LoadsACompressedPart) {
    const ProgramRun run = Run({folder_.Write("x.stpz", GzipPacked(SmallPartText()))});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, HasSubstr("total uncompress size = " + std::to_string(SmallPartText().size()) +
                                      ", in 1 step\n" + kCount));
}

TEST_F(LoadProgram, LoadsTheCompressedTwinOfAMissingPart) {
    folder_.Write("twin.stpz", ZlibPacked(SmallPartText()));
    EXPECT_EQ(Run({folder_.Path("twin.stp")}).status, 0);
}

TEST_F(LoadProgram, LoadsAPathWithBlanksAndPoints) {
    const std::string path = folder_.Write("my part v1.2 final.STP", SmallPartText());
    EXPECT_EQ(Run({path}).status, 0);
    EXPECT_EQ(Run({path, "Big Gear"}).status, 0);
}

TEST_F(LoadProgram, LoadsAPathThatIsNoUtf8) {
    EXPECT_EQ(Run({folder_.Write("\xE9t\xE9.stp", SmallPartText())}).status, 0);
}

TEST_F(LoadProgram, RepeatsTheLoad) {
    const ProgramRun run = Run({part_, "--repeat", "3"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "Start TraiteSTEPFile\nStart TraiteSTEPFile\nStart TraiteSTEPFile\n");
    ASSERT_EQ(run.output.substr(0, 3 * kCount.size()), kCount + kCount + kCount);
    EXPECT_TRUE(IsStatus(run.output.substr(3 * kCount.size()))) << "one status text";
}

TEST_F(LoadProgram, LoadsWithoutThreads) {
    EXPECT_EQ(Run({part_, "--no-threads"}).status, 0);
}

TEST_F(LoadProgram, TakesItsOptionsInAnyPlace) {
    EXPECT_EQ(Run({"--no-threads", part_}).status, 0);
    EXPECT_EQ(Run({"--repeat", "2", part_, "product"}).status, 0);
    EXPECT_EQ(Run({"--repeat=2", part_}).status, 0);
}

TEST_F(LoadProgram, PrintsPointsInALocaleWithCommas) {
    for (const char* const locale : {"LC_ALL=de_DE.UTF-8", "LC_ALL=C", "LC_ALL=C.UTF-8"}) {
        const ProgramRun run = Run({part_, "--json", folder_.Path("report.json")}, {locale});
        EXPECT_TRUE(IsStatus(run.output.substr(kCount.size()))) << run.output;
        EXPECT_EQ(ParseJson(ReadWholeFile(folder_.Path("report.json")))["modelSize"], 18.25);
    }
}

} // namespace
} // namespace tarnwick::test
