#include "platform/text_block.h"

#include "platform/pages.h"
#include "platform/sanitizers.h"

#include <cstdlib>

namespace tarnwick {

#ifdef TARNWICK_ADDRESS_SANITIZER

// Under AddressSanitizer each text gets a heap block of exactly its size, so that a read past it is found.
char* TextBlock::Get(std::size_t bytes) {
    Release();
    capacity_ = bytes + kPadding;
    block_ = static_cast<char*>(std::malloc(capacity_));
    return block_;
}

void TextBlock::Release() {
    std::free(block_);
    block_ = nullptr;
    capacity_ = 0;
}

#else

char* TextBlock::Get(std::size_t bytes) {
    const std::size_t wanted = bytes + kPadding;
    if (wanted <= capacity_) { return block_; }
    Release();
    // A quarter more than asked, so that files of slowly growing size do not each ask for fresh pages.
    const std::size_t capacity = wanted + wanted / 4;
    block_ = static_cast<char*>(AllocatePages(capacity));
    capacity_ = block_ != nullptr ? capacity : 0;
    return block_;
}

void TextBlock::Release() {
    FreePages(block_, capacity_);
    block_ = nullptr;
    capacity_ = 0;
}

#endif

} // namespace tarnwick
