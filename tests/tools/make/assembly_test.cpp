#include "tools/make/assembly.h"

#include "make_files.h"
#include "written.h"

#include <gtest/gtest.h>

namespace tarnwick::make {
namespace {

std::string StructureText(const Machine& machine, std::size_t node) {
    return Written([&](P21Writer* out) { WriteStructure(machine, node, out); });
}

TEST(MakeAssembly, EveryStructureFileIsWhole) {
    const Machine machine = MakeMachine({20, 3, 2, 1});
    for (std::size_t n = 0; n < machine.nodes.size(); ++n) {
        if (n != 0 && machine.nodes[n].stem.empty()) continue;
        const std::string text = StructureText(machine, n);
        EXPECT_EQ(text, StructureText(machine, n));
        const P21File file = Parse(text);
        const std::size_t uses = IdsOf(file, "NEXT_ASSEMBLY_USAGE_OCCURRENCE").size();
        EXPECT_GT(uses, 0u);
        EXPECT_EQ(IdsOf(file, "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION").size(), uses);
        EXPECT_EQ(IdsOf(file, "ITEM_DEFINED_TRANSFORMATION").size(), uses);
        EXPECT_EQ(IdsOf(file, "APPLIED_DOCUMENT_REFERENCE").size(), IdsOf(file, "DOCUMENT_FILE").size());
    }
}

TEST(MakeAssembly, TransformationsStartFromTheOriginOnTheWorldAxes) {
    const Machine machine = MakeMachine({20, 3, 0, 1});
    const P21File file = Parse(StructureText(machine, 0));
    const std::vector<int> transformations = IdsOf(file, "ITEM_DEFINED_TRANSFORMATION");
    EXPECT_FALSE(transformations.empty());
    for (const int id : transformations) {
        const int from = ReferencesIn(ArgumentsOf(file, id))[0];
        const std::vector<int> source = ReferencesIn(ArgumentsOf(file, from));
        EXPECT_EQ(ArgumentsOf(file, source[0])[1].text, "(0.,0.,0.)");
        EXPECT_EQ(ArgumentsOf(file, source[1])[1].text, "(0.,0.,1.)");
        EXPECT_EQ(ArgumentsOf(file, source[2])[1].text, "(1.,0.,0.)");
    }
}

TEST_F(MakeFiles, ProductIdsJoinReferencesAndFiles) {
    ASSERT_EQ(
        Run({"assembly", Path("top.stp"), "--parts", "20", "--depth", "2", "--triangles-per-part", "100"}),
        0);
    std::size_t references = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const P21File file = Parse(ReadFile(entry.path()));
        for (const int id : IdsOf(file, "APPLIED_DOCUMENT_REFERENCE")) {
            const std::vector<int> ends = ReferencesIn(ArgumentsOf(file, id));
            const std::string_view name = ArgumentsOf(file, ends[0])[0].text;
            const int formation = ReferencesIn(ArgumentsOf(file, ends[1]))[0];
            const int product = ReferencesIn(ArgumentsOf(file, formation))[0];
            const P21File other = Parse(ReadFile(folder / name.substr(1, name.size() - 2)));
            bool found = false;
            for (const int p : IdsOf(other, "PRODUCT")) {
                found = found || ArgumentsOf(other, p)[0].text == ArgumentsOf(file, product)[0].text;
            }
            EXPECT_TRUE(found) << name;
            ++references;
        }
    }
    EXPECT_GE(references, 20u);
}

TEST_F(MakeFiles, CompressedAssemblyRefersToPlainNames) {
    ASSERT_EQ(
        Run({"assembly", Path("top.stpz"), "--compress", "--depth", "0", "--triangles-per-part", "100"}), 0);
    EXPECT_EQ(FileCount(), 19u);
    for (const auto& file : fs::directory_iterator(folder)) EXPECT_EQ(file.path().extension(), ".stpz");
    EXPECT_TRUE(fs::exists(folder / "gear-0004.stpz"));
    MachineOptions o;
    o.depth = 0;
    EXPECT_NE(StructureText(MakeMachine(o), 0).find("DOCUMENT_FILE('gear-0004.stp',"), std::string::npos);
}

TEST_F(MakeFiles, OneMissingLeavesOutTheLastPart) {
    ASSERT_EQ(
        Run({"assembly", Path("top.stp"), "--one-missing", "--depth", "0", "--triangles-per-part", "100"}),
        0);
    EXPECT_EQ(FileCount(), 18u);
    EXPECT_FALSE(fs::exists(folder / "bolt-0018.stp"));
    EXPECT_NE(ReadFile(Path("top.stp")).find("'bolt-0018.stp'"), std::string::npos);
}

} // namespace
} // namespace tarnwick::make
