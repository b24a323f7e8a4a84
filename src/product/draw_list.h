#pragma once

#include "platform/arena.h"
#include "product/scene_records.h"

namespace tarnwick {

// A list with room for `capacity` items, in the arena. Null when memory runs out.
DrawList* MakeDrawList(Arena& arena, std::int32_t capacity);

// Appends one item: a full list grows to twice its capacity, or to 12 when that is below 10. False when
// memory runs out.
bool AppendItem(Arena& arena, DrawList* list, DrawItem* item);

} // namespace tarnwick
