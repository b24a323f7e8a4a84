#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tarnwick {

// Writes JSON piece by piece, without a tree of it in memory: a report may have millions of numbers. The
// caller keeps to the order of the language; commas come by themselves.
class JsonWriter {
public:
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
    std::string Take() { return std::move(text_); }

private:
    void Begin(char bracket);
    void End(char bracket);
    // An ASCII character as it stands in a string.
    void Escaped(char c);
    // The comma in front of a value that isn't the first.
    void Separate();
    void Literal(std::string_view characters);
    void Number(const char* digits, const char* end);

    std::string text_;
    bool isFirst_ = true; // of its object or array, or right after its key
};

} // namespace tarnwick
