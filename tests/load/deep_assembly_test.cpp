// Trees of great depth and width in files of a few megabytes: no recursion may follow them, and nothing may
// grow faster than they do.

#include "support/address_space.h"
#include "support/assembly_text.h"
#include "support/loaded_file.h"
#include "support/sanitized.h"
#include "support/temp_folder.h"

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;

constexpr int kMany = kSanitized ? 10000 : 100000;

// The lines that the chain of an occurrence needs, as short as they may be. #1 is a relationship that moves
// by (1, 0, 0), for all occurrences.
class ShortText {
public:
    ShortText() {
        text_ = P21Header() + "#1=(A()B(#2));\n#2=T('','',#3,#4);\n#3=A('',#5,#7,#8);\n#4=A('',#6,#7,#8);\n"
                              "#5=P('',(0.,0.,0.));\n#6=P('',(1.,0.,0.));\n#7=D('',(0.,0.,1.));\n"
                              "#8=D('',(1.,0.,0.));\n";
    }
    int Line(const std::string& entity) {
        text_ += "#" + std::to_string(next_) + "=" + entity + ";\n";
        return next_++;
    }
    int Product(const std::string& name) { return Definition(Line("PRODUCT('" + name + "')")); }
    // A product whose line the scan doesn't know for one, for the blank before its parenthesis.
    int UncountedProduct(const std::string& name) { return Definition(Line("PRODUCT ('" + name + "')")); }
    // One more definition of a PRODUCT.
    int Definition(int productId) {
        const std::string product = std::to_string(productId);
        const std::string formation = std::to_string(Line("F('','',#" + product + ")"));
        return Line("D('','',#" + formation + ")");
    }
    // The shape of a usage, for any number of occurrences.
    std::string Shape(int parent, int child) {
        const int usage =
            Line("NEXT_ASS('','','',#" + std::to_string(parent) + ",#" + std::to_string(child) + ")");
        return std::to_string(Line("S(#" + std::to_string(usage) + ")"));
    }
    void Occurrence(const std::string& shape) { Line("CONTEXT_DEPENDENT_SHAPE_REP(#1,#" + shape + ")"); }
    // So many products below `parent`, each in the one before it, with the names "1", "2", ...; returns the
    // last.
    int Chain(int parent, int levels) {
        for (int i = 1; i <= levels; ++i) {
            const int child = Product(std::to_string(i));
            Occurrence(Shape(parent, child));
            parent = child;
        }
        return parent;
    }
    void File(int definition, const std::string& name) {
        const std::string document = std::to_string(Line("D('" + name + "')"));
        Line("APPLIED_DOCUMENT_REF(#" + document + ",'',(#" + std::to_string(definition) + "))");
    }
    std::string Text() const { return text_ + "ENDSEC;\nEND-ISO-10303-21;\n"; }

private:
    std::string text_;
    int next_ = 9;
};

TEST(DeepAssembly, MayHaveAHundredThousandLevels) {
    constexpr int kLevels = kMany;
    const TempFolder folder;
    ShortText text;
    const int last = text.Chain(text.Product("0"), kLevels);
    text.File(last, "part.stp");
    folder.Write("part.stp", PlateText(1));
    const std::string path = folder.Write("top.stp", text.Text());
    const LoadedFile load(path);
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\nNumber of files=0  ; Number of parts=1 \n");
    EXPECT_EQ(load.session.tree.products.count, kLevels + 1);
    EXPECT_EQ(load.session.loaded.rootName, "0");
    ASSERT_EQ(load.session.loaded.drawList->count, 1);
    EXPECT_EQ(load.session.loaded.drawList->items[0]->matrix[12], kLevels);
    EXPECT_THAT(load.session.loaded.box, ElementsAre(kLevels, kLevels + 1, 0, 1, 0, 1));
}

TEST(DeepAssembly, MayBeACycleOfAHundredThousandLevels) {
    constexpr int kLevels = kMany;
    const TempFolder folder;
    ShortText text;
    const int root = text.Product("root");
    const int first = text.Product("0");
    text.Occurrence(text.Shape(root, first));
    const int last = text.Chain(first, kLevels - 1);
    text.Occurrence(text.Shape(last, first));
    const std::string path = folder.Write("top.stp", text.Text());
    const LoadedFile load(path);
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\n<E> " + path +
                                ": product '0' is part of itself; that use of it is left out\n"
                                "Number of files=0  ; Number of parts=0 \n");
    EXPECT_EQ(load.session.loaded.rootName, "root");
}

TEST(DeepAssembly, CanBeReported) {
    constexpr int kLevels = kMany / 5;
    const TempFolder folder;
    ShortText text;
    text.Chain(text.Product("0"), kLevels);
    const std::string report = ReportOf(folder.Write("top.stp", text.Text()), 0);
    EXPECT_NE(report.find("\"name\":\"" + std::to_string(kLevels) + "\""), std::string::npos);
}

TEST(WideAssembly, PaysForAHundredThousandUsesOfAPartInSmallRecords) {
    constexpr int kUses = kMany;
    const TempFolder folder;
    ShortText text;
    const int top = text.Product("top");
    const int part = text.Product("part");
    const std::string shape = text.Shape(top, part);
    for (int i = 0; i < kUses; ++i) { text.Occurrence(shape); }
    text.File(part, "part.stp");
    folder.Write("part.stp", PlateText(100));
    const LoadedFile load(folder.Write("top.stp", text.Text()));
    EXPECT_EQ(load.session.partCount, 1);
    EXPECT_EQ(load.session.loaded.root->occurrenceCount, kUses);
    ASSERT_EQ(load.session.loaded.drawList->count, kUses);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 100 * kUses);
    StepFaceB** const meshes = load.session.loaded.drawList->items[0]->meshes;
    for (std::int32_t i = 0; i < kUses; ++i) {
        ASSERT_EQ(load.session.loaded.drawList->items[i]->meshes, meshes);
    }
    // An occurrence and an item with its matrix, and arrays of pointers to both that double.
    EXPECT_LT(load.session.loaded.scene->Main().Held(), std::size_t{kUses} * 400 + (std::size_t{64} << 20));
}

TEST(WideAssembly, MayHaveAHundredThousandPartsOfOneFile) {
    constexpr int kParts = kMany;
    const TempFolder folder;
    ShortText text;
    const int top = text.Product("top");
    for (int i = 0; i < kParts; ++i) {
        const int part = text.Product(std::to_string(i));
        text.Occurrence(text.Shape(top, part));
    }
    const LoadedFile load(folder.Write("top.stp", text.Text()));
    EXPECT_EQ(load.session.tree.products.count, kParts + 1);
    EXPECT_EQ(load.session.tree.products.capacity, kParts + 1001);
    EXPECT_EQ(load.session.loaded.root->occurrenceCapacity, kSanitized ? 10240 : 163840);
}

TEST(WideAssembly, HasAllItsPartsWhereTheScanCountsFewProducts) {
    // The scan knows a PRODUCT line only without a blank before its parenthesis, and one line may have many
    // definitions.
    constexpr int kParts = kSanitized ? 4000 : 40000;
    const TempFolder folder;
    ShortText blank;
    ShortText shared;
    const int blankTop = blank.UncountedProduct("top");
    const int sharedTop = shared.Product("top");
    const int product = shared.Line("PRODUCT('part')");
    for (int i = 0; i < kParts; ++i) {
        blank.Occurrence(blank.Shape(blankTop, blank.UncountedProduct(std::to_string(i))));
        shared.Occurrence(shared.Shape(sharedTop, shared.Definition(product)));
    }
    EXPECT_EQ(LoadedFile(folder.Write("blank.stp", blank.Text())).session.tree.products.count, kParts + 1);
    EXPECT_EQ(LoadedFile(folder.Write("shared.stp", shared.Text())).session.tree.products.count, kParts + 1);
}

TEST(WideAssembly, MayFindItsPartsByNameInALongQueue) {
    // Two files that name the same products: the second finds each of them on the queue.
    constexpr int kParts = 20000;
    const TempFolder folder;
    ShortText top;
    const int root = top.Product("top");
    const int sub = top.Product("sub");
    top.Occurrence(top.Shape(root, sub));
    top.File(sub, "sub.stp");
    ShortText lower;
    const int lowerRoot = lower.Product("sub");
    for (int i = 0; i < kParts; ++i) {
        const std::string name = "part " + std::to_string(i);
        top.File(top.Product(name), "missing.stp");
        lower.Occurrence(lower.Shape(lowerRoot, lower.Product(name)));
    }
    folder.Write("sub.stp", lower.Text());
    const LoadedFile load(folder.Write("top.stp", top.Text()), 1);
    EXPECT_EQ(load.session.tree.products.count, kParts + 2);
    EXPECT_EQ(load.Find("sub")->occurrenceCount, kParts);
    EXPECT_EQ(load.session.loaded.unreadFiles.size(), static_cast<std::size_t>(kParts));
}

// An assembly of as many levels, each of which uses the next one twice; the last one is a part.
std::string WriteDoubling(const TempFolder& folder, int levels) {
    ShortText text;
    int parent = text.Product("0");
    for (int i = 1; i <= levels; ++i) {
        const int child = text.Product(std::to_string(i));
        const std::string shape = text.Shape(parent, child);
        text.Occurrence(shape);
        text.Occurrence(shape);
        parent = child;
    }
    text.File(parent, "part.stp");
    folder.Write("part.stp", PlateText(1));
    return folder.Write("top.stp", text.Text());
}

// What the load of a file says when the process may have `megabytes` more of address space: what other tests
// have left in it is theirs.
void ExpectLineWithin(std::size_t megabytes, const std::string& path, const std::string& line) {
    if (kSanitized) { GTEST_SKIP() << "a sanitizer needs more address space than the limit leaves"; }
    std::fflush(nullptr);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const rlim_t bytes = AddressSpace() + (megabytes << 20);
        const rlimit limit{bytes, bytes};
        if (setrlimit(RLIMIT_AS, &limit) != 0) { _exit(77); }
        bool said = false;
        {
            const LoadedFile load(path);
            said = load.console.find(line) != std::string::npos;
        }
        _exit(said ? 0 : 1);
    }
    int state = 0;
    waitpid(child, &state, 0);
    ASSERT_TRUE(WIFEXITED(state)) << "signal " << WTERMSIG(state);
    if (WEXITSTATUS(state) == 77) { GTEST_SKIP() << "the limit can't be set here"; }
    EXPECT_EQ(WEXITSTATUS(state), 0);
}

TEST(DeepAssembly, ThatMultipliesIsCutOffWhereMemoryEnds) {
    const TempFolder folder;
    for (const int levels : {23, 24}) { // 24 levels are as many parts as may be
        const std::string path = WriteDoubling(folder, levels);
        ExpectLineWithin(512, path, "<E> " + path + ": no memory to place all of its parts\n");
    }
}

TEST(DeepAssembly, ThatMultipliesWithoutEndIsGivenUpBeforeItTakesTheMemory) {
    const TempFolder folder;
    for (const int levels : {25, 30, 60, 1000}) {
        const std::string path = WriteDoubling(folder, levels);
        ExpectLineWithin(512, path,
                         "<E> " + path + ": not all of its parts are placed, they are more than 16777216\n");
    }
}

TEST(DeepAssembly, FlattensASubTreeOnceForEachLevel) {
    // 65,536 items at the top.
    const TempFolder folder;
    const LoadedFile load(WriteDoubling(folder, 16));
    EXPECT_EQ(load.session.loaded.drawList->count, 65536);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 65536);
    EXPECT_EQ(load.Find("15")->drawList->count, 2);
}

} // namespace
} // namespace tarnwick::test
