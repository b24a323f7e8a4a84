#pragma once

#include <new>

namespace tarnwick {

// Does `work`; false when a library, the standard one included, found no memory for it and threw.
template <class Work>
bool WithinMemory(Work work) {
    try {
        work();
    } catch (const std::bad_alloc&) { return false; }
    return true;
}

} // namespace tarnwick
