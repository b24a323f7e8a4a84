#pragma once

#include "write/byte_sink.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick {

// Text on its way to a sink, which gets it in large blocks.
class TextBuffer {
public:
    // The sink must outlive the buffer.
    explicit TextBuffer(ByteSink* sink);

    void Put(char c) { text_.push_back(c); }
    void Put(std::string_view text) {
        text_ += text;
        FlushBlock();
    }
    void PutInteger(std::int64_t value);
    // As AppendReal writes it.
    void PutReal(double value);
    // Hands over what is still here. To be called at the end: the buffer's destructor doesn't.
    void Flush();

private:
    void FlushBlock() {
        if (text_.size() >= kBlockSize) { Flush(); }
    }

    static constexpr std::size_t kBlockSize = 1 << 20;
    ByteSink& sink_;
    std::string text_;
};

} // namespace tarnwick
