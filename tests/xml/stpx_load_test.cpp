#include "formats/load_commands.h"
#include "load/view_setup.h"
#include "platform/console.h"
#include "support/formats.h"
#include "xml/stpx_driver.h"
#include "xml/stpx_file.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

namespace tarnwick {
namespace {

using namespace test;
using nlohmann::json;

// Two documents, three parts, one of them used twice; the sub-assembly is turned.
void WriteMachine(const TestFolder& folder) {
    folder.Write("top.stpx",
                 Document(Part("axle", UsedAs("o2") + Assigned("f2")) + File("f2", "axle.stp") +
                          Part("cart", UsedAs("o1") + Assigned("f1")) + File("f1", "cart.stpx") +
                          Part("top", Use("o1", "100 0 0", "0 1 0 -1 0 0 0 0 1") + Use("o2", "0 0 7"))));
    folder.Write("cart.stpx", Document(Part("wheel", UsedAs("w1") + UsedAs("w2") + Assigned("f")) +
                                       File("f", "parts\\wheel.stp") +
                                       Part("cart", Use("w1", "1 0 0") + Use("w2", "0 1 0"))));
    folder.Write("axle.stp", PartFile("axle"));
    folder.Write("parts/wheel.stp", PartFile("wheel", 2));
}

TEST(StpxLoad, ReadsTheDocumentsAndPartsOfAMachine) {
    const TestFolder folder;
    WriteMachine(folder);
    const ConsoleText console;
    SceneView view;
    LoadStpxFile(view, folder.Path("top.stpx").c_str(), nullptr, 1);
    const json report = Report(view);
    EXPECT_EQ(report["triangles"], 6);
    EXPECT_EQ(report["pickMode"], 2);
    EXPECT_EQ(report["rootName"], nullptr);
    ASSERT_EQ(report["drawList"].size(), 3u);
    ASSERT_EQ(report["products"].size(), 4u);
    EXPECT_EQ(report["products"][0]["name"], "top");
    EXPECT_EQ(report["products"][1]["name"], "cart");
    EXPECT_EQ(report["products"][2]["name"], "wheel");
    EXPECT_EQ(report["products"][3]["name"], "axle");
    // The file's rotation enters the matrix as it stands, column after column.
    EXPECT_EQ(report["drawList"][0]["matrix"], (json{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 100, 1, 0, 1}));
    EXPECT_EQ(report["drawList"][1]["matrix"], (json{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 99, 0, 0, 1}));
    EXPECT_EQ(report["drawList"][2]["product"], 3);
    EXPECT_EQ(console.Count("Start TraiteSTEPXFileNewMT\n"), 1);
    for (int k = 1; k <= 5; ++k) { EXPECT_EQ(console.Count("End thread " + std::to_string(k) + "\n"), 1); }
    EXPECT_EQ(console.Count("Number of external products : 1\n"), 1);
    EXPECT_EQ(console.Count("Number of parts (P21) : 2\n"), 1);
    EXPECT_TRUE(view.loaded.unreadFiles.empty());
    EXPECT_TRUE(std::isfinite(view.loadSeconds));
}

TEST(StpxLoad, TurnsTwoRotationElementsRoundInTheRecords) {
    const TestFolder folder;
    WriteMachine(folder);
    const json report = LoadReport(folder.Path("top.stpx"), nullptr, 0);
    EXPECT_EQ(report["products"][0]["occurrences"][0]["rotation"], (json{0, 1, 0, 1, 0, 0, 0, 0, 1}));
}

TEST(StpxLoad, IsTheSameWithAndWithoutThreads) {
    const TestFolder folder;
    WriteMachine(folder);
    std::string uses;
    std::string parts;
    for (int i = 0; i < 200; ++i) {
        const std::string n = std::to_string(i);
        uses += Use("o" + n, n + " 0 0");
        parts += Part("p" + n, UsedAs("o" + n) + Assigned("f" + n)) +
                 File("f" + n, i % 7 == 3 ? "none" + n + ".stp" : "p" + n + ".stp");
        folder.Write("p" + n + ".stp", PartFile("p" + n, i + 1));
    }
    const std::string path = folder.Write("many.stpx", Document(parts + Part("top", uses)));
    SceneView one;
    SceneView six;
    const ConsoleText console;
    LoadStpxFile(one, path.c_str(), nullptr, 0);
    EXPECT_FALSE(console.Has("End thread"));
    LoadStpxFile(six, path.c_str(), nullptr, 1);
    EXPECT_TRUE(console.Has("End thread"));
    EXPECT_EQ(Report(one), Report(six));
    ASSERT_EQ(one.loaded.unreadFiles.size(), 29u);
    ASSERT_EQ(six.loaded.unreadFiles.size(), 29u);
    for (std::size_t i = 0; i < 29; ++i) {
        EXPECT_EQ(one.loaded.unreadFiles[i].path, six.loaded.unreadFiles[i].path);
        EXPECT_EQ(one.loaded.unreadFiles[i].productName, six.loaded.unreadFiles[i].productName);
        EXPECT_EQ(one.loaded.unreadFiles[i].place, six.loaded.unreadFiles[i].place);
    }
}

TEST(StpxLoad, ReadsARootThatIsOnePart) {
    const TestFolder folder;
    folder.Write("w.stp", PartFile("w"));
    folder.Write("W.STP", PartFile("w"));
    folder.WriteGzip("w.stpz", PartFile("w"));
    for (const char* const name : {"w.stp", "W.STP", "w.stpz"}) {
        const std::string path = folder.Write("a.stpx", Document(Part("w", Assigned("f")) + File("f", name)));
        const json report = LoadReport(path, nullptr, 1);
        EXPECT_EQ(report["triangles"], 2) << name;
        EXPECT_EQ(report["pickMode"], std::string(name) == "w.stpz" ? 2 : 1) << name;
        EXPECT_EQ(report["drawList"][0]["matrix"], nullptr);
    }
}

TEST(StpxLoad, ShowsANamedChildOfTheRootButNeitherTheRootNorAGrandchild) {
    const TestFolder folder;
    WriteMachine(folder);
    const std::string path = folder.Path("top.stpx");
    EXPECT_EQ(LoadReport(path, "cart", 1)["products"][0]["name"], "cart");
    EXPECT_EQ(LoadReport(path, "cart", 1)["triangles"], 4);
    EXPECT_EQ(LoadReport(path, "top", 1)["products"][0]["name"], "top");
    EXPECT_EQ(LoadReport(path, "wheel", 1)["products"][0]["name"], "top");
    EXPECT_EQ(LoadReport(path, "axle", 1)["pickMode"], 1);
}

TEST(StpxLoad, KeepsAUseWithoutAProductAndLeavesItOutOfTheScene) {
    const TestFolder folder;
    folder.Write("w.stp", PartFile("w"));
    const std::string path =
        folder.Write("a.stpx", Document(Part("w", UsedAs("o") + Assigned("f")) + File("f", "w.stp") +
                                        Part("top", Use("x") + Use("o", "1 0 0") + Use("y"))));
    const ConsoleText console;
    const json report = LoadReport(path, nullptr, 1);
    EXPECT_EQ(report["triangles"], 2);
    EXPECT_EQ(report["products"][0]["occurrences"][0]["child"], nullptr);
    EXPECT_EQ(report["products"][0]["occurrences"][1]["child"], 1);
    EXPECT_EQ(console.Count("<E>"), 1);
    EXPECT_TRUE(console.Has("left out: 2"));
}

TEST(StpxLoad, SaysNothingOfUsesThatAreNeverPlaced) {
    const TestFolder folder;
    // A product with a part of its own is placed as that part, whatever it is made of.
    folder.Write("part.stp", PartFile("part"));
    const std::string path =
        folder.Write("top.stpx", Document(Part("part", UsedAs("o1") + Use("missing") + Assigned("f")) +
                                          File("f", "part.stp") + Part("top", Use("o1", "1 0 0"))));
    const ConsoleText console;
    EXPECT_EQ(LoadReport(path, nullptr, 0)["triangles"], 2);
    EXPECT_EQ(console.Count("<E>"), 0);
}

TEST(StpxLoad, StopsReadingADocumentThatLeadsToItselfWithoutEnd) {
    const TestFolder folder;
    // Each reading finds its first product known, and makes the second anew.
    const std::string self = Part("a", Assigned("f")) + Part("b", "") + File("f", "self.stpx");
    folder.Write("self.stpx", Document(self));
    folder.Write("part.stp", PartFile("part"));
    const std::string path =
        folder.Write("top.stpx", Document(Part("a", UsedAs("o1") + Assigned("f")) + File("f", "self.stpx") +
                                          Part("part", UsedAs("o2") + Assigned("g")) + File("g", "part.stp") +
                                          Part("top", Use("o1", "1 0 0") + Use("o2", "1 0 0"))));
    const ConsoleText console;
    SceneView view;
    LoadStpxFile(view, path.c_str(), nullptr, 1);
    EXPECT_EQ(view.loaded.drawnTriangles, 2);
    EXPECT_EQ(console.Count("<E>"), 1);
    EXPECT_EQ(console.Count("<E> self.stpx: it leads to itself without end, it isn't read any more\n"), 1);
    ASSERT_EQ(view.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(view.loaded.unreadFiles[0].path, "self.stpx");
}

TEST(StpxLoad, StopsReadingDocumentsThatLeadToEachOtherWithoutEnd) {
    const TestFolder folder;
    const auto leadingTo = [](const std::string& name) {
        return Document(Part("a", Assigned("f")) + Part("b", "") + File("f", name));
    };
    folder.Write("x.stpx", leadingTo("y.stpx"));
    folder.Write("y.stpx", leadingTo("x.stpx"));
    const std::string path =
        folder.Write("top.stpx", Document(Part("a", UsedAs("o1") + Assigned("f")) + File("f", "x.stpx") +
                                          Part("c", UsedAs("o2") + Assigned("g")) + File("g", "y.stpx") +
                                          Part("top", Use("o1") + Use("o2"))));
    const ConsoleText console;
    SceneView view;
    LoadStpxFile(view, path.c_str(), nullptr, 1);
    EXPECT_EQ(console.Count("it leads to itself without end"), 1);
    EXPECT_EQ(view.loaded.unreadFiles.size(), 1u);
}

TEST(StpxLoad, ReadsADocumentAgainThatAnotherOneNames) {
    const TestFolder folder;
    folder.Write("a.stpx", Document(Part("a", "")));
    folder.Write("b.stpx", Document(Part("c", Assigned("f")) + File("f", "a.stpx") + Part("b", "")));
    const std::string path =
        folder.Write("top.stpx", Document(Part("a", UsedAs("o1") + Assigned("f")) + File("f", "a.stpx") +
                                          Part("b", UsedAs("o2") + Assigned("g")) + File("g", "b.stpx") +
                                          Part("top", Use("o1") + Use("o2"))));
    const ConsoleText console;
    SceneView view;
    LoadStpxFile(view, path.c_str(), nullptr, 1);
    EXPECT_EQ(console.Count("<E>"), 0);
    EXPECT_TRUE(console.Has("Number of external products : 3\n"));
}

TEST(StpxLoad, TakesARootForAnAssemblyUnlessItsFilesNameIsThatOfAPart) {
    const TestFolder folder;
    for (const char* const name : {"w", "w.p"}) {
        folder.Write(name, PartFile("w"));
        const std::string path = folder.Write("a.stpx", Document(Part("w", Assigned("f")) + File("f", name)));
        const json report = LoadReport(path, nullptr, 1);
        EXPECT_EQ(report["triangles"], 2) << name;
        EXPECT_EQ(report["pickMode"], 2) << name;
    }
}

TEST(StpxLoad, FindsANamedChildBehindAUseWithoutAProduct) {
    const TestFolder folder;
    folder.Write("w.stp", PartFile("w"));
    const std::string path =
        folder.Write("a.stpx", Document(Part("w", UsedAs("o") + Assigned("f")) + File("f", "w.stp") +
                                        Part("top", Use("x") + Use("o", "1 0 0"))));
    const ConsoleText console;
    EXPECT_EQ(LoadReport(path, "w", 1)["products"][0]["name"], "w");
}

TEST(StpxLoad, FindsNoNamedChildWithoutARoot) {
    const TestFolder folder;
    const ConsoleText console;
    EXPECT_EQ(LoadReport(folder.Write("a.stpx", Document("")), "w", 1)["triangles"], 0);
    EXPECT_EQ(console.Count("<E>"), 1);
}

TEST(StpxLoad, SaysThatThereIsNoRootAndShowsAnEmptyScene) {
    const TestFolder folder;
    const std::string path = folder.Write("a.stpx", Document(Part("w", UsedAs("o"))));
    const ConsoleText console;
    const json report = LoadReport(path, nullptr, 1);
    EXPECT_EQ(console.Count("<E> Root not found\n"), 1);
    EXPECT_EQ(report["drawList"], nullptr);
    EXPECT_EQ(report["pickMode"], 2);
    EXPECT_EQ(report["products"].size(), 0u);
    EXPECT_EQ(report["modelSize"], 10);
    EXPECT_TRUE(console.Has("Number of parts (P21) : 0\n"));
}

TEST(StpxLoad, ShowsAnEmptySceneForARootWithNeitherComponentsNorAFile) {
    const TestFolder folder;
    const std::string path = folder.Write("a.stpx", Document(Part("w", "")));
    const ConsoleText console;
    const json report = LoadReport(path, nullptr, 1);
    EXPECT_EQ(console.Count("<E>"), 1);
    EXPECT_EQ(report["drawList"].size(), 0u);
    EXPECT_EQ(report["products"].size(), 1u);
}

TEST(StpxLoad, PutsNamesFromTheFileOnOneLine) {
    const TestFolder folder;
    const std::string bare = folder.Write("bare.stpx", Document(Part("w\n", "")));
    const std::string unmatched =
        folder.Write("unmatched.stpx", Document(Part("w\r", UsedAs("o")) + Part("top\n", Use("x\n"))));
    const std::string absent =
        folder.Write("absent.stpx", Document(Part("w", UsedAs("o") + Assigned("f")) +
                                             File("f", "gone\n.stpx") + Part("top", Use("o"))));
    for (const auto& [path, line] :
         {std::pair{bare, bare + ": its root 'w?' has neither components nor a file"},
          std::pair{unmatched,
                    unmatched + ": uses without a product are left out: 1, among them 'x?' in 'top?'"},
          std::pair{absent, folder.Path("gone?.stpx") + ": it can't be opened"}}) {
        const ConsoleText console;
        LoadReport(path, nullptr, 1);
        EXPECT_EQ(console.Count("<E>"), 1);
        EXPECT_EQ(console.Count("<E> " + line + "\n"), 1) << console.Text();
    }
}

TEST(StpxLoad, ShowsNothingWhenTheRootDocumentCannotBeRead) {
    const TestFolder folder;
    const std::string cut = folder.Write("a.stpx", "<DataContainer><Part>");
    for (const std::string& path : {folder.Path("none.stpx"), cut, folder.Path("")}) {
        SceneView view;
        view.loaded.drawnTriangles = 7;
        view.loaded.box[1] = 3;
        const ConsoleText console;
        LoadStpxFile(view, path.c_str(), "x", 1);
        EXPECT_EQ(console.Count("<E> " + path), 1);
        EXPECT_EQ(view.loaded.drawnTriangles, 0);
        EXPECT_EQ(view.modelSize, 120);
        EXPECT_EQ(view.loaded.drawList, nullptr);
        EXPECT_EQ(view.loaded.pickMode, 0);
        EXPECT_EQ(view.loaded.box[1], 0);
        ASSERT_EQ(view.loaded.unreadFiles.size(), 1u);
        EXPECT_EQ(view.loaded.unreadFiles[0].path, path);
    }
}

TEST(StpxLoad, CannotOpenADocumentOf2GiB) {
    const TestFolder folder;
    const std::string path = folder.Write("a.stpx", Document(""));
    std::filesystem::resize_file(path, std::uintmax_t{1} << 31); // a hole: it takes no room
    const ConsoleText console;
    SceneView view;
    LoadStpxFile(view, path.c_str(), nullptr, 0);
    EXPECT_TRUE(console.Has("<E> " + path + ": files of 2 GiB and more can't be read\n" + //
                            "<E> " + path + ": it can't be opened\n"));
    ASSERT_EQ(view.loaded.unreadFiles.size(), 1u);
    EXPECT_STREQ(view.loaded.unreadFiles[0].reason, "can't be opened");
}

TEST(StpxLoad, GoesOnWithoutADocumentOrAPartThatCannotBeRead) {
    const TestFolder folder;
    WriteMachine(folder);
    folder.Write("cart.stpx",
                 "<DataContainer><Part><Name><CharacterString>cart</CharacterString></Name><PartView>");
    folder.Write("axle.stp", "no part");
    const ConsoleText console;
    SceneView view;
    LoadStpxFile(view, folder.Path("top.stpx").c_str(), nullptr, 0);
    EXPECT_EQ(Report(view)["drawList"].size(), 0u);
    EXPECT_EQ(console.Count("<E> " + folder.Path("cart.stpx")), 1);
    EXPECT_EQ(console.Count("<E> Invalid P21 file\n"), 1);
    ASSERT_EQ(view.loaded.unreadFiles.size(), 2u);
    EXPECT_EQ(view.loaded.unreadFiles[0].productName, "cart");
    EXPECT_EQ(view.loaded.unreadFiles[1].productName, "axle");
    EXPECT_EQ(view.loaded.unreadFiles[1].path, folder.Path("axle.stp"));
}

TEST(StpxLoad, ReadsCompressedTwinsOfDocumentsAndParts) {
    const TestFolder folder;
    folder.WriteGzip("a.stpxz", Document(Part("w", Assigned("f")) + File("f", "w.stp")));
    folder.WriteGzip("w.stpz", PartFile("w"));
    EXPECT_EQ(LoadReport(folder.Path("a.stpx"), nullptr, 1)["triangles"], 2);
    EXPECT_EQ(LoadReport(folder.Path("a.stpxz"), nullptr, 1)["triangles"], 2);
    // The name of a compressed document loses two letters to find a plain one.
    folder.Write("b.stp", Document(Part("w", Assigned("f")) + File("f", "w.stp")));
    EXPECT_EQ(LoadReport(folder.Path("b.stpxz"), nullptr, 1)["triangles"], 2);
}

TEST(StpxLoad, TakesACutOffCompressedDocumentAsIncomplete) {
    const TestFolder folder;
    std::string text = Document(Part("w", Assigned("f")) + File("f", "w.stp") + std::string(5000, ' '));
    folder.WriteGzip("a.stpxz", text);
    EXPECT_EQ(OpenStpxFile("a.stpxz").compression, 1);
    EXPECT_EQ(OpenStpxFile("a.stpxZ").compression, 1);
    EXPECT_EQ(OpenStpxFile("a.stpx").compression, 0);
    folder.Write("c.stpxz", "\x1f\x8b no stream");
    const ConsoleText console;
    LoadReport(folder.Path("c.stpxz"), nullptr, 1);
    EXPECT_EQ(console.Count("<E>"), 1);
}

TEST(StpxLoad, RefusesADocumentWhoseNameOnlyEndsInX) {
    const TestFolder folder;
    const std::string path = folder.Write("a.stpx", Document(Part("s", UsedAs("o") + Assigned("f")) +
                                                             File("f", "sub.box") + Part("top", Use("o"))));
    const ConsoleText console;
    LoadReport(path, nullptr, 1);
    EXPECT_TRUE(console.Has("<E> Error: non XML file in _asm_prod_ext: \n"));
}

TEST(StpxLoad, RefusesAPartWhoseFileIsNamedAgainAsADocument) {
    const TestFolder folder;
    folder.Write("sub.stpx", Document(Part("leaf", "")));
    const std::string path = folder.Write(
        "a.stpx", Document(Part("s", Assigned("f")) + File("f", "s.stp") + File("f", "sub.stpx")));
    const ConsoleText console;
    SceneView view;
    LoadStpxFile(view, path.c_str(), nullptr, 0);
    EXPECT_EQ(console.Count("<E> Error: XML file in _geom_prod_ext: \n"), 1);
    EXPECT_TRUE(console.Has("Number of external products : 1\nNumber of parts (P21) : 0\n"));
    EXPECT_EQ(view.loaded.drawnTriangles, 0);
    EXPECT_TRUE(view.loaded.unreadFiles.empty());
}

TEST(StpxLoad, KnowsADocumentByItsExtension) {
    EXPECT_EQ(IsXmlFileName("a.stpx"), 1);
    EXPECT_EQ(IsXmlFileName("a.b.StpXZ"), 1);
    EXPECT_EQ(IsXmlFileName(".stpx"), 0);
    EXPECT_EQ(IsXmlFileName("stpx"), 0);
    EXPECT_EQ(IsXmlFileName("a.stp"), 0);
    EXPECT_EQ(IsXmlFileName(""), 0);
}

TEST(StpxLoad, LeavesOutAPartThatIsAnAssembly) {
    const TestFolder folder;
    std::string assembly = PartFile("w");
    assembly.insert(assembly.find("#10="), "#5=NEXT_ASSEMBLY_USAGE_OCCURRENCE('');\n");
    folder.Write("w.stp", assembly);
    const std::string path = folder.Write("a.stpx", Document(Part("w", Assigned("f")) + File("f", "w.stp")));
    SceneView view;
    const ConsoleText console;
    LoadStpxFile(view, path.c_str(), nullptr, 0);
    EXPECT_FALSE(console.Has("<E>")) << "the thread of the load passes over it without a word";
    EXPECT_EQ(view.loaded.drawnTriangles, 0);
    ASSERT_EQ(view.loaded.unreadFiles.size(), 1u);
    EXPECT_TRUE(console.Has("Number of parts (P21) : 0\n"));
}

TEST(StpxLoad, TellsOfAPartThatIsAnAssemblyOnAWorker) {
    const TestFolder folder;
    std::string assembly = PartFile("w");
    assembly.insert(assembly.find("#10="), "#5=NEXT_ASSEMBLY_USAGE_OCCURRENCE('');\n");
    folder.Write("w.stp", assembly);
    const std::string path = folder.Write("a.stpx", Document(Part("v", Assigned("f")) + File("f", "w.stp") +
                                                             Part("w", Assigned("g")) + File("g", "w.stp")));
    std::atomic<int> lines = 0;
    SetConsoleSink(
        [](void* context, const char* text, std::size_t length) {
            if (std::string_view(text, length)
                    .starts_with("<E> Error: P21 assembly file in _geom_prod_ext: ")) {
                ++*static_cast<std::atomic<int>*>(context);
            }
        },
        &lines);
    LoadedScene loaded = NewScene();
    StpxSession session(loaded);
    // The thread of the load waits before it reads a second part, which is left to a worker.
    session.progress = [&lines](std::int32_t, std::int32_t) {
        for (int i = 0; i < 10000 && lines == 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    };
    TraiteSTEPXFileNewMT(session, path.c_str(), nullptr, 0, true);
    SetConsoleSink(nullptr, nullptr);
    EXPECT_GE(lines, 1);
    EXPECT_LE(lines, 2);
    EXPECT_EQ(loaded.unreadFiles.size(), 2u);
}

TEST(StpxLoad, CountsAPartThatIsAssignedTwiceAsTwoButReadsItInOnePlace) {
    const TestFolder folder;
    folder.Write("w.stp", PartFile("w"));
    const std::string path = folder.Write("a.stpx", Document(File("f", "w.stp") + File("g", "w.stp") +
                                                             Part("w", Assigned("f") + Assigned("g"))));
    const ConsoleText console;
    EXPECT_EQ(LoadReport(path, nullptr, 1)["triangles"], 2);
    EXPECT_TRUE(console.Has("Number of parts (P21) : 2\n"));
}

TEST(StpxLoad, LeavesOutTheUseThatMakesAProductAPartOfItself) {
    const TestFolder folder;
    folder.Write("w.stp", PartFile("w"));
    const std::string path =
        folder.Write("a.stpx", Document(Part("w", UsedAs("w") + Assigned("f")) + File("f", "w.stp") +
                                        Part("a", UsedAs("a") + Use("b") + Use("w")) +
                                        Part("b", UsedAs("b") + Use("a")) + Part("top", Use("a"))));
    const ConsoleText console;
    EXPECT_EQ(LoadReport(path, "a", 1)["triangles"], 2);
    EXPECT_EQ(console.Count("<E>"), 1);
}

TEST(StpxLoad, WalksATreeOf100000LevelsWithoutRecursion) {
    const TestFolder folder;
    folder.Write("w.stp", PartFile("w"));
    std::string parts = Part("w", UsedAs("o100000") + Assigned("f")) + File("f", "w.stp");
    for (int i = 0; i < 100000; ++i) {
        const std::string n = std::to_string(i);
        parts += Part("p" + n,
                      (i > 0 ? UsedAs("o" + n) : std::string()) + Use("o" + std::to_string(i + 1), "0 0 1"));
    }
    const std::string path = folder.Write("a.stpx", Document(parts));
    SceneView view;
    LoadStpxFile(view, path.c_str(), "nobody", 1);
    EXPECT_EQ(view.loaded.drawnTriangles, 2);
    EXPECT_EQ(view.loaded.drawList->items[0]->matrix[14], 100000.0f);
}

TEST(StpxLoad, FindsPartsBesideTheRootByTheLastSlashOnly) {
    LoadedScene loaded;
    StpxSession session(loaded);
    ProductNode product{};
    product.fileName = "sub\\a.stp";
    session.directory = "x/";
    EXPECT_EQ(StpxPath(session, product), "x/sub/a.stp");
}

TEST(StpxLoad, KeepsTheContainersAndTheRootNameOfAnEarlierPart) {
    const TestFolder folder;
    WriteMachine(folder);
    SceneView view;
    LoadStepFile(view, folder.Path("axle.stp").c_str(), 0);
    ASSERT_EQ(view.loaded.containerCount, 1);
    for (int i = 0; i < 3; ++i) { LoadStpxFile(view, folder.Path("top.stpx").c_str(), nullptr, 1); }
    ASSERT_EQ(view.loaded.containerCount, 1);
    EXPECT_EQ(view.loaded.containers[0]->containerId, 12);
    EXPECT_EQ(view.loaded.rootName, "axle");
    LoadStepFile(view, folder.Path("axle.stp").c_str(), 0);
    EXPECT_EQ(view.loaded.containers[0]->containerId, 12);
}

} // namespace
} // namespace tarnwick
