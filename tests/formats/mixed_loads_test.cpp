// Good and bad files of every kind, one after the other for as long as a viewer stays open: what they leave
// after is nothing.

#include "formats/load_commands.h"
#include "support/capture.h"
#include "support/formats.h"
#include "support/holdings.h"
#include "support/sanitized.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarnwick {
namespace {

using namespace test;

TEST(MixedLoads, OfAThousandGoodAndBadFilesLeaveNothingBehind) {
    const TestFolder folder;
    const std::string part = PartFile("wheel");
    const std::string document = Document(
        Part("top", Use("o1")) + Part("wheel", UsedAs("o1") + Assigned("d1")) +
        "<Document><DocumentVersion uid=\"d1\"><DocumentDefinition><Files><DigitalFile uidRef=\"f1\"/>"
        "</Files></DocumentDefinition></DocumentVersion></Document>\n" +
        File("f1", "wheel.stp"));
    const std::string summary =
        R"({"products_table":{"nb_products":1,"products":[{"idx":1,"name":"a","bbox":[0 1 0 1 0 1 ]}]},)"
        R"("occurrences_table":{"nb_occurrences":1,"max_depth":1,"occurrences":[)"
        R"({"depth":0,"idx_prd":1,"rotation":[1 0 0 0 1 0 0 0 1 ],"translation":[0 0 0 ]}]}})";
    folder.Write("wheel.stp", part);
    const std::string archive = folder.Path("good.stpa");
    WriteArchive(archive, {{"stpa.ini", "root=\"top.stpx\""}, {"top.stpx", document}, {"wheel.stp", part}});
    const std::string packed = ReadWholeFile(archive);
    const auto half = [](const std::string& text) { return text.substr(0, text.size() / 2); };
    std::filesystem::create_directory(folder.Path("folder.stp"));
    const std::vector<std::string> paths{
        archive,
        folder.Write("good.stpx", document),
        folder.Write("good.stpj", summary),
        folder.Path("wheel.stp"),
        folder.WriteGzip("good.stpz", part),
        folder.Write("half.stp", half(part)),
        folder.Write("half.stpx", half(document)),
        folder.Write("half.stpj", half(summary)),
        folder.Write("half.stpa", half(packed)),
        folder.Write("half.stpz", half(packed)),
        folder.Write("empty.stp", ""),
        folder.Write("empty.stpa", ""),
        folder.Write("lost.stpx", Document(Part("top", Assigned("d1")) + File("f1", "lost.stp"))),
        folder.Path("folder.stp"),
        folder.Path("missing.stpa"),
    };
    const LogCapture log;
    SceneView view;
    int shown = 0;
    Holdings before{};
    for (int load = 0; load < 1000; ++load) {
        const std::string& path = paths[static_cast<std::size_t>(load) % paths.size()];
        LoadByEnding(view, path, nullptr, load % 4 == 0 ? 0 : 1);
        SelectShownDepth(view, 1);
        if (path.find("good") != std::string::npos && view.loaded.drawnTriangles > 0) { ++shown; }
        if (load == 200) { before = HoldingsNow(); }
    }
    const Holdings after = HoldingsNow();
    EXPECT_GT(shown, 200);
    EXPECT_EQ(after.files, before.files);
    EXPECT_EQ(after.threads, before.threads);
    if (!kSanitized) { EXPECT_LT(after.pages, before.pages + before.pages / 50 + 64); }
}

} // namespace
} // namespace tarnwick
