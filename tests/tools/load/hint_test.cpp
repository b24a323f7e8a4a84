// The one line that names the command which helps where nothing is shown.

#include "support/assembly_text.h"
#include "support/packed.h"
#include "tools/load/load_program.h"

#include <filesystem>

namespace tarnwick::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kHint =
    "tarnwick-load: this brings it into a form that can be shown: tarnwick-prepare ";

TEST_F(LoadProgram, NamesTheCommandThatHelpsWhereTheKindIsRefused) {
    for (const char* const name : {"a.step", "a.p21", "a", "a.stp.Z"}) {
        const std::string path = folder_.Write(name, SmallPartText());
        EXPECT_THAT(Run({path}).errors, EndsWith("by its extension\n" + (kHint + path) + "\n")) << name;
    }
}

TEST_F(LoadProgram, NamesItWhereNothingIsDrawn) {
    const std::string empty = folder_.Write("empty.stp", P21Text({"#1=PRODUCT('P','','',());"}));
    const ProgramRun run = Run({empty});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, EndsWith(kHint + empty + "\n"));
}

TEST_F(LoadProgram, NamesItForPackedFilesAndDocuments) {
    const std::string part = SmallPartText();
    const std::string gzip = folder_.Write("part.step.gz", GzipPacked(part));
    EXPECT_THAT(Run({gzip}).errors, EndsWith(kHint + gzip + "\n"));
    const std::string xml = folder_.Write("a.xml", "<?xml version='1.0'?>\n<n0:Uos xmlns:n0='x'/>\n");
    EXPECT_THAT(Run({xml}).errors, EndsWith(kHint + xml + "\n"));
}

TEST_F(LoadProgram, TheCommandCanBeTypedWhateverTheFileIsCalled) {
    const std::string path = folder_.Write("it's $x.step", SmallPartText());
    EXPECT_THAT(Run({path}).errors,
                EndsWith("tarnwick-prepare '" + folder_.Path("it'\\''s $x.step") + "'\n"));
}

TEST_F(LoadProgram, SaysNothingMoreWhereSomethingIsShown) {
    EXPECT_THAT(Run({part_}).errors, Not(HasSubstr("tarnwick-prepare")));
    // Nor where some files are missing.
    AssemblyText top;
    const int root = top.Product("root");
    const int leaf = top.Product("leaf");
    const int gone = top.Product("gone");
    top.Use(root, leaf);
    top.Use(root, gone);
    top.File(leaf, "part.stp");
    top.File(gone, "gone.stp");
    const ProgramRun run = Run({folder_.Write("top.stp", top.Text())});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.errors, HasSubstr("gone.stp"));
    EXPECT_THAT(run.errors, Not(HasSubstr("tarnwick-prepare")));
}

TEST_F(LoadProgram, SaysNothingMoreOfWhatIsNoStepFile) {
    std::filesystem::create_directory(folder_.Path("folder.step"));
    for (const std::string& path :
         {folder_.Write("notes.txt", "notes\n"), folder_.Write("bad.stp", "bad\n"), folder_.Path("gone.step"),
          folder_.Path("folder.step"), folder_.Write("empty.stpj", "{}"), folder_.Write("empty.step", "")}) {
        EXPECT_THAT(Run({path}).errors, Not(HasSubstr("tarnwick-prepare"))) << path;
    }
}

TEST_F(LoadProgram, TheReportAndTheStatusTextHaveNoHint) {
    const std::string empty = folder_.Write("empty.stp", P21Text({"#1=PRODUCT('P','','',());"}));
    EXPECT_THAT(Run({empty}).output, Not(HasSubstr("tarnwick-prepare")));
    EXPECT_THAT(Run({empty, "--json", "-"}).output, Not(HasSubstr("tarnwick-prepare")));
    EXPECT_THAT(Run({empty, "--check"}).errors, Not(HasSubstr("tarnwick-prepare")));
}

} // namespace
} // namespace tarnwick::test
