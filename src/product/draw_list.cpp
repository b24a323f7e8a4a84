#include "product/draw_list.h"

#include <algorithm>

namespace tarnwick {

DrawList* MakeDrawList(Arena& arena, std::int32_t capacity) {
    DrawList* const list = arena.New<DrawList>();
    DrawItem** const items = arena.New<DrawItem*>(static_cast<std::size_t>(capacity));
    if (list == nullptr || items == nullptr) {
        return nullptr;
    }
    list->items = items;
    list->capacity = capacity;
    return list;
}

bool AppendItem(Arena& arena, DrawList* list, DrawItem* item) {
    if (list->count >= list->capacity) {
        const std::int32_t twice = 2 * list->capacity;
        const std::int32_t capacity = twice < 10 ? 12 : twice;
        DrawItem** const larger = arena.New<DrawItem*>(static_cast<std::size_t>(capacity));
        if (larger == nullptr) {
            return false;
        }
        std::copy_n(list->items, list->count, larger);
        list->items = larger;
        list->capacity = capacity;
    }
    list->items[list->count++] = item;
    return true;
}

} // namespace tarnwick
