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

// All that a load draws, as one text.
std::string Picture(const std::string& path) {
    LogCapture log;
    SceneView view;
    LoadStepFile(view, path.c_str(), 0);
    std::string picture;
    const auto add = [&picture](const void* data, std::int64_t bytes) {
        picture.append(static_cast<const char*>(data), static_cast<std::size_t>(bytes));
    };
    for (std::int32_t i = 0; view.loaded.drawList != nullptr && i < view.loaded.drawList->count; ++i) {
        const DrawItem& item = *view.loaded.drawList->items[i];
        for (std::int32_t k = 0; k < item.meshCount; ++k) {
            const StepFaceB& face = *item.meshes[k];
            add(face.vertices, 12 * face.vertexCount);
            add(face.normals, 12 * face.normalCount);
            add(face.triangles, 12 * face.triangleCount);
        }
    }
    return picture;
}

// Where a line may end and where not, told neither too often nor too seldom.
TEST(CheckOrDraw, EachLineEndInAListCounts) {
    const TempFolder folder;
    std::string good = GoodPart();
    // No number is what an unread one becomes.
    for (std::size_t place = good.find("#10="); place < good.find("#40="); ++place) {
        if (good.compare(place, 2, "0.") == 0) { good[place] = '5'; }
    }
    const std::string whole = Picture(folder.Write("good.stp", good));
    for (const char* const entity : {"#10=COORD", "#22=COMPLEX", "#30=TRI", "#31=COMPLEX"}) {
        const std::size_t first = good.find("',", good.find(entity)) + 2;
        const std::size_t last = good.find(");\n", first);
        for (const char* const lineEnd : {"\n", "\r\n", " \n", "\n "}) {
            for (std::size_t place = first; place < last; ++place) {
                // Not within a token.
                const auto isInside = [](char c) { return c != '(' && c != ')' && c != ','; };
                if (isInside(good[place - 1]) && isInside(good[place])) { continue; }
                std::string text = good;
                text.insert(place, lineEnd);
                const std::string path = folder.Write("part.stp", text);
                EXPECT_EQ(CheckedUntried(path).findings.empty(), Picture(path) == whole)
                    << entity << text.substr(first, place - first) << testing::PrintToString(lineEnd)
                    << text.substr(place + 1, last - place);
            }
        }
    }
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
