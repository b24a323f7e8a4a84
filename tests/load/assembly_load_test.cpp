// The load of an assembly over many files, from the top file to the draw list of its root, on one thread.

#include "load/step_driver.h"
#include "support/assembly_text.h"
#include "support/loaded_file.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// A top file with one part for each name, in "<name>.stp", placed one beside the other along x.
std::string TopOf(const std::vector<std::string>& parts, const std::string& rootName = "top") {
    AssemblyText text;
    const int top = text.Product(rootName);
    double x = 0;
    for (const std::string& name : parts) {
        const int part = text.Product(name);
        text.File(part, name + ".stp");
        text.Use(top, part, At(x, 0, 0));
        x += 10;
    }
    return text.Text();
}

std::string Counts(int parts) {
    return "Number of files=0  ; Number of parts=" + std::to_string(parts) + " \n";
}

TEST(AssemblyLoad, ReadsATopFileItsSubAssemblyAndTheirParts) {
    const TempFolder folder;
    AssemblyText top;
    const int root = top.Product("machine");
    const int sub = top.Product("arm");
    const int bolt = top.Product("bolt");
    top.File(sub, "arm.stp");
    top.File(bolt, "bolt.stp");
    top.Use(root, sub, At(100, 0, 0));
    AssemblyText arm;
    const int armRoot = arm.Product("arm");
    const int armBolt = arm.Product("bolt");
    const int plate = arm.Product("plate");
    arm.File(armBolt, "other bolt.stp");
    arm.File(plate, "plate.stp");
    arm.Use(armRoot, armBolt, At(1, 0, 0));
    arm.Use(armRoot, armBolt, At(2, 0, 0));
    arm.Use(armRoot, plate, At(3, 0, 0));
    folder.Write("arm.stp", arm.Text());
    folder.Write("bolt.stp", PlateText(2));
    folder.Write("plate.stp", PlateText(5, {0, 50, 0, 1, 0, 1}));
    // "bolt" of the top file is nobody's part there, so it and the machine are candidates.
    top.Use(root, bolt, At(0, 7, 0));
    const LoadedFile load(folder.Write("top.stp", top.Text()));

    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.session.isAssembly, 1);
    EXPECT_EQ(load.session.folder, folder.Path(""));
    EXPECT_EQ(load.session.loaded.rootName, "machine");
    EXPECT_EQ(load.session.partCount, 2);
    EXPECT_THAT(load.ProductNames(), UnorderedElementsAre("machine", "arm", "bolt", "plate"));
    EXPECT_THAT(load.QueueNames(), UnorderedElementsAre("arm", "bolt", "plate"));
    // The bolt keeps the file of the upper file, and is one node for both.
    EXPECT_STREQ(load.Find("bolt")->fileName, "bolt.stp");
    EXPECT_THAT(load.DrawnNames(), UnorderedElementsAre("bolt", "bolt", "bolt", "plate"));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 3 * 2 + 5);
    EXPECT_EQ(load.session.loaded.hasBox, 1);
    EXPECT_THAT(load.session.loaded.box, ElementsAre(0, 153, 0, 8, 0, 1));
    EXPECT_THAT(load.session.loaded.root->box, ElementsAre(0, 153, 0, 8, 0, 1));
    EXPECT_EQ(load.session.loaded.containers, nullptr);
    EXPECT_EQ(load.session.loaded.resultMesh, nullptr);
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n" + Counts(2));
    EXPECT_THAT(load.session.loaded.unreadFiles, IsEmpty());
    for (std::int32_t i = 0; i < load.session.loaded.drawList->count; ++i) {
        const DrawItem& item = *load.session.loaded.drawList->items[i];
        EXPECT_EQ(item.meshes, load.Find(item.product->name)->drawList->items[0]->meshes);
    }
}

TEST(AssemblyLoad, PrintsNoThreadLinesWithoutThreads) {
    const TempFolder folder;
    folder.Write("a.stp", PlateText(1));
    const LoadedFile load(folder.Write("top.stp", TopOf({"a"})));
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n" + Counts(1));
}

TEST(AssemblyLoad, WithoutReferencesIsATreeWithoutGeometry) {
    const TempFolder folder;
    AssemblyText text;
    const int top = text.Product("top");
    text.Use(top, text.Product("leaf"), At(5, 0, 0));
    const LoadedFile load(folder.Write("top.stp", text.Text()));
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.session.tree.queue.Count().all, 0);
    EXPECT_THAT(ChildNames(*load.session.loaded.root), ElementsAre("leaf"));
    ASSERT_NE(load.session.loaded.drawList, nullptr);
    EXPECT_EQ(load.session.loaded.drawList, load.session.loaded.root->drawList);
    EXPECT_EQ(load.session.loaded.drawList->count, 0);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    EXPECT_THAT(load.session.loaded.box, ElementsAre(0, 0, 0, 0, 0, 0));
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n" + Counts(0));
}

TEST(AssemblyLoad, DrawsNothingOfGeometryInTheTopFileItself) {
    const TempFolder folder;
    AssemblyText text(100);
    const int top = text.Product("top");
    text.Use(top, text.Product("leaf"));
    std::string bytes = SmallPartText();
    bytes.resize(bytes.find("ENDSEC;\nEND-ISO"));
    for (const std::string& line : text.DataLines()) { bytes += line + "\n"; }
    const LoadedFile load(folder.Write("top.stp", bytes + "ENDSEC;\nEND-ISO-10303-21;\n"));
    EXPECT_EQ(load.session.isAssembly, 1);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    EXPECT_EQ(load.session.partCount, 0);
    EXPECT_EQ(load.session.loaded.rootName, "top");
}

TEST(AssemblyLoad, SaysThatThereIsNoRoot) {
    const TempFolder folder;
    AssemblyText text;
    const int a = text.Product("a");
    const int b = text.Product("b");
    text.Use(a, b);
    text.Use(b, a);
    text.File(b, "b.stp");
    folder.Write("b.stp", PlateText(1));
    const LoadedFile load(folder.Write("top.stp", text.Text()));
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.session.loaded.root, nullptr);
    EXPECT_FALSE(load.session.loaded.hasRootName);
    ASSERT_NE(load.session.loaded.drawList, nullptr);
    EXPECT_EQ(load.session.loaded.drawList->count, 0);
    EXPECT_EQ(load.session.loaded.drawList->capacity, 100);
    EXPECT_EQ(load.session.loaded.hasBox, 0);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    // Its parts have been read all the same.
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n<E> Root not found\n" + Counts(1));
}

TEST(AssemblyLoad, WithoutARootIsReportedWithAnEmptyListAndNoName) {
    const TempFolder folder;
    AssemblyText text;
    const int a = text.Product("a");
    text.Use(a, a);
    const std::string report = ReportOf(folder.Write("top.stp", text.Text()), 1);
    for (const char* const member :
         {"\"rootName\":null", "\"drawList\":[]", "\"pickMode\":2", "\"products\":[]", "\"triangles\":0"}) {
        EXPECT_NE(report.find(member), std::string::npos) << member;
    }
}

TEST(AssemblyLoad, ComesBeforeFiniteElements) {
    const TempFolder folder;
    AssemblyText text;
    const int top = text.Product("top");
    const int part = text.Product("part");
    text.Use(top, part);
    text.File(part, "part.stp");
    folder.Write("part.stp", PlateText(4));
    const LoadedFile load(
        folder.Write("top.stp", text.Text("AP209_MULTIDISCIPLINARY_ANALYSIS_AND_DESIGN_MIM_LF")));
    EXPECT_EQ(load.session.isAssembly, 1);
    EXPECT_EQ(load.session.loaded.resultMesh, nullptr);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 4);
}

TEST(AssemblyLoad, ReadsAFiniteElementFileAmongItsPartsAsAPart) {
    const TempFolder folder;
    std::string part = PlateText(4);
    part.replace(part.find("AP242"), 5, "AP209");
    folder.Write("a.stp", part);
    const LoadedFile load(folder.Write("top.stp", TopOf({"a"})));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 4);
}

TEST(AssemblyLoad, GivesUpATopFileWhoseStructureRunsPastItsEnd) {
    const TempFolder folder;
    AssemblyText text;
    const int top = text.Product("top");
    text.Use(top, text.Product("leaf"));
    const int broken = text.Line("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION($)");
    const std::string path = folder.Write("top.stp", text.Text());
    const LoadedFile load(path);
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n<E> " + path + ": its structure is given up, #" +
                                std::to_string(broken) + " runs past the end of the file\n" +
                                "<E> Root not found\n" + Counts(0));
    EXPECT_EQ(load.session.tree.products.count, 0);
    ASSERT_EQ(load.session.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].path, path);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].productName, "");
}

TEST(AssemblyLoad, GivesUpASubAssemblyWhoseStructureRunsPastItsEndAndGoesOn) {
    const TempFolder folder;
    AssemblyText sub;
    sub.MarkAsAssembly();
    const int broken = sub.Line("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION($)");
    const std::string subPath = folder.Write("sub.stp", sub.Text());
    folder.Write("a.stp", PlateText(3));
    const LoadedFile load(folder.Write("top.stp", TopOf({"sub", "a"})));
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n<E> " + subPath + ": its structure is given up, #" +
                                std::to_string(broken) + " runs past the end of the file\n" + Counts(1));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 3);
    ASSERT_EQ(load.session.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].path, subPath);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].productName, "sub");
}

TEST(AssemblyLoad, NotesAPartThatIsGivenUpAmongTheUnreadFiles) {
    const TempFolder folder;
    std::string text = PlateText(3);
    text.insert(text.find("#10,$") + 5, "\n");
    const std::string damaged = folder.Write("a.stp", text);
    folder.Write("b.stp", PlateText(2));
    const LoadedFile load(folder.Write("top.stp", TopOf({"a", "b"})));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 2);
    ASSERT_EQ(load.session.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].path, damaged);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].productName, "a");
    EXPECT_STREQ(load.session.loaded.unreadFiles[0].reason, kGivenUpReason);
}

TEST(AssemblyLoad, LeavesAQueuedProductAsItWasWhenItsFileIsGivenUp) {
    // #31 of 31 lines is the last in the table, after the line of a good occurrence.
    const TempFolder folder;
    AssemblyText sub;
    const int root = sub.Product("sub");
    const int leaf = sub.Product("leaf");
    sub.File(leaf, "leaf.stp");
    sub.Use(root, leaf);
    while (sub.DataLines().size() < 30) { sub.Line("CARTESIAN_POINT('',(0.,0.,0.))"); }
    sub.Line("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION($)");
    folder.Write("sub.stp", sub.Text());
    folder.Write("leaf.stp", PlateText(3));
    const LoadedFile load(folder.Write("top.stp", TopOf({"sub"})));
    EXPECT_THAT(load.ProductNames(), UnorderedElementsAre("top", "sub"));
    EXPECT_THAT(ChildNames(*load.Find("sub")), IsEmpty());
}

TEST(AssemblyLoad, CountsThePartsThatWereReadAndNothingElse) {
    const TempFolder folder;
    folder.Write("sub.stp", TopOf({"deep"}, "sub"));
    folder.Write("deep.stp", PlateText(1));
    folder.Write("empty.stp", PlateText(0));
    folder.Write("notp21.stp", "hello");
    folder.Write("broken.stp",
                 PartText("(#20)", {"#20=TESSELLATED_SOLID('',(#30),$);", "#30=TRIANGULATED_FACE('',#10"}));
    const LoadedFile load(folder.Write("top.stp", TopOf({"sub", "missing", "empty", "notp21", "broken"})));
    // deep, empty, and the one whose reading was given up.
    EXPECT_EQ(load.session.partCount, 3);
    EXPECT_THAT(load.console, ::testing::EndsWith(Counts(3)));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 1);
}

TEST(AssemblyLoad, GivesAPartWithoutMeshesAnItemWithoutMeshes) {
    const TempFolder folder;
    folder.Write("a.stp", PartText("()", {}));
    const LoadedFile load(folder.Write("top.stp", TopOf({"a", "missing"})));
    ASSERT_THAT(load.DrawnNames(), ElementsAre("a"));
    EXPECT_EQ(load.session.loaded.drawList->items[0]->meshCount, 0);
    EXPECT_NE(load.session.loaded.drawList->items[0]->matrix, nullptr);
}

TEST(AssemblyLoad, ReadsAFileForEachOfTwoProductsOfOneName) {
    const TempFolder folder;
    AssemblyText text;
    const int top = text.Product("top");
    for (int i = 0; i < 2; ++i) {
        const int twin = text.Product("twin");
        text.File(twin, "twin.stp");
        text.Use(top, twin, At(i, 0, 0));
    }
    folder.Write("twin.stp", PlateText(2));
    const LoadedFile load(folder.Write("top.stp", text.Text()));
    EXPECT_EQ(load.session.partCount, 2);
    ASSERT_EQ(load.session.loaded.drawList->count, 2);
    EXPECT_NE(load.session.loaded.drawList->items[0]->meshes, load.session.loaded.drawList->items[1]->meshes);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 4);
}

TEST(AssemblyLoad, ReadsAPartThatTwoSubAssembliesShareOnce) {
    const TempFolder folder;
    folder.Write("left.stp", TopOf({"bolt"}, "left"));
    folder.Write("right.stp", TopOf({"bolt"}, "right"));
    folder.Write("bolt.stp", PlateText(2));
    const LoadedFile load(folder.Write("top.stp", TopOf({"left", "right"})));
    EXPECT_EQ(load.session.partCount, 1);
    EXPECT_THAT(load.DrawnNames(), ElementsAre("bolt", "bolt"));
    EXPECT_EQ(load.session.loaded.drawList->items[0]->meshes, load.session.loaded.drawList->items[1]->meshes);
}

TEST(AssemblyLoad, NeverDrawsALowerFileWhoseRootHasAnotherName) {
    const TempFolder folder;
    folder.Write("sub.stp", TopOf({"part"}, "called otherwise"));
    folder.Write("part.stp", PlateText(2));
    const LoadedFile load(folder.Write("top.stp", TopOf({"sub"})));
    EXPECT_THAT(load.ProductNames(), UnorderedElementsAre("top", "sub", "called otherwise", "part"));
    EXPECT_EQ(load.session.partCount, 1); // read, but under nothing
    EXPECT_THAT(load.DrawnNames(), IsEmpty());
    EXPECT_EQ(load.session.loaded.rootName, "top");
}

TEST(AssemblyLoad, DrawsOnlyTheGeometryOfAChildThatHasPartsToo) {
    const TempFolder folder;
    AssemblyText text;
    const int top = text.Product("top");
    const int both = text.Product("both");
    const int below = text.Product("below");
    text.File(both, "both.stp");
    text.File(below, "below.stp");
    text.Use(top, both);
    text.Use(both, below, At(50, 0, 0));
    folder.Write("both.stp", PlateText(2));
    folder.Write("below.stp", PlateText(3));
    const LoadedFile load(folder.Write("top.stp", text.Text()));
    EXPECT_THAT(load.DrawnNames(), ElementsAre("both"));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 2);
    EXPECT_THAT(load.session.loaded.box, ElementsAre(0, 1, 0, 1, 0, 1));
}

TEST(AssemblyLoad, DrawsTheGeometryOfARootThatHasPartsTooAndItsParts) {
    const TempFolder folder;
    AssemblyText text;
    const int top = text.Product("top");
    const int part = text.Product("part");
    text.File(top, "body.stp");
    text.File(part, "part.stp");
    text.Use(top, part, At(50, 0, 0));
    folder.Write("body.stp", PlateText(2));
    folder.Write("part.stp", PlateText(3));
    const LoadedFile load(folder.Write("top.stp", text.Text()));
    EXPECT_THAT(load.DrawnNames(), ElementsAre("top", "part"));
    EXPECT_EQ(load.session.loaded.drawList->items[0]->matrix, nullptr);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 5);
    // The box of the parts takes the place of its own.
    EXPECT_THAT(load.session.loaded.box, ElementsAre(50, 51, 0, 1, 0, 1));
}

TEST(AssemblyLoad, EndsWhereFilesNameEachOther) {
    const TempFolder folder;
    const std::string path = folder.Write("a.stp", TopOf({"b", "part"}, "a"));
    folder.Write("b.stp", TopOf({"a", "part"}, "b"));
    folder.Write("part.stp", PlateText(1));
    const LoadedFile load(path);
    EXPECT_EQ(load.result, 0);
    // The top file's own root isn't queued: "a" of b.stp is another product, whose file is the top file
    // again.
    EXPECT_THAT(load.ProductNames(), UnorderedElementsAre("a", "b", "part", "a"));
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n<E> " + path +
                                ": product 'b' is part of itself; that use of it is left out\n" + Counts(1));
    EXPECT_THAT(load.DrawnNames(), UnorderedElementsAre("part", "part", "part"));
}

TEST(AssemblyLoad, EndsWhereAFileNamesItself) {
    const TempFolder folder;
    const LoadedFile load(folder.Write("top.stp", TopOf({"top"}, "root")));
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.session.loaded.rootName, "root");
    // Read again as the file of "top": its "root" is a new product, its "top" the queued one.
    EXPECT_THAT(load.ProductNames(), ElementsAre("root", "top", "root"));
    EXPECT_EQ(load.session.partCount, 0);
}

TEST(AssemblyLoad, KeepsNoPointerIntoTheTextOfItsFiles) {
    // The text of the last file lies where the others lay; names and meshes are whole all the same.
    const TempFolder folder;
    std::vector<std::string> names;
    for (int i = 0; i < 50; ++i) {
        names.push_back("part number " + std::to_string(i));
        folder.Write(names.back() + ".stp", PlateText(1 + i, {0, 1.0 + i, 0, 1, 0, 1}));
    }
    const LoadedFile load(folder.Write("top.stp", TopOf(names)));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 50 * 51 / 2);
    for (int i = 0; i < 50; ++i) {
        const ProductNode* const product = load.Find(names[static_cast<std::size_t>(i)]);
        ASSERT_NE(product, nullptr);
        EXPECT_EQ(product->fileName, names[static_cast<std::size_t>(i)] + ".stp");
        const StepFaceB& face = *product->drawList->items[0]->meshes[0];
        EXPECT_EQ(face.triangleCount, 1 + i);
        EXPECT_EQ(face.vertices[3], 1.0f + static_cast<float>(i));
    }
}

TEST(AssemblyLoad, SumsTheTimesOfItsPartReaders) {
    const TempFolder folder;
    folder.Write("a.stp", PlateText(20000));
    const LoadedFile load(folder.Write("top.stp", TopOf({"a"})));
    EXPECT_GT(load.session.loaded.readSeconds, 0);
    EXPECT_GT(load.session.loaded.partSeconds, 0);
    EXPECT_EQ(load.session.loaded.inflateSeconds, 0);
}

} // namespace
} // namespace tarnwick::test
