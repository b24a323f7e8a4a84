// The same machine in every format, as the readers see it.
#include "formats/load_commands.h"
#include "load/view_setup.h"
#include "make_files.h"
#include "report/report.h"
#include "support/capture.h"
#include "support/json.h"

#include <algorithm>
#include <map>
#include <set>

namespace tarnwick::make {
namespace {

using nlohmann::json;

json Load(const std::string& path) {
    SceneView view;
    test::LogCapture log;
    const std::string extension = fs::path(path).extension().string();
    if (extension.starts_with(".stpx"))
        LoadStpxFile(view, path.c_str(), nullptr, 1);
    else if (extension == ".stpa")
        LoadZIPFile(view, path.c_str(), nullptr, 1);
    else if (extension == ".stpj")
        LoadStpjFile(view, path.c_str());
    else
        LoadStepFile(view, path.c_str(), 1);
    json report = test::ParseJson(SceneReport(view, "", nullptr, false));
    report["unread"] = view.loaded.unreadFiles.size();
    report["unreadDocuments"] = std::count_if(view.loaded.unreadFiles.begin(), view.loaded.unreadFiles.end(),
                                              [](const auto& file) { return file.path.ends_with(".stpx"); });
    return report;
}

// The lists below are sorted: an assembly shows the uses in a file in the order of its entity table, which is
// not that of the text.
json Sorted(json list) {
    std::sort(list.begin(), list.end());
    return list;
}

// What is drawn: product, world matrix and the triangles' points.
json Placed(const json& report) {
    json placed = json::array();
    for (const json& item : report["drawList"]) {
        json vertices = json::array();
        for (const json& mesh : item["meshes"])
            vertices.push_back(report["meshes"][mesh.get<std::size_t>()]["verticesCrc"]);
        placed.push_back({{"product", report["products"][item["product"].get<std::size_t>()]["name"]},
                          {"matrix", item["matrix"]},
                          {"vertices", vertices}});
    }
    return Sorted(std::move(placed));
}

// Names and matrices alone, for drawn parts and for boxes.
json Places(const json& report, const char* list) {
    json places = json::array();
    for (const json& item : report[list])
        places.push_back({report["products"][item["product"].get<std::size_t>()]["name"], item["matrix"]});
    return Sorted(std::move(places));
}

using Arguments = std::vector<std::string>;

struct FormatCase {
    const char* name;
    const char* out;     // its kind is its extension, without the letter of compression
    Arguments machine;   // what an assembly has as well
    Arguments arguments; // what it hasn't
};
void PrintTo(const FormatCase& c, std::ostream* out) {
    *out << c.name;
}

Arguments Joined(Arguments a, const Arguments& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

class MakeFormats : public MakeFiles, public testing::WithParamInterface<FormatCase> {
protected:
    Arguments CommandLine(const std::string& out) {
        const std::string kind = fs::path(GetParam().out).extension().string().substr(1, 4);
        return Joined(Joined({kind, out, "--triangles-per-part", "60"}, GetParam().machine),
                      GetParam().arguments);
    }
    // The files of a folder by name, with their contents.
    std::map<std::string, std::string> Contents(const std::string& name) {
        std::map<std::string, std::string> contents;
        for (const auto& file : fs::directory_iterator(folder / name))
            contents[file.path().filename().string()] = ReadFile(file.path());
        return contents;
    }
};

const FormatCase kFormatCases[] = {
    {"Documents", "m.stpx", {}, {}},
    {"DocumentsByTheLongRoute", "m.stpx", {}, {"--route", "documents"}},
    {"OneDocument", "m.stpx", {}, {"--documents", "0"}},
    {"DocumentsOfUnits", "m.stpx", {}, {"--documents", "4"}},
    {"DocumentsOfUnitsByTheLongRoute", "m.stpx", {}, {"--documents", "4", "--route", "documents"}},
    {"DeepDocuments", "m.stpx", {"--depth", "3", "--uses", "9", "--parts", "40"}, {}},
    {"FlatDocument", "m.stpx", {"--depth", "0", "--seed", "7"}, {}},
    {"CompressedDocuments", "m.stpxz", {"--kind", "fans"}, {"--compress"}},
    {"CompressedDocumentsByTheLongRoute",
     "m.stpxz",
     {"--normals", "one"},
     {"--compress", "--route", "documents"}},
    {"Archive", "m.stpa", {"--kind", "strips", "--normals", "none"}, {}},
    {"ArchiveByTheLongRoute", "m.stpa", {"--depth", "2", "--uses", "9"}, {"--route", "documents"}},
    {"ArchiveOfStoredDocuments", "m.stpa", {}, {"--stored-documents"}},
};

TEST_P(MakeFormats, ShowTheTrianglesOfTheAssemblyInTheSamePlaces) {
    ASSERT_EQ(Run(CommandLine(Path(GetParam().out))), 0);
    const json made = Load(Path(GetParam().out));
    ASSERT_EQ(Run(Joined({"assembly", Path("m.stp"), "--triangles-per-part", "60"}, GetParam().machine)), 0);
    const json assembly = Load(Path("m.stp"));
    EXPECT_EQ(made["unread"], 0);
    EXPECT_GT(made["triangles"], 0);
    EXPECT_EQ(made["triangles"], assembly["triangles"]);
    EXPECT_EQ(made["box"], assembly["box"]);
    EXPECT_EQ(Placed(made), Placed(assembly));
}

TEST_P(MakeFormats, AreTheSameBytesForTheSameOptions) {
    fs::create_directory(folder / "a");
    fs::create_directory(folder / "b");
    ASSERT_EQ(Run(CommandLine(Path(std::string("a/") + GetParam().out))), 0);
    ASSERT_EQ(Run(CommandLine(Path(std::string("b/") + GetParam().out))), 0);
    EXPECT_TRUE(Contents("a") == Contents("b"));
}

std::string FormatCaseName(const testing::TestParamInfo<FormatCase>& info) {
    return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(AllForms, MakeFormats, testing::ValuesIn(kFormatCases), FormatCaseName);

// --- documents ---

TEST_F(MakeFiles, DocumentsAreTakenFromTheTopDown) {
    for (const int documents : {0, 1, 3, 5}) {
        ASSERT_EQ(Run({"stpx", Path("m.stpx"), "--no-parts", "--documents", std::to_string(documents)}), 0);
        EXPECT_EQ(FileCount(), static_cast<std::size_t>(documents + 1));
        EXPECT_EQ(fs::exists(folder / "group-0001.stpx"), documents >= 1);
        EXPECT_EQ(fs::exists(folder / "unit-0002.stpx"), documents >= 3);
        EXPECT_FALSE(fs::exists(folder / "gear-0004.stp"));
        for (const auto& file : fs::directory_iterator(folder)) fs::remove(file);
    }
}

TEST_F(MakeFiles, WithoutPartsTheStructureIsThereAndTheFilesAreMissing) {
    ASSERT_EQ(Run({"stpx", Path("m.stpx"), "--no-parts"}), 0);
    const json report = Load(Path("m.stpx"));
    EXPECT_EQ(report["unread"], 18);
    EXPECT_EQ(report["triangles"], 0);
    EXPECT_EQ(report["products"][0]["name"], "MACHINE");
}

TEST_F(MakeFiles, CompressedDocumentsNameCompressedFiles) {
    ASSERT_EQ(Run({"stpx", Path("m.stpxz"), "--compress", "--triangles-per-part", "60"}), 0);
    EXPECT_EQ(FileCount(), 20u);
    EXPECT_TRUE(fs::exists(folder / "group-0001.stpxz"));
    EXPECT_TRUE(fs::exists(folder / "gear-0004.stpz"));
}

TEST_F(MakeFiles, ArchiveDoesNotDependOnItsOwnName) {
    ASSERT_EQ(Run({"stpa", Path("a.stpa"), "--triangles-per-part", "60"}), 0);
    ASSERT_EQ(Run({"stpa", Path("b.c.zip"), "--triangles-per-part", "60"}), 0);
    EXPECT_TRUE(ReadFile(Path("a.stpa")) == ReadFile(Path("b.c.zip")));
}

TEST_F(MakeFiles, ArchiveStoresDocumentsOnlyWhenAsked) {
    ASSERT_EQ(Run({"stpa", Path("a.stpa"), "--triangles-per-part", "60"}), 0);
    ASSERT_EQ(Run({"stpa", Path("b.stpa"), "--triangles-per-part", "60", "--stored-documents"}), 0);
    const std::string deflated = ReadFile(Path("a.stpa"));
    const std::string stored = ReadFile(Path("b.stpa"));
    EXPECT_EQ(deflated.find("<Part uid="), deflated.npos);
    EXPECT_NE(stored.find("<Part uid="), stored.npos);
    EXPECT_EQ(stored.find("ISO-10303-21"), stored.npos);
}

TEST_F(MakeFiles, ArchiveOfManyMembersIsWhole) {
    ASSERT_EQ(
        Run({"stpa", Path("m.stpa"), "--parts", "36", "--uses", "500", "--documents", "1250", "--no-parts"}),
        0);
    const json report = Load(Path("m.stpa"));
    EXPECT_EQ(report["unreadDocuments"], 0);
    EXPECT_GT(report["unread"], 0);
}

// --- summaries ---

TEST_F(MakeFiles, SummaryHasThePlacesAndThePartBoxesOfTheAssembly) {
    for (const Arguments& machine :
         {Arguments{}, Arguments{"--depth", "0"},
          Arguments{"--depth", "3", "--uses", "9", "--parts", "40", "--seed", "5"}}) {
        ASSERT_EQ(Run(Joined({"assembly", Path("m.stp"), "--triangles-per-part", "60"}, machine)), 0);
        ASSERT_EQ(Run(Joined({"stpj", Path("m.stpj"), "--triangles-per-part", "60"}, machine)), 0);
        const std::string first = ReadFile(Path("m.stpj"));
        ASSERT_EQ(Run(Joined({"stpj", Path("m.stpj"), "--triangles-per-part", "60"}, machine)), 0);
        EXPECT_TRUE(first == ReadFile(Path("m.stpj")));
        const json assembly = Load(Path("m.stp"));
        const json summary = Load(Path("m.stpj"));
        EXPECT_EQ(Places(summary, "boxList"), Places(assembly, "drawList"));
        std::map<std::string, json> boxes;
        for (const json& product : summary["products"]) boxes[product["name"]] = product["box"];
        for (const json& product : assembly["products"]) {
            if (product["occurrences"].empty()) { EXPECT_EQ(boxes[product["name"]], product["box"]); }
        }
    }
}

TEST_F(MakeFiles, SummaryIsJsonWithExactlyTheOccurrencesAskedFor) {
    for (const int count : {1, 2, 3, 4, 25, 26, 1000}) {
        ASSERT_EQ(Run({"stpj", Path("m.stpj"), "--occurrences", std::to_string(count), "--depth", "2"}), 0);
        const json summary = test::ParseJson(ReadFile(Path("m.stpj")));
        const json& table = summary["occurrences_table"];
        EXPECT_EQ(table["nb_occurrences"], count);
        ASSERT_EQ(table["occurrences"].size(), static_cast<std::size_t>(count));
        int last = -1;
        int deepest = 0;
        for (const json& occurrence : table["occurrences"]) {
            const int depth = occurrence["depth"];
            EXPECT_LE(depth, last + 1);
            last = depth;
            deepest = std::max(deepest, depth);
        }
        EXPECT_EQ(table["max_depth"], deepest);
        const json& products = summary["products_table"];
        EXPECT_EQ(products["nb_products"], products["products"].size());
        for (const json& product : products["products"]) {
            const json& box = product["bbox"];
            for (std::size_t axis = 0; axis < 6; axis += 2)
                EXPECT_LT(box[axis].get<double>(), box[axis + 1].get<double>()) << product;
        }
        EXPECT_GT(Load(Path("m.stpj"))["triangles"], 0);
    }
}

TEST_F(MakeFiles, SummaryBoxesHoldWhatIsInThem) {
    ASSERT_EQ(Run({"stpj", Path("m.stpj"), "--occurrences", "500"}), 0);
    const json summary = test::ParseJson(ReadFile(Path("m.stpj")));
    const json& products = summary["products_table"]["products"];
    const json& top = products[0]["bbox"];
    for (const json& occurrence : summary["occurrences_table"]["occurrences"]) {
        const json& box = products[occurrence["idx_prd"].get<std::size_t>() - 1]["bbox"];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            double middle = occurrence["translation"][axis];
            for (std::size_t i = 0; i < 3; ++i)
                middle += occurrence["rotation"][3 * i + axis].get<double>() *
                          (box[2 * i].get<double>() + box[2 * i + 1].get<double>()) / 2;
            EXPECT_GT(middle, top[2 * axis].get<double>());
            EXPECT_LT(middle, top[2 * axis + 1].get<double>());
        }
    }
}

TEST_F(MakeFiles, TheMachineAsOnePartHasTheTrianglesAndTheBoxOfTheAssembly) {
    const Arguments style{"--kind", "strips", "--normals", "one", "--shared-coordinates"};
    ASSERT_EQ(Run(Joined({"assembly", Path("top.stp"), "--triangles-per-part", "100"}, style)), 0);
    ASSERT_EQ(Run(Joined({"part", Path("all.stp"), "--machine", "100"}, style)), 0);
    const json assembly = Load(Path("top.stp"));
    const json part = Load(Path("all.stp"));
    EXPECT_EQ(part["triangles"], assembly["triangles"]);
    EXPECT_EQ(part["pickMode"], 1);
    EXPECT_EQ(part["drawList"].size(), 1u);
    EXPECT_EQ(assembly["drawList"].size(), 72u);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_NEAR(part["box"][i].get<double>(), assembly["box"][i].get<double>(), 1e-3) << i;
    }
    std::set<json> colours[2];
    for (const json& mesh : part["meshes"]) { colours[0].insert(mesh["colour"]); }
    for (const json& mesh : assembly["meshes"]) { colours[1].insert(mesh["colour"]); }
    EXPECT_EQ(colours[0], colours[1]);
}

TEST_F(MakeFiles, AMachineAsOnePartHasItsOwnSolidsAndColours) {
    for (const char* const option : {"--solids", "--faces", "--colours"}) {
        EXPECT_EQ(Run({"part", Path("all.stp"), "--machine", "100", option, "9"}), 2) << option;
    }
    EXPECT_EQ(FileCount(), 0u);
}

} // namespace
} // namespace tarnwick::make
