#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <vector>

namespace tarnwick {

// Memory of many records with one life: allocation bumps a pointer, and everything is freed in one step.
// Nothing in it is ever destroyed or moved, so it holds plain records only. Used by one thread at a time.
class Arena {
public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    Arena(Arena&& other) noexcept { Swap(other); }
    Arena& operator=(Arena&& other) noexcept {
        Swap(other);
        return *this;
    }
    ~Arena() { Free(); }

    // `bytes` of memory with arbitrary content, aligned to 8; null when memory runs out.
    void* Allocate(std::size_t bytes);

    // `count` zero-filled records; null when memory runs out.
    template <class T>
    T* New(std::size_t count = 1);

    // A NUL-terminated copy of `length` characters; null when memory runs out.
    char* Copy(const char* text, std::size_t length);

    // Forgets all records but keeps the largest chunk for the next ones.
    void Reset();

    // Gives all memory back.
    void Free();

    // A mark in the arena, and the way back to it: what was allocated since is forgotten, and chunks added
    // since are given back. In between, don't reset the arena or let it take over another.
    struct Place {
        char* next;
        char* limit;
        std::size_t chunks;
    };
    Place Here() const { return {next_, limit_, chunks_.size()}; }
    void GoBack(const Place& place);

    // Takes over the memory of another arena, which is empty then. False, with both as they were, when there
    // is no memory to note it in.
    bool TakeOver(Arena* other);

    // Bytes of the chunks held.
    std::size_t Held() const;

    // Room at the tip, for an array whose length is known only when it is full. Between OpenTip and CloseTip
    // nothing else may be allocated. OpenTip offers at least `bytes`; GrowTip moves the `used` bytes at
    // `start` to a place with at least `bytes` in all. Both return the start and set *limit after the room;
    // null when memory runs out.
    char* OpenTip(std::size_t bytes, char** limit);
    char* GrowTip(char* start, std::size_t used, std::size_t bytes, char** limit);
    void CloseTip(char* start, std::size_t used);

private:
    struct Chunk {
        char* start;
        std::size_t bytes;
    };

    bool AddChunk(std::size_t atLeast);
    static void FreeChunk(const Chunk& chunk);
    void Swap(Arena& other) noexcept;

    std::vector<Chunk> chunks_;
    char* next_ = nullptr;
    char* limit_ = nullptr;
    std::size_t nextChunk_ = 0;
};

template <class T>
T* Arena::New(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= 8);
    if (count > SIZE_MAX / sizeof(T)) { return nullptr; }
    void* const memory = Allocate(count * sizeof(T));
    if (memory == nullptr) { return nullptr; }
    T* const records = static_cast<T*>(memory);
    for (std::size_t i = 0; i < count; ++i) { ::new (static_cast<void*>(records + i)) T{}; }
    return records;
}

// An array of plain numbers that grows at the tip of an arena and stays where it was filled.
template <class T>
class TipArray {
public:
    // Starts in the room that the arena has left; a count that a file claims is no reason to ask for more.
    explicit TipArray(Arena& arena) : arena_(arena) {
        char* limit = nullptr;
        start_ = reinterpret_cast<T*>(arena.OpenTip(16 * sizeof(T), &limit));
        next_ = start_;
        limit_ = start_ + (limit - reinterpret_cast<char*>(start_)) / static_cast<std::ptrdiff_t>(sizeof(T));
    }
    TipArray(const TipArray&) = delete;
    TipArray& operator=(const TipArray&) = delete;

    // Makes sure that `count` more elements can be appended; false when memory runs out.
    bool Reserve(std::size_t count) {
        return static_cast<std::size_t>(limit_ - next_) >= count || Grow(count);
    }
    // The place of the next element, with room for what Reserve asked for.
    T* Next() { return next_; }
    // How many can be appended there.
    std::size_t Room() const { return static_cast<std::size_t>(limit_ - next_); }
    void Advance(std::size_t count) { next_ += count; }
    std::size_t Count() const { return static_cast<std::size_t>(next_ - start_); }
    T* Data() { return start_; }

    // Ends the filling and returns the array, `Count()` elements, owned by the arena.
    T* Close() {
        arena_.CloseTip(reinterpret_cast<char*>(start_), Count() * sizeof(T));
        return start_;
    }
    // Ends the filling and gives the room back.
    void Drop() { arena_.CloseTip(reinterpret_cast<char*>(start_), 0); }

private:
    [[gnu::noinline]] bool Grow(std::size_t count) {
        const std::size_t used = Count();
        char* limit = nullptr;
        char* const moved = arena_.GrowTip(reinterpret_cast<char*>(start_), used * sizeof(T),
                                           (2 * used + count) * sizeof(T), &limit);
        if (moved == nullptr) { return false; }
        start_ = reinterpret_cast<T*>(moved);
        next_ = start_ + used;
        limit_ = start_ + (limit - moved) / static_cast<std::ptrdiff_t>(sizeof(T));
        return true;
    }

    Arena& arena_;
    T* start_ = nullptr;
    T* next_ = nullptr;
    T* limit_ = nullptr;
};

} // namespace tarnwick
