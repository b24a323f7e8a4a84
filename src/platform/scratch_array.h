#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

namespace tarnwick {

// A growable array of plain numbers that its owner empties and fills again and again: new room isn't cleared,
// and emptying keeps the memory. Used by one thread.
template <class T>
class ScratchArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    ScratchArray() = default;
    ScratchArray(const ScratchArray&) = delete;
    ScratchArray& operator=(const ScratchArray&) = delete;
    ~ScratchArray() { std::free(data_); }

    // Makes sure that `count` more elements can be appended; false when memory runs out.
    bool Reserve(std::size_t count) { return capacity_ - count_ >= count || Grow(count); }
    // The place of the next element, with room for what Reserve asked for.
    T* Next() { return data_ + count_; }
    // How many can be appended there.
    std::size_t Room() const { return capacity_ - count_; }
    void Advance(std::size_t count) { count_ += count; }
    void Clear() { count_ = 0; }
    std::size_t Count() const { return count_; }
    const T* Data() const { return data_; }

private:
    [[gnu::noinline]] bool Grow(std::size_t count) {
        if (count > SIZE_MAX / sizeof(T) / 4 - count_) { return false; }
        const std::size_t capacity = 2 * (count_ + count) + 100;
        void* const data = std::realloc(data_, capacity * sizeof(T));
        if (data == nullptr) { return false; }
        data_ = static_cast<T*>(data);
        capacity_ = capacity;
        return true;
    }

    T* data_ = nullptr;
    std::size_t count_ = 0;
    std::size_t capacity_ = 0;
};

} // namespace tarnwick
