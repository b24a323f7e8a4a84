#pragma once

#include "p21/step_model.h"
#include "platform/arena.h"
#include "product/product_tree.h"
#include "text/look_up.h"

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick {

// The working record for the structure of one file, alive during one ReadAssemblyStructure.
struct AssemblyReader {
    StepModel& model;
    ProductTree& tree;                             // its queue: the products of other files
    Arena& arena;                                  // where the records of the tree go
    LookUp<std::int32_t, ProductNode*> productMap; // by the entity number of the definition
    std::vector<ProductNode*> products;            // made while reading this file, in that order
    // Uses read so far, as parent and occurrence: they take effect at the end of the file, so that a file
    // that is given up leaves nothing on the products of other files.
    std::vector<std::pair<ProductNode*, Occurrence*>> uses;
    bool overrun = false;  // a line ran past the end of the text: the file is given up
    bool noMemory = false; // memory ran out for a record: the same
};

inline constexpr int kStructureBreaksOff = 1;
inline constexpr int kStructureNeedsMemory = 2;

// Reads the assembly lines of one file and merges the outcome into the tree: products and occurrences by a
// fixed chain of lines from each CONTEXT_DEPENDENT_SHAPE_REPRESENTATION, files by each
// APPLIED_DOCUMENT_REFERENCE. Products of other files are joined by equal `name`. With `isTopFile` the last
// product that is nobody's child becomes the tree's root. A line that leads nowhere is dropped; a file with a
// line that runs past its end is given up, and adds no product. One thread at a time may run it on a tree.
// Returns 0; kStructureBreaksOff for a file that was given up; kStructureNeedsMemory, told on the console,
// when memory runs out: some of its uses may then be missing.
int ReadAssemblyStructure(ProductTree& tree, StepModel& model, bool isTopFile, Arena& arena);

// Reads an occurrence from its CONTEXT_DEPENDENT_SHAPE_REPRESENTATION into `uses`. 0 when it was read, 1 when
// not; `overrun` or `noMemory` is set if that is why. These hold for the functions below, too.
int ReadOccurrence(AssemblyReader& reader, const P42Ent* entity);

// The `id` of the PRODUCT of a PRODUCT_DEFINITION, in the model's text, and the entity number of the
// formation between them. 1 when a hop leads nowhere, else 0.
int ReadProductName(AssemblyReader& reader, std::int32_t definitionId, std::string_view* name,
                    std::int32_t* formationId);

// The placement of an ITEM_DEFINED_TRANSFORMATION: inverse(A) times B of the frames A (source) and B
// (target), row by row, and the difference of their origins. 1, with the identity, when a hop leads nowhere;
// 1, with the difference but no rotation, when A is singular; else 0.
int ReadTransform(AssemblyReader& reader, std::int32_t transformId, double rotation[9],
                  double translation[3]);

// Reads location, axis and reference direction of an AXIS2_PLACEMENT_3D, three numbers each. 1 when a hop
// leads nowhere, else 0.
int ReadPlacement(AssemblyReader& reader, std::int32_t placementId, double values[9]);

// Gives a product its part file by an APPLIED_DOCUMENT_REFERENCE. 0 when done or when another file has queued
// the product already, 1 when a hop leads nowhere, 2 when the file's name has "...".
int ReadDocumentReference(AssemblyReader& reader, const P42Ent* entity);

// Appends to the occurrences of a product: room for 10 at first, doubled when full. False when memory runs
// out.
bool AddOccurrence(Arena& arena, ProductNode* product, Occurrence* occurrence);

// The product of a definition: known in this file, queued by another under the same name, or made now. Null
// when memory runs out.
ProductNode* IdentifyProduct(AssemblyReader& reader, std::int32_t definitionId, std::string_view name,
                             std::int32_t formationId);

// A new root candidate that only this file knows so far. Null when memory runs out.
ProductNode* MakeProduct(AssemblyReader& reader, std::int32_t definitionId, std::string_view name,
                         std::int32_t formationId);

// The first product of that name that is on the queue, or null.
ProductNode* FindQueued(ProductTree& tree, std::string_view name);

// Puts a product whose file is to be read on the tree's queue.
void PushPartQueue(ProductTree& tree, ProductNode* product);

// Gives the file up, and says so once, when memory for a record runs out. Returns 1.
int NoteNoMemory(AssemblyReader& reader);

// Gives the file up if the walk, in the line of an entity, has run past the end of the text; whether it has.
bool NoteOverrun(AssemblyReader& reader, const TextWalk& walk, std::int32_t entityId);

} // namespace tarnwick
