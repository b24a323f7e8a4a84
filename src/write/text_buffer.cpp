#include "write/text_buffer.h"

#include "write/real_text.h"

#include <charconv>

namespace tarnwick {

TextBuffer::TextBuffer(ByteSink* sink) : sink_(*sink) {
    text_.reserve(kBlockSize + (1 << 16));
}

void TextBuffer::PutInteger(std::int64_t value) {
    FlushBlock();
    char digits[24];
    text_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void TextBuffer::PutReal(double value) {
    FlushBlock();
    AppendReal(value, &text_);
}

void TextBuffer::Flush() {
    sink_.Write(text_);
    text_.clear();
}

} // namespace tarnwick
