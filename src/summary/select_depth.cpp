#include "summary/select_depth.h"

#include "product/draw_list.h"

namespace tarnwick {

bool SelectDepth(const StpjFile& file, std::int32_t depth, DrawList* list, Arena& boxMemory) {
    if (depth == 0) {
        const StpjOccurrence& top = *file.occurrences[0];
        return AddBoxItem(boxMemory, list, top.box, ProductOf(file, top), nullptr);
    }
    for (std::int32_t i = 0; i < file.occurrenceCount; ++i) {
        const StpjOccurrence& occurrence = *file.occurrences[i];
        const std::int32_t d = occurrence.depth;
        // A parent whose children are shown.
        if (d < depth && i + 1 < file.occurrenceCount && file.occurrences[i + 1]->depth > d) { continue; }
        if (d <= depth && occurrence.hasBox != 0 &&
            !AddBoxItem(boxMemory, list, occurrence.box, ProductOf(file, occurrence), occurrence.matrix)) {
            return false;
        }
    }
    return true;
}

} // namespace tarnwick
