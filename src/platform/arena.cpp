#include "platform/arena.h"

#include "platform/pages.h"
#include "platform/sanitizers.h"
#include "platform/within_memory.h"

#include <algorithm>
#include <cstring>
#include <utility>

#ifdef TARNWICK_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(start, bytes) (static_cast<void>(start), static_cast<void>(bytes))
#define ASAN_UNPOISON_MEMORY_REGION(start, bytes) (static_cast<void>(start), static_cast<void>(bytes))
#endif

namespace tarnwick {

namespace {

constexpr std::size_t kFirstChunk = std::size_t{64} << 10;
constexpr std::size_t kLargestChunk = std::size_t{32} << 20;

std::size_t RoundUp(std::size_t bytes) {
    return (bytes + 7) & ~std::size_t{7};
}

} // namespace

bool Arena::AddChunk(std::size_t atLeast) {
    // The room to note the chunk comes first: pages that can't be noted would be lost.
    if (chunks_.size() == chunks_.capacity() &&
        !WithinMemory([this] { chunks_.reserve(std::max<std::size_t>(8, 2 * chunks_.size())); })) {
        return false;
    }
    nextChunk_ = std::clamp(nextChunk_ * 2, kFirstChunk, kLargestChunk);
    const std::size_t bytes = std::max(nextChunk_, RoundUp(atLeast));
    // A few lines of a file can fill any memory, if they list the same thing again and again.
    if (bytes >= kLargestChunk && !IsMemoryLeft(bytes)) { return false; }
    char* const start = static_cast<char*>(AllocatePages(bytes));
    if (start == nullptr) { return false; }
    chunks_.push_back({start, bytes});
    next_ = start;
    limit_ = start + bytes;
    ASAN_POISON_MEMORY_REGION(start, bytes);
    return true;
}

void* Arena::Allocate(std::size_t bytes) {
    if (bytes > SIZE_MAX / 4) { return nullptr; }
    const std::size_t rounded = RoundUp(std::max<std::size_t>(bytes, 1));
    if (rounded > static_cast<std::size_t>(limit_ - next_) && !AddChunk(rounded)) { return nullptr; }
    char* const memory = next_;
    next_ += rounded;
    ASAN_UNPOISON_MEMORY_REGION(memory, bytes);
    return memory;
}

char* Arena::Copy(const char* text, std::size_t length) {
    char* const copy = static_cast<char*>(Allocate(length + 1));
    if (copy == nullptr) { return nullptr; }
    if (length > 0) { std::memcpy(copy, text, length); }
    copy[length] = '\0';
    return copy;
}

char* Arena::OpenTip(std::size_t bytes, char** limit) {
    if (bytes > static_cast<std::size_t>(limit_ - next_) && !AddChunk(bytes)) { return nullptr; }
    ASAN_UNPOISON_MEMORY_REGION(next_, static_cast<std::size_t>(limit_ - next_));
    *limit = limit_;
    return next_;
}

char* Arena::GrowTip(char* start, std::size_t used, std::size_t bytes, char** limit) {
    char* const formerNext = next_;
    char* const formerLimit = limit_;
    if (!AddChunk(bytes)) { return nullptr; }
    ASAN_UNPOISON_MEMORY_REGION(next_, static_cast<std::size_t>(limit_ - next_));
    if (used > 0) { std::memcpy(next_, start, used); }
    ASAN_POISON_MEMORY_REGION(formerNext, static_cast<std::size_t>(formerLimit - formerNext));
    *limit = limit_;
    return next_;
}

void Arena::CloseTip(char* start, std::size_t used) {
    if (start == nullptr) { return; }
    next_ = start + RoundUp(used);
    ASAN_POISON_MEMORY_REGION(start + used, static_cast<std::size_t>(limit_ - start) - used);
}

void Arena::FreeChunk(const Chunk& chunk) {
    ASAN_UNPOISON_MEMORY_REGION(chunk.start, chunk.bytes);
    FreePages(chunk.start, chunk.bytes);
}

void Arena::Reset() {
    if (chunks_.empty()) { return; }
    const auto largest = std::max_element(chunks_.begin(), chunks_.end(),
                                          [](const Chunk& a, const Chunk& b) { return a.bytes < b.bytes; });
    std::iter_swap(chunks_.begin(), largest);
    for (std::size_t i = 1; i < chunks_.size(); ++i) { FreeChunk(chunks_[i]); }
    chunks_.resize(1);
    next_ = chunks_[0].start;
    limit_ = next_ + chunks_[0].bytes;
    ASAN_POISON_MEMORY_REGION(next_, chunks_[0].bytes);
}

void Arena::Free() {
    for (const Chunk& chunk : chunks_) { FreeChunk(chunk); }
    chunks_.clear();
    next_ = nullptr;
    limit_ = nullptr;
    nextChunk_ = 0;
}

void Arena::GoBack(const Place& place) {
    for (std::size_t i = place.chunks; i < chunks_.size(); ++i) { FreeChunk(chunks_[i]); }
    chunks_.resize(place.chunks);
    next_ = place.next;
    limit_ = place.limit;
    if (next_ != limit_) { ASAN_POISON_MEMORY_REGION(next_, static_cast<std::size_t>(limit_ - next_)); }
}

bool Arena::TakeOver(Arena* other) {
    if (!WithinMemory([&] { chunks_.reserve(chunks_.size() + other->chunks_.size()); })) { return false; }
    chunks_.insert(chunks_.end(), other->chunks_.begin(), other->chunks_.end());
    other->chunks_.clear();
    other->Free();
    return true;
}

std::size_t Arena::Held() const {
    std::size_t bytes = 0;
    for (const Chunk& chunk : chunks_) { bytes += chunk.bytes; }
    return bytes;
}

void Arena::Swap(Arena& other) noexcept {
    std::swap(chunks_, other.chunks_);
    std::swap(next_, other.next_);
    std::swap(limit_, other.limit_);
    std::swap(nextChunk_, other.nextChunk_);
}

} // namespace tarnwick
