// The check against the load itself: a part with one other character somewhere either is told about, or shows
// all of its triangles.

#include "check/checked.h"
#include "formats/load_commands.h"

#include "load/view_setup.h"
#include "support/capture.h"
#include "support/sanitized.h"

#include <utility>

namespace tarnwick::test {
namespace {

// Triangles and meshes that a load draws.
std::pair<std::int32_t, std::int32_t> Drawn(const std::string& path) {
    LogCapture log;
    SceneView view;
    LoadStepFile(view, path.c_str(), 0);
    std::int32_t meshes = 0;
    for (std::int32_t i = 0; view.loaded.drawList != nullptr && i < view.loaded.drawList->count; ++i) {
        meshes += view.loaded.drawList->items[i]->meshCount;
    }
    return {view.loaded.drawnTriangles, meshes};
}

TEST(CheckOrDraw, EachCharacterCounts) {
    const TempFolder folder;
    const std::string good = GoodPart();
    const auto whole = Drawn(folder.Write("good.stp", good));
    ASSERT_EQ(whole, std::make_pair(7, 3));
    const std::size_t first = good.find("DATA;\n") + 6;
    const std::size_t last = good.rfind("ENDSEC;");
    const std::size_t step = kSanitized ? 7 : 1;
    int unfound = 0;
    for (const char c : std::string_view("'(),#\n;9 \t")) {
        for (std::size_t place = first; place < last; place += step) {
            std::string text = good;
            text[place] = c;
            const std::string path = folder.Write("part.stp", text);
            if (!CheckedUntried(path).findings.empty()) { continue; }
            ++unfound;
            EXPECT_EQ(Drawn(path), whole) << place << " '" << c << "'";
        }
    }
    EXPECT_GT(unfound, 100) << "many places do no harm";
}

} // namespace
} // namespace tarnwick::test
