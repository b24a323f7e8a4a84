#pragma once

#include "product/assembly_reader.h"
#include "product/scene_memory.h"
#include "support/assembly_text.h"
#include "support/capture.h"
#include "support/table_order.h"
#include "support/temp_folder.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

// A tree into which the structure of files is read one after another, as a load does it but for the files
// of parts.
class StructureRun {
public:
    // Reads a text as the top file, or as that of a sub-assembly. Returns what ReadAssemblyStructure did.
    int ReadTop(std::string_view text) { return Read(text, true); }
    int ReadSub(std::string_view text) { return Read(text, false); }

    std::vector<std::string> ProductNames() const { return Names(tree.products); }
    std::vector<std::string> QueueNames() const;
    ProductNode* Product(std::int32_t index) const {
        return tree.products.items[static_cast<std::size_t>(index)];
    }
    // The first product of the tree's list with that name; null when there is none.
    ProductNode* Find(std::string_view name) const;

    ProductTree tree;
    SceneMemory memory;
    std::string console; // of all files so far

private:
    int Read(std::string_view text, bool isTopFile);
    static std::vector<std::string> Names(const ProductArray& products);

    TempFolder folder_;
};

std::vector<std::string> ChildrenOf(const ProductNode& product);

// A file with one occurrence of "leaf" under "top", moved by (1, 2, 3), whose lines can be exchanged one by
// one.
struct Chain {
    Chain();

    std::string Text() const;
    // The text with another line of that number, or without it.
    std::string With(int id, const std::string& entity) const;
    std::string Without(int id) const;

    std::map<int, std::string> lines;

    static constexpr int kTopProduct = 1, kTopFormation = 2, kTop = 3;
    static constexpr int kLeafProduct = 4, kLeafFormation = 5, kLeaf = 6;
    static constexpr int kOrigin = 7, kAxis = 8, kReference = 9, kSource = 10;
    static constexpr int kPlace = 11, kTarget = 12, kTransform = 13;
    static constexpr int kUsage = 14, kShape = 15, kRelationship = 16, kContext = 17;
};

} // namespace tarnwick::test
