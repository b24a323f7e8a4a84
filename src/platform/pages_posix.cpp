#include "platform/pages.h"

#include "platform/memory_left.h"

#include <sys/mman.h>

#include <cstdint>

namespace tarnwick {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
// Below this, rounding up to huge pages would cost more memory than the faults it saves.
constexpr std::size_t kHugeBlock = 2 * kHugePage;

void* Map(std::size_t bytes) {
    void* const pages =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

} // namespace

void* AllocatePages(std::size_t bytes) {
    if (bytes < kHugeBlock) { return Map(bytes); }
    // Mapped with room to spare and cut to a multiple of the huge page, or the system could not use one at
    // the start.
    const std::size_t room = bytes + kHugePage;
    if (room < bytes) { return nullptr; }
    char* const base = static_cast<char*>(Map(room));
    if (base == nullptr) { return nullptr; }
    const std::size_t lead = (kHugePage - reinterpret_cast<std::uintptr_t>(base) % kHugePage) % kHugePage;
    char* const pages = base + lead;
    if (lead > 0) { munmap(base, lead); }
    const std::size_t tail = room - lead - bytes;
    const std::size_t page = 4096;
    const std::size_t kept = (bytes + page - 1) / page * page;
    if (tail > kept - bytes) { munmap(pages + kept, tail - (kept - bytes)); }
    madvise(pages, bytes, MADV_HUGEPAGE);
    return pages;
}

bool IsMemoryLeft(std::size_t bytes) {
    return MemoryLeft() > bytes;
}

void FreePages(void* pages, std::size_t bytes) {
    if (pages != nullptr) { munmap(pages, bytes); }
}

} // namespace tarnwick
