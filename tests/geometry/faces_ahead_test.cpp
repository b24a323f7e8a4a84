// Parts that several threads read together against the same parts read by one, on well-formed parts and on
// damaged ones.

#include "geometry/faces_ahead.h"

#include "geometry/face_maker.h"
#include "geometry/part_file.h"
#include "support/capture.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

template <class T>
std::string Bytes(const T* values, std::int32_t count) {
    return count > 0 ? std::string(reinterpret_cast<const char*>(values),
                                   static_cast<std::size_t>(count) * sizeof(T))
                     : std::string();
}

// All that the reading of a part leaves, pointers apart.
std::string OutcomeOf(const PartFile& part) {
    const PartReader& reader = *part.reader;
    std::string console = part.console;
    const std::string folder = part.folder.Path("");
    for (std::size_t at; (at = console.find(folder)) != std::string::npos;) {
        console.erase(at, folder.size());
    }
    std::string all = "result " + std::to_string(part.result) + " output " + part.output + " console " +
                      console + " counts " + std::to_string(reader.faceTotal) + " " +
                      std::to_string(reader.triangleTotal) + " " + std::to_string(reader.containerCount) +
                      " " + Bytes(reader.box, 6);
    for (std::int32_t i = 0; i < reader.containerCount; ++i) {
        const FaceContainer& container = part.Container(i);
        all += " container " + std::to_string(container.kind) + " " + std::to_string(container.containerId) +
               " " + std::to_string(container.exactContainerId);
    }
    for (const StepFaceB* const face : part.scratch.faces) {
        StepFaceB numbers = *face;
        numbers.vertices = numbers.normals = nullptr;
        numbers.triangles = nullptr;
        numbers.pnindex = nullptr;
        all += " face " + Bytes(&numbers, 1) + Bytes(face->vertices, 3 * face->vertexCount) +
               Bytes(face->normals, 3 * face->normalCount) + Bytes(face->pnindex, face->pnindexCount) +
               Bytes(face->triangles, 3 * face->triangleCount);
    }
    return all + " text " + std::string(part.model.text, part.model.textEnd);
}

// Up to six solids, shells and surface sets over up to thirty faces. Lists are shared, numbers doubled and
// references lead nowhere now and then.
std::string RandomPart(Maker& maker, int damages) {
    std::vector<std::string> lines;
    const int lists = 1 + maker.Below(6);
    std::vector<int> points;
    for (int list = 0; list < lists; ++list) {
        points.push_back(1 + maker.Below(9));
        lines.push_back(maker.CoordinatesList(100 + list, points.back()));
    }
    const int faces = 1 + maker.Below(maker.OneIn(2) ? 5 : 30);
    for (int face = 0; face < faces; ++face) {
        const int list = maker.Below(lists);
        lines.push_back(maker.Face(200 + face, 100 + list, points[static_cast<std::size_t>(list)]));
    }
    std::string items;
    const int containers = 1 + maker.Below(6);
    for (int i = 0; i < containers; ++i) {
        items += (i > 0 ? ",#" : "#") + std::to_string(maker.OneIn(3) ? 200 + maker.Below(faces) : 300 + i);
        std::string ids;
        for (int k = 1 + maker.Below(8); k > 0; --k) {
            ids += (ids.empty() ? "#" : ",#") +
                   std::to_string(maker.OneIn(20) ? 100 + maker.Below(300) : 200 + maker.Below(faces));
        }
        lines.push_back("#" + std::to_string(300 + i) +
                        (maker.OneIn(3) ? "=TESSELLATED_SHELL('',(" : "=TESSELLATED_SOLID('',(") + ids + ")" +
                        (maker.OneIn(10)  ? ");"
                         : maker.OneIn(2) ? ",$);"
                                          : ",#" + std::to_string(400 + i) + ");"));
    }
    for (; damages > 0; --damages) {
        maker.Damage(&lines[static_cast<std::size_t>(maker.Below(static_cast<int>(lines.size())))]);
    }
    return PartText("(" + items + ")", lines);
}

// Returns whether the faces could be read ahead.
bool ExpectSame(const std::string& text) {
    StartedHelpers helpers(2, 0);
    const PartFile alone(text);
    const PartFile together(text, "part.stp", nullptr, &helpers);
    EXPECT_TRUE(OutcomeOf(alone) == OutcomeOf(together)) << text;
    ReaderWorkspace workspace;
    StepModel model(workspace, alone.model.fileName);
    LogCapture quiet;
    model.Read();
    Arena arena;
    FaceScratch scratch;
    return FacesAhead().Read(model, alone.scratch.itemIds, helpers, arena, &scratch);
}

#ifdef NDEBUG
constexpr int kParts = 1500;
#else
constexpr int kParts = 300;
#endif

TEST(FacesAhead, AreThoseOfOneThreadInWellFormedParts) {
    Maker maker(11);
    int ahead = 0;
    for (int i = 0; i < kParts; ++i) { ahead += ExpectSame(RandomPart(maker, 0)) ? 1 : 0; }
    EXPECT_GT(ahead, kParts / 10);
    EXPECT_LT(ahead, kParts);
}

TEST(FacesAhead, AreThoseOfOneThreadInDamagedParts) {
    Maker maker(12);
    for (int i = 0; i < kParts; ++i) { ExpectSame(RandomPart(maker, 1 + maker.Below(3))); }
}

// A part with two groups of faces, the second of which has the given lines.
struct Ahead {
    explicit Ahead(const std::vector<std::string>& more) {
        std::vector<std::string> lines = {kSquare, "#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30)};
        lines.insert(lines.end(), more.begin(), more.end());
        LogCapture log;
        model.emplace(workspace, folder.Write("part.stp", PartText("(#20,#21)", lines)));
        model->Read();
        const std::string before(model->text, model->textEnd);
        log.TakeOutput();
        StartedHelpers helpers(1, 0);
        read = ahead.Read(*model, {20, 21}, helpers, arena, &scratch);
        said = log.TakeOutput() + log.TakeConsole();
        wrote = before != std::string(model->text, model->textEnd);
        keptMemory = arena.Held() > 0;
    }
    TempFolder folder;
    ReaderWorkspace workspace;
    std::optional<StepModel> model;
    Arena arena;
    FaceScratch scratch;
    FacesAhead ahead;
    bool read = false;
    bool wrote = false;
    bool keptMemory = false;
    std::string said;
};

const std::string kList = "#11=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)));";
const std::string kFace = "#31=TRIANGULATED_FACE('',#11,3,$,$,$,((1,2,3)));";
const std::string kSolid = "#21=TESSELLATED_SOLID('',(#31),$);";

TEST(FacesAhead, AreTakenInTheOrderOfTheirLists) {
    Ahead good({kList, kFace, kSolid});
    ASSERT_TRUE(good.read);
    EXPECT_FALSE(good.wrote);
    EXPECT_EQ(good.said, "");
    EXPECT_EQ(good.ahead.Take(good.model->Find(31)), nullptr) << "the other comes first";
    const StepFaceB* const first = good.ahead.Take(good.model->Find(30));
    const StepFaceB* const second = good.ahead.Take(good.model->Find(31));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->faceId, 30);
    EXPECT_EQ(second->faceId, 31);
    EXPECT_EQ(good.ahead.Take(good.model->Find(31)), nullptr) << "there is no third";
}

TEST(FacesAhead, AreReadInTheirTurnWhereThereIsButOne) {
    EXPECT_FALSE(Ahead({}).read);
    EXPECT_TRUE(Ahead({"#31=TRIANGULATED_FACE('',#10,4,$,$,$,((1,2,3)));", kSolid}).read);
}

void ExpectInTurn(const std::vector<std::string>& lines, const std::string& what) {
    const Ahead odd(lines);
    EXPECT_FALSE(odd.read) << what;
    EXPECT_FALSE(odd.wrote) << what;
    EXPECT_FALSE(odd.keptMemory) << what;
    EXPECT_EQ(odd.said, "") << what;
}

TEST(FacesAhead, AreReadInTheirTurnWhereOneIsOdd) {
    ExpectInTurn({"#11=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),\n(1.,1.,0.)));", kFace, kSolid},
                 "a list over two lines");
    ExpectInTurn({kList, "#31=TRIANGULATED_FACE('',#11,3,$,$,$,((1,2,3),\n(1,2,3)));", kSolid},
                 "a face over two lines");
    ExpectInTurn({kList, kFace, "#21=TESSELLATED_SOLID('',(#31)\n,$);"}, "a solid over two lines");
    ExpectInTurn({kFace, kSolid}, "no list");
    ExpectInTurn({kList, "#31=TRIANGULATED_FACE('',#21,3,$,$,$,((1,2,3)));", kSolid}, "a solid for a list");
    ExpectInTurn({kList, "#31=TRIANGULATED_FACE('',#123456789012345,3,$,$,$,((1,2,3)));", kSolid},
                 "a number that ends the process");
    ExpectInTurn({kList, "#31=TRIANGULATED_FACE('',#11,123456789012345,$,$,$,((1,2,3)));", kSolid},
                 "a count that ends the process");
    ExpectInTurn({kList,
                  "#31=TRIANGULATED_FACE('',#11,3,((0.,0.,1.),(0.,0.,1.),(0.,0.,1.),(0.,0.,1.)),$,$,"
                  "((1,2,3)));",
                  kSolid},
                 "more normals than vertices");
}

TEST(FacesAhead, AreReadInTheirTurnWhereALookUpComesFar) {
    constexpr std::int32_t kBits = 6; // of the table of 48 to 95 entities
    constexpr std::int32_t kMask = (1 << kBits) - 1;
    std::vector<std::string> lines;
    for (std::int32_t id = 100; lines.size() < 70; ++id) {
        if (BucketOf(id, kBits, kMask) == BucketOf(11, kBits, kMask)) {
            lines.push_back("#" + std::to_string(id) + "=X();");
        }
    }
    lines.insert(lines.end(), {kList, kFace, kSolid});
    ExpectInTurn(lines, "a list after others in its bucket");
    std::rotate(lines.begin(), lines.end() - 3, lines.end());
    EXPECT_TRUE(Ahead(lines).read);
}

// A part with so many faces, each with a list of its own.
std::string WidePart(int faces, const std::string& last) {
    std::vector<std::string> lines;
    std::string ids;
    for (int i = 0; i < faces; ++i) {
        const std::string list = "#" + std::to_string(1000 + i);
        const std::string face = "#" + std::to_string(1000 + faces + i);
        ids += (i > 0 ? "," : "") + face;
        lines.push_back(list + "=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)));");
        lines.push_back(face + "=TRIANGULATED_FACE(''," + list + ",3,$,$,$," +
                        (i == faces - 1 ? last : "((1,2,3))") + ");");
    }
    lines.push_back("#20=TESSELLATED_SOLID('',(" + ids + "),$);");
    return PartText("(#20)", lines);
}

TEST(FacesAhead, OfAWidePartAreThoseOfOneThread) {
    EXPECT_TRUE(ExpectSame(WidePart(5000, "((3,2,1))")));
    EXPECT_FALSE(ExpectSame(WidePart(5000, "((3,2,1),\n(1,2,3))"))) << "over two lines";
}

TEST(FacesAhead, AreReadByNoMoreHelpersThanThereMayBe) {
    const PartFile alone(WidePart(100, "((3,2,1))"));
    StartedHelpers helpers(2 * Helpers::kMost, 0);
    Arena arena;
    FaceScratch scratch;
    FacesAhead ahead;
    ASSERT_TRUE(ahead.Read(alone.model, alone.scratch.itemIds, helpers, arena, &scratch));
    for (const std::int32_t id : alone.FaceIds()) {
        const StepFaceB* const face = ahead.Take(alone.model.Find(id));
        ASSERT_NE(face, nullptr);
        EXPECT_EQ(face->triangleCount, 1);
    }
}

// Each thread has an arena, in which faces that it reads one after another follow one another.
TEST(FacesAhead, ThatShareAListOneAfterAnotherAreReadByOneThread) {
    Maker maker(13);
    std::vector<std::string> lines;
    std::vector<int> lists; // of each face
    std::string ids;
    while (lists.size() < 3000) {
        const int list = 100000 + static_cast<int>(lists.size());
        lines.push_back("#" + std::to_string(list) +
                        "=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)));");
        for (int faces = 1 + maker.Below(maker.OneIn(3) ? 40 : 4); faces > 0; --faces) {
            const std::string face = "#" + std::to_string(1000 + lists.size());
            lines.push_back(face + "=TRIANGULATED_FACE('',#" + std::to_string(list) + ",3,$,$,$,((1,2,3)));");
            ids += (ids.empty() ? "" : ",") + face;
            lists.push_back(list);
        }
    }
    lines.push_back("#20=TESSELLATED_SOLID('',(" + ids + "),$);");
    const PartFile alone(PartText("(#20)", lines));
    for (const int count : {1, 2, 5}) {
        StartedHelpers helpers(count, 0);
        Arena arena;
        FaceScratch scratch;
        FacesAhead ahead;
        ASSERT_TRUE(ahead.Read(alone.model, alone.scratch.itemIds, helpers, arena, &scratch));
        const StepFaceB* before = nullptr;
        int apart = 0;
        for (std::size_t i = 0; i < lists.size(); ++i) {
            const std::int32_t id = static_cast<std::int32_t>(1000 + i);
            const StepFaceB* const face = ahead.Take(alone.model.Find(id));
            ASSERT_NE(face, nullptr) << id;
            ASSERT_EQ(face->faceId, id);
            const std::less<> isBefore;
            if (i > 0 && lists[i] == lists[i - 1] && (isBefore(face, before) || isBefore(before + 4, face))) {
                ++apart;
            }
            before = face;
        }
        EXPECT_LE(apart, 20) << "more than the chunks of the arenas";
    }
}

} // namespace
} // namespace tarnwick::test
