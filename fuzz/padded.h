#pragma once

#include "exchange/file_bytes.h"

#include <cstring>
#include <memory>
#include <string_view>

namespace tarnwick::fuzz {

// A text in a block of exactly its size and the padding, so that a read beyond it is found.
class Padded {
public:
    explicit Padded(std::string_view text)
        : bytes_(new char[text.size() + kBytesPadding]()), size_(text.size()) {
        if (!text.empty()) { std::memcpy(bytes_.get(), text.data(), text.size()); }
    }
    std::string_view Text() const { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
};

} // namespace tarnwick::fuzz
