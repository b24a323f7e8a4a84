#include "prepare/exchange_text.h"
#include "prepare/prepared_scene.h"

#include "exchange/exchange_file.h"
#include "exchange/strict_check.h"
#include "prepare/shape_count.h"
#include "prepare/whole.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <limits>

namespace tarnwick::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// Two parts of different colours, one of them used twice.
std::string AssemblyText(const char* height = "1.") {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string parent = text.Product("top");
    const std::string origin = text.Axes("(0.,0.,0.)");
    const std::string shape = text.Shape(parent, origin, context);
    for (const char* const name : {"a", "b"}) {
        const std::string child = text.Product(name);
        const std::string face = text.Triangle(height);
        const std::string childShape = text.Shape(child, origin + "," + face, context);
        text.Styled(face, "1.,0.5,0.");
        text.Use(parent, child, shape, childShape, origin, text.Axes("(2.,0.,0.)"));
        text.Use(parent, child, shape, childShape, origin, text.Axes("(4.,0.,0.)"));
    }
    return text.Text();
}

std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) { names.push_back(fs::relative(entry.path(), folder).generic_string()); }
    }
    return names;
}

TEST(Outcome, IsATopFileAndItsPartsAndNothingElse) {
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, AssemblyText());
    EXPECT_EQ(scene.triangles.size(), 4u);
    EXPECT_EQ(scene.result.placedTriangles, 4u);
    EXPECT_THAT(
        NamesIn(folder.Path("out")),
        UnorderedElementsAre("top.stp", "top.parts/a.stp", "top.parts/b.stp", "top.parts/prepared.txt"));
}

TEST(Outcome, PartsAreFoundWhateverTheFileIsCalled) {
    for (const std::string& stem :
         {std::string("it's"), std::string("a,b"), std::string("\"a\""), std::string("a\\b"),
          std::string("r\xC3\xA4"
                      "d"),
          std::string("a b.c-1 (2)+=x"), std::string("#12=X(');"), std::string("\xFF"),
          std::string(240, 'n')}) {
        const TempFolder folder;
        const PreparedScene scene = PrepareText(folder, AssemblyText(), stem + ".step");
        EXPECT_EQ(scene.triangles.size(), 4u) << stem;
        EXPECT_TRUE(fs::exists(folder.Path("out/" + stem + ".stp"))) << stem;
    }
}

TEST(Outcome, NamesThatAreMuchAlikeHaveFoldersOfTheirOwn) {
    const TempFolder folder;
    for (const char* const name : {"a,b.step", "a'b.step", "a_b.step"}) {
        PrepareText(folder, AssemblyText(), name);
    }
    const auto names = NamesIn(folder.Path("out"));
    EXPECT_EQ(std::count_if(names.begin(), names.end(),
                            [](const std::string& name) { return name.ends_with("prepared.txt"); }),
              3);
}

TEST(Outcome, OfASinglePartIsOneFile) {
    const TempFolder folder;
    ExchangeText text;
    const std::string context = text.Context();
    text.Shape(text.Product("part"), text.Triangle(), context);
    PrepareText(folder, text.Text(), "some.part.STEP");
    EXPECT_THAT(NamesIn(folder.Path("out")),
                UnorderedElementsAre("some.part.stp", "some.part.parts/prepared.txt"));
}

TEST(Outcome, IsValidToTheStrictReader) {
    const TempFolder folder;
    PrepareText(folder, AssemblyText());
    for (const char* const name : {"out/top.stp", "out/top.parts/a.stp"}) {
        const FileBytes bytes = ReadFileBytes(folder.Path(name), 1 << 20);
        for (const Deviation& deviation : CheckStrictly(bytes.Text(), 10)) {
            ADD_FAILURE() << name << ": " << deviation.what << " at "
                          << bytes.Text().substr(deviation.offset, 80);
        }
    }
}

TEST(Outcome, StaysAsItIsUntilTheBytesOrTheOptionsChange) {
    const TempFolder folder;
    const std::string path = folder.Write("top.step", AssemblyText());
    prepare::PrepareOptions options = PlainOptions(folder.Path("out"));
    const prepare::PrepareResult first = prepare::Prepare(path, options, {}, nullptr);
    EXPECT_FALSE(first.isUnchanged);
    const prepare::PrepareResult second = prepare::Prepare(path, options, {}, nullptr);
    EXPECT_TRUE(second.isUnchanged);
    EXPECT_EQ(second.placedTriangles, first.placedTriangles);
    EXPECT_EQ(second.output, first.output);
    options.angle = 10;
    EXPECT_FALSE(prepare::Prepare(path, options, {}, nullptr).isUnchanged);
    EXPECT_TRUE(prepare::Prepare(path, options, {}, nullptr).isUnchanged);
    folder.Write("top.step", AssemblyText("2."));
    EXPECT_FALSE(prepare::Prepare(path, options, {}, nullptr).isUnchanged);
    options.isForced = true;
    EXPECT_FALSE(prepare::Prepare(path, options, {}, nullptr).isUnchanged);
}

TEST(Outcome, IsMadeAgainWhereAPartOfItIsGone) {
    const TempFolder folder;
    const std::string path = folder.Write("top.step", AssemblyText());
    const prepare::PrepareOptions options = PlainOptions(folder.Path("out"));
    prepare::Prepare(path, options, {}, nullptr);
    fs::remove(folder.Path("out/top.parts/b.stp"));
    EXPECT_FALSE(prepare::Prepare(path, options, {}, nullptr).isUnchanged);
    EXPECT_TRUE(fs::exists(folder.Path("out/top.parts/b.stp")));
}

TEST(Outcome, IsTheSameBytesWithAnyNumberOfJobs) {
    const TempFolder folder;
    const std::string path = folder.Write("top.step", AssemblyText());
    for (const std::size_t jobs : {1, 2, 7}) {
        prepare::PrepareOptions options = PlainOptions(folder.Path("out" + std::to_string(jobs)));
        options.jobs = jobs;
        prepare::Prepare(path, options, {}, nullptr);
        for (const char* const name : {"/top.stp", "/top.parts/a.stp", "/top.parts/b.stp"}) {
            EXPECT_EQ(ReadWholeFile(options.folder + name), ReadWholeFile(folder.Path("out1") + name));
        }
    }
}

TEST(Outcome, MayBeCompressed) {
    const TempFolder folder;
    const std::string path = folder.Write("top.step", AssemblyText());
    prepare::PrepareOptions options = PlainOptions(folder.Path("out"));
    options.isCompressed = true;
    const PreparedScene scene = PrepareFile(path, options);
    EXPECT_TRUE(scene.result.output.ends_with("/top.stpz"));
    EXPECT_EQ(scene.triangles.size(), 4u);
}

TEST(Outcome, NeverTakesThePlaceOfItsInput) {
    const TempFolder folder;
    const std::string path = folder.Write("top.stp", AssemblyText());
    const prepare::PrepareResult result = prepare::Prepare(path, PlainOptions(folder.Path("")), {}, nullptr);
    EXPECT_EQ(result.error, "the outcome would take the place of the file; choose another folder");
    EXPECT_EQ(ReadWholeFile(path), AssemblyText());
}

TEST(Outcome, OfACancelledRunIsNoTopFile) {
    const TempFolder folder;
    const std::string path = folder.Write("top.step", AssemblyText());
    const std::atomic<bool> cancel{true};
    const prepare::PrepareResult result =
        prepare::Prepare(path, PlainOptions(folder.Path("out")), {}, &cancel);
    EXPECT_TRUE(result.isCancelled);
    EXPECT_FALSE(fs::exists(folder.Path("out/top.stp")));
}

TEST(Outcome, OfACancelledCountIsThatThereMayBeMore) {
    const TempFolder folder;
    const std::string path = folder.Write("bare.step", ExchangeText().Text());
    std::atomic<bool> cancel{false};
    EXPECT_TRUE(prepare::CountShape(path, &cancel).isAll);
    cancel = true;
    EXPECT_FALSE(prepare::CountShape(path, &cancel).isAll);
}

TEST(Outcome, OfMorePlacesThanANumberHoldsIsTheLargestNumber) {
    constexpr std::size_t kLevels = 70;
    prepare::Whole whole;
    whole.products.resize(kLevels + 1);
    for (std::size_t i = 0; i < kLevels; ++i) { whole.products[i].uses = {{i + 1, {}}, {i + 1, {}}}; }
    const std::vector<std::size_t> places = prepare::PlacesOf(whole);
    EXPECT_EQ(places[10], 1024u);
    EXPECT_EQ(places[kLevels], std::numeric_limits<std::size_t>::max());
}

TEST(Outcome, TellsWhatIsNoStepFile) {
    const TempFolder folder;
    EXPECT_EQ(PrepareText(folder, "hello").result.error, "it is neither an ISO 10303-21 file nor STEP XML");
    EXPECT_EQ(PrepareText(folder, "").result.error, "it is neither an ISO 10303-21 file nor STEP XML");
    EXPECT_EQ(PrepareFile(folder.Path("absent.stp"), PlainOptions(folder.Path("out"))).result.error,
              "No such file or directory");
    EXPECT_EQ(PrepareText(folder, ExchangeText().Text()).result.error, "it holds no shape");
}

TEST(Outcome, ExactShapeWithoutTheKernelIsNamed) {
    const TempFolder folder;
    ExchangeText text;
    const std::string context = text.Context();
    text.Shape(text.Product("part"), text.Add("MANIFOLD_SOLID_BREP('',#1)"), context);
    const PreparedScene scene = PrepareText(folder, text.Text());
    EXPECT_EQ(scene.result.error, "none of its shape came");
    EXPECT_THAT(scene.Losses(), ElementsAre("part: its shape is exact, and tarnwick-mesh isn't installed"));
}

TEST(Outcome, ProgressTellsEveryPart) {
    const TempFolder folder;
    const std::string path = folder.Write("top.step", AssemblyText());
    std::size_t last = 0;
    std::size_t all = 0;
    prepare::Prepare(
        path, PlainOptions(folder.Path("out")),
        [&](std::size_t done, std::size_t parts) {
            last = std::max(last, done);
            all = parts;
        },
        nullptr);
    EXPECT_EQ(last, 2u);
    EXPECT_EQ(all, 2u);
}

TEST(Outcome, OfATextThatIsCutAnywhereIsNeverACrash) {
    const TempFolder folder;
    const std::string text = AssemblyText();
    for (std::size_t length = 0; length < text.size(); length += 7) {
        const PreparedScene scene = PrepareText(folder, text.substr(0, length));
        EXPECT_LE(scene.triangles.size(), 4u);
    }
}

} // namespace
} // namespace tarnwick::test
