#include "pieces.h"

#include "platform/text_block.h"
#include "product/draw_list.h"
#include "summary/select_depth.h"
#include "summary/stpj_reader.h"
#include "turns.h"
#include "xml/stpx_document.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tarnwick::bench {

namespace {

[[noreturn]] void Fail(const std::string& path, const char* problem) {
    std::fprintf(stderr, "%s: %s\n", path.c_str(), problem);
    std::exit(2);
}

// The file's bytes in a block as a load has it.
char* ReadText(const std::string& path, TextBlock& block, std::size_t* size) {
    const std::string bytes = ReadBytes(path, size);
    char* const text = block.Get(*size + TextBlock::kPadding);
    if (text == nullptr) { Fail(path, "no memory"); }
    std::memcpy(text, bytes.data(), bytes.size());
    return text;
}

double PassOver(const char* text, std::size_t size, char c) {
    std::size_t count = 0;
    const double seconds = Seconds([&] { count = CountByMemchr(text, size, c); });
    if (count == 0) { std::puts("nothing found"); }
    return seconds;
}

} // namespace

void BenchDocument(int turns, const std::string& path) {
    TextBlock block;
    std::size_t size = 0;
    char* const text = ReadText(path, block, &size);
    StartedHelpers helpers;
    const auto read = [&](bool plainly, Helpers* some) {
        StpxDocument document;
        document.plainly = plainly;
        document.helpers = some;
        document.text = text;
        document.size = size;
        document.name = path.c_str();
        NamedProductTable assemblies;
        ProductTable parts;
        assemblies.Allocate();
        parts.Allocate();
        Arena arena;
        return Seconds([&] {
            const char* const problem = ReadStpxDocument(document, 0, assemblies, parts, arena);
            if (problem != nullptr) { Fail(path, problem); }
        });
    };
    RunInTurn("a STEP XML document", turns,
              {{"memchr over the tags", [&] { return PassOver(text, size, '<'); }},
               {"its structure", [&] { return read(false, &helpers); }},
               {"the same by one core", [&] { return read(false, nullptr); }},
               {"... by the general scan alone", [&] { return read(true, nullptr); }}});
}

void BenchSummary(int turns, const std::string& path) {
    TextBlock block;
    std::size_t size = 0;
    char* const text = ReadText(path, block, &size);
    const auto read = [&] {
        Arena arena;
        StpjFile file{};
        file.path = path.c_str();
        return Seconds([&] {
            const char* const problem = ReadStpjText(file, text, size, arena);
            if (problem != nullptr || file.occurrenceCount == 0) { Fail(path, "not read"); }
        });
    };
    RunInTurn("the tables of a summary", turns,
              {{"memchr over the quotes", [&] { return PassOver(text, size, '"'); }}, {"its tables", read}});

    Arena arena;
    StpjFile file{};
    file.path = path.c_str();
    if (ReadStpjText(file, text, size, arena) != nullptr) { Fail(path, "not read"); }
    DrawList shown{};
    Arena boxMemory;
    const auto move = [&] {
        FreeBoxList(boxMemory, &shown);
        if (!SelectDepth(file, file.maxDepth, &shown, boxMemory)) { Fail(path, "no memory"); }
    };
    move();
    const std::size_t boxes = static_cast<std::size_t>(shown.count);
    // What one box takes: its record, 24 points and normals, 36 indices, a matrix, and its place in the list.
    constexpr std::size_t kBox = sizeof(BoxItem) + 2 * 24 * 3 * 4 + 36 * 4 + 16 * 4;
    Arena written;
    const auto write = [&] {
        written.Reset();
        for (std::size_t i = 0; i < boxes; ++i) {
            void* const box = written.Allocate(kBox);
            if (box == nullptr) { Fail(path, "no memory"); }
            std::memset(box, 1, kBox);
        }
        written.New<BoxItem*>(boxes);
    };
    RunInTurn((std::to_string(boxes) + " boxes").c_str(), turns,
              {{"writing them", [&] { return Seconds(write); }},
               {"a move of the slider", [&] { return Seconds(move); }}});
}

void BenchDrawList(int turns) {
    constexpr int kUses = 1000;
    Arena tree;
    ProductNode* const part = tree.New<ProductNode>();
    ProductNode* const unit = tree.New<ProductNode>();
    ProductNode* const root = tree.New<ProductNode>();
    StepFaceB* meshes[1] = {tree.New<StepFaceB>()};
    DrawItem* const own = tree.New<DrawItem>();
    *own = {meshes, 1, nullptr, part};
    part->drawList = MakeDrawList(tree, 1);
    AppendItem(tree, part->drawList, own);
    const auto use = [&](ProductNode* parent, ProductNode* child) {
        parent->occurrences = tree.New<Occurrence*>(kUses);
        parent->occurrenceCount = kUses;
        for (int i = 0; i < kUses; ++i) {
            Occurrence* const occurrence = tree.New<Occurrence>();
            *occurrence = {{0.6, 0.8, 0, -0.8, 0.6, 0, 0, 0, 1}, {1.5 * i, 2, 3}, child, nullptr};
            parent->occurrences[i] = occurrence;
        }
    };
    use(unit, part);
    use(root, unit);
    const auto flatten = [&] {
        Arena arena;
        root->drawList = unit->drawList = nullptr;
        return Seconds([&] {
            if (BuildDrawLists(arena, root, "the tree", nullptr) != 0) { Fail("the tree", "no memory"); }
        });
    };
    const auto write = [&] {
        constexpr std::size_t kItems = std::size_t{kUses} * kUses;
        struct Placed {
            DrawItem item;
            float matrix[16];
        };
        Arena arena;
        return Seconds([&] {
            DrawItem** const items = static_cast<DrawItem**>(arena.Allocate(kItems * sizeof(DrawItem*)));
            for (std::size_t i = 0; i < kItems; ++i) {
                Placed* const placed = static_cast<Placed*>(arena.Allocate(sizeof(Placed)));
                if (placed == nullptr) { Fail("the records", "no memory"); }
                placed->item = {meshes, 1, placed->matrix, part};
                for (float& number : placed->matrix) { number = 1; }
                items[i] = &placed->item;
            }
        });
    };
    RunInTurn("1000000 placed items", turns, {{"writing their records", write}, {"flattening", flatten}});
}

} // namespace tarnwick::bench
