#pragma once

#include <new>

namespace tarnwick {

// The reason for a file that memory ran out for; a phrase after its name. An array, so that it has one
// address and can be told from other reasons.
inline constexpr char kNeedsMemory[] = "needs more memory than there is";

// Does `work`; false when a library, the standard one included, found no memory for it and threw.
template <class Work>
bool WithinMemory(Work work) {
    try {
        work();
    } catch (const std::bad_alloc&) { return false; }
    return true;
}

} // namespace tarnwick
