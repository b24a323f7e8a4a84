#include "platform/pages.h"

#include "platform/memory_left.h"

#include <windows.h>

namespace tarnwick {

void* AllocatePages(std::size_t bytes) {
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

bool IsMemoryLeft(std::size_t bytes) {
    return MemoryLeft() > bytes;
}

void FreePages(void* pages, std::size_t) {
    if (pages != nullptr) { VirtualFree(pages, 0, MEM_RELEASE); }
}

} // namespace tarnwick
