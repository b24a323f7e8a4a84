#pragma once

#include "write/byte_sink.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarnwick {

// Writes JSON piece by piece, without a tree of it in memory: a report may have millions of numbers. The
// caller keeps to the order of the language; the writer puts the commas.
class JsonWriter {
public:
    // Keeps the text for Take.
    JsonWriter() : JsonWriter(nullptr) {}
    // Hands the text to the sink, which must outlive the writer, in blocks; the last one in Flush.
    explicit JsonWriter(ByteSink* sink);

    void BeginObject() { Begin('{'); }
    void EndObject() { End('}'); }
    void BeginArray() { Begin('['); }
    void EndArray() { End(']'); }
    // The key of the next value. It is printed as it is, so it must not need escapes.
    void Key(std::string_view key);
    // A key from a file, written as Text writes it.
    void TextKey(std::string_view bytes);

    void Null() { Literal("null"); }
    void Integer(std::int64_t number);
    // With 9 significant digits, which read back to the same f32. What isn't finite becomes a string.
    void Float(float number);
    // All `count` values of a row, as Float and Integer write them, but faster.
    void Floats(const float* values, std::size_t count);
    void Integers(const std::int32_t* values, std::size_t count);
    void Integers(const std::uint32_t* values, std::size_t count);
    void Integers(const std::uint8_t* values, std::size_t count);
    // With as many digits as read back to the same f64. What isn't finite becomes a string.
    void Double(double number);
    // The bytes of a file's string, each as the Latin-1 character that it is.
    void Text(std::string_view bytes);
    void TextOrNull(const char* text);
    // Text that is UTF-8 already.
    void Utf8(std::string_view text);
    void Boolean(bool value) { Literal(value ? "true" : "false"); }
    // CRC-32 of zlib over `bytes` bytes, a string of 8 lower-case hexadecimal digits.
    void Crc(const void* data, std::size_t bytes);

    // The text so far, moved out of the writer.
    std::string Take();
    // Hands the text so far to the sink, if there is one.
    void Flush();

private:
    void Begin(char bracket);
    void End(char bracket);
    // An ASCII character within a string.
    void Escaped(char c);
    // The comma before a value that isn't the first.
    void Separate();
    void Literal(std::string_view characters);
    void Append(char c);
    void Append(std::string_view characters);
    // Makes room for `bytes` bytes at tip_, at most kBlock.
    void MakeRoom(std::size_t bytes);
    template <class T, class Put>
    void Row(const T* values, std::size_t count, Put put);

    // A block that stays in the processor's cache until it is handed on.
    static constexpr std::size_t kBlock = std::size_t{1} << 18;

    ByteSink* sink_;
    std::string text_;
    std::unique_ptr<char[]> block_;
    char* tip_;
    bool isFirst_ = true; // of its object or array, or right after its key
};

} // namespace tarnwick
