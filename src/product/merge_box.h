#pragma once

#include <algorithm>

namespace tarnwick {

// Widens `box` by `other`; sets it to `other` when it holds nothing yet. Both are six limits in the order of
// ProductNode::box.
inline void MergeBox(bool isFirst, const float other[6], float box[6]) {
    if (isFirst) {
        std::copy_n(other, 6, box);
        return;
    }
    for (int low = 0; low < 6; low += 2) {
        box[low] = std::min(box[low], other[low]);
        box[low + 1] = std::max(box[low + 1], other[low + 1]);
    }
}

} // namespace tarnwick
