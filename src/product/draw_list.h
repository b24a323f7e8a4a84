#pragma once

#include "platform/arena.h"
#include "product/scene_records.h"

#include <cstdint>

// What is drawn is a flat list of placed meshes, made once from the product tree when all files are read.
// Lists and items live in the arena that is handed in, which must outlive them.
namespace tarnwick {

// A list with room for `capacity` items. Null when memory runs out.
DrawList* MakeDrawList(Arena& arena, std::int32_t capacity);

// Appends one item: a full list grows to twice its capacity, or to 12 when that is below 10. False when
// memory runs out.
bool AppendItem(Arena& arena, DrawList* list, DrawItem* item);

// Appends placed copies of `count` items, which share the meshes of the items. `rotation` (nine f64, see
// Occurrence) and `translation` (three) may be null. False when memory runs out.
bool AppendPlacedItems(Arena& arena, DrawList* list, std::int32_t count, DrawItem* const* items,
                       const double* rotation, const double* translation);

// out = a times b; `out` is neither of them.
void MultiplyMatrix(const float a[16], const float b[16], float out[16]);

// Sets the box of a product from those of its children, each placed by its occurrence. A product without
// occurrences, or without a child that has a box, keeps what it has. For a turned occurrence the box differs
// from the drawn position: it only frames the view.
void ComputeProductBox(ProductNode* product);

// Called for each occurrence right before its child's items are placed; see BuildDrawLists.
using PrepareOccurrence = void (*)(Occurrence* occurrence);

// Gives the product and all that it uses a draw list and a box, from the leaves upward; a child that has a
// list already isn't walked again. An occurrence that leads back to a product on the way to it is left out,
// with a line on the console that names `fileName`. A tree that would place more than 2^24 items is given up
// with such a line, before it takes the memory for them. Returns 1 for a null product, for such a tree or
// when memory runs out, else 0. `prepare` may be null.
int BuildDrawLists(Arena& arena, ProductNode* product, const char* fileName, PrepareOccurrence prepare);

// The triangles of all meshes of all items, a mesh counted once for each of its uses; at most 2^31 - 1,
// with a line on the console where there are more.
std::int32_t CountTriangles(const DrawList& list);

// The triangles of a list of boxes, twelve each, limited in the same way.
std::int32_t CountBoxTriangles(const DrawList& boxes);

// Appends the box (six limits in the order of ProductNode.box) as a mesh of 24 vertices and 12 triangles.
// `matrix`, sixteen f32 or null, is copied. False when memory runs out.
bool AddBoxItem(Arena& arena, DrawList* list, const double box[6], ProductNode* product, const float* matrix);

// Empties a list of boxes, which then has no capacity, and frees the arena, which held them and nothing else.
void FreeBoxList(Arena& arena, DrawList* list);

} // namespace tarnwick
