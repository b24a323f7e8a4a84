#pragma once

#include "platform/arena.h"

#include <algorithm>
#include <cstdint>

namespace tarnwick {

// Appends to the growable pointer array of a record: capacity 10 at first, doubled as soon as it is full, so
// that there is always a free place after the last entry. The array lives in the arena. False, with the array
// as it was, when memory runs out.
template <class T>
bool AppendPointer(Arena& arena, T*** array, std::int32_t* capacity, std::int32_t* count, T* pointer) {
    if (*capacity == 0) {
        T** const first = arena.New<T*>(10);
        if (first == nullptr) { return false; }
        *array = first;
        *capacity = 10;
    }
    (*array)[(*count)++] = pointer;
    if (*count == *capacity) {
        T** const larger = arena.New<T*>(2 * static_cast<std::size_t>(*capacity));
        if (larger == nullptr) {
            --*count;
            return false;
        }
        std::copy_n(*array, *count, larger);
        *array = larger;
        *capacity *= 2;
    }
    return true;
}

} // namespace tarnwick
