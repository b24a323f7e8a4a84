#pragma once

#include "write/byte_sink.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarnwick {

// Writes JSON piece by piece, without a tree of it in memory: a report may have millions of numbers. The
// caller keeps to the order of the language; commas come by themselves.
class JsonWriter {
public:
    // Keeps the text for Take.
    JsonWriter() : JsonWriter(nullptr) {}
    // The text goes to the sink, which outlives the writer, in blocks; the last of them with Flush.
    explicit JsonWriter(ByteSink* sink);

    void BeginObject() { Begin('{'); }
    void EndObject() { End('}'); }
    void BeginArray() { Begin('['); }
    void EndArray() { End(']'); }
    // The key of the next value. It is printed as it is, so it needs no escapes.
    void Key(std::string_view key);
    // A key from a file, written as Text writes it.
    void TextKey(std::string_view bytes);

    void Null() { Literal("null"); }
    void Integer(std::int64_t number);
    // Reads back to the same f32: 9 significant digits. What is not finite becomes a string.
    void Float(float number);
    // All values of a row, with the commas between them. Numbers are written without a check of the room
    // left.
    void Floats(const float* values, std::size_t count);
    void Integers(const std::int32_t* values, std::size_t count);
    void Integers(const std::uint32_t* values, std::size_t count);
    void Integers(const std::uint8_t* values, std::size_t count);
    // Reads back to the same f64. What is not finite becomes a string.
    void Double(double number);
    // The bytes of a file's string, each as the Latin-1 character that it is.
    void Text(std::string_view bytes);
    void TextOrNull(const char* text);
    // Text that is UTF-8 already.
    void Utf8(std::string_view text);
    void Boolean(bool value) { Literal(value ? "true" : "false"); }
    // CRC-32 of zlib over `bytes` bytes, a string of 8 lower-case hexadecimal digits.
    void Crc(const void* data, std::size_t bytes);

    // The text so far, which the writer gives away.
    std::string Take();
    // Hands the text so far to the sink.
    void Flush();

private:
    void Begin(char bracket);
    void End(char bracket);
    // An ASCII character as it stands in a string.
    void Escaped(char c);
    // The comma in front of a value that isn't the first.
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
