#include "report/json_writer.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

namespace tarnwick {

static_assert(std::endian::native == std::endian::little, "checksums are those of little-endian arrays");

namespace {

constexpr int kFloatDigits = 9;
constexpr std::size_t kNumberRoom = 64;

std::string_view NotFinite(double value) {
    if (std::isnan(value)) { return "\"nan\""; }
    return value > 0 ? "\"inf\"" : "\"-inf\"";
}

} // namespace

void JsonWriter::Separate() {
    if (!isFirst_) { text_ += ','; }
    isFirst_ = false;
}

void JsonWriter::Begin(char bracket) {
    Separate();
    text_ += bracket;
    isFirst_ = true;
}

void JsonWriter::End(char bracket) {
    text_ += bracket;
    isFirst_ = false;
}

void JsonWriter::Key(std::string_view key) {
    Separate();
    text_ += '"';
    text_ += key;
    text_ += "\":";
    isFirst_ = true;
}

void JsonWriter::Literal(std::string_view characters) {
    Separate();
    text_ += characters;
}

void JsonWriter::Integer(std::int64_t number) {
    char digits[kNumberRoom];
    const auto end = std::to_chars(digits, digits + kNumberRoom, number);
    Literal({digits, end.ptr});
}

// A number without a point or an exponent would be read as an integer.
void JsonWriter::Number(const char* digits, const char* end) {
    Literal({digits, end});
    if (std::none_of(digits, end, [](char c) { return c == '.' || c == 'e'; })) { text_ += ".0"; }
}

void JsonWriter::Float(float number) {
    const double wide = static_cast<double>(number);
    if (!std::isfinite(number)) { return Literal(NotFinite(wide)); }
    char digits[kNumberRoom];
    const auto end =
        std::to_chars(digits, digits + kNumberRoom, wide, std::chars_format::general, kFloatDigits);
    Number(digits, end.ptr);
}

void JsonWriter::Double(double number) {
    if (!std::isfinite(number)) { return Literal(NotFinite(number)); }
    char digits[kNumberRoom];
    const auto end = std::to_chars(digits, digits + kNumberRoom, number);
    Number(digits, end.ptr);
}

void JsonWriter::Escaped(char c) {
    constexpr char hex[] = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(c);
    if (code < ' ') {
        text_ += "\\u00";
        text_ += hex[code >> 4];
        text_ += hex[code & 15];
        return;
    }
    if (c == '"' || c == '\\') { text_ += '\\'; }
    text_ += c;
}

void JsonWriter::Text(std::string_view bytes) {
    Separate();
    text_ += '"';
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80) {
            Escaped(c);
        } else {
            text_ += static_cast<char>(0xC0 | code >> 6);
            text_ += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    text_ += '"';
}

void JsonWriter::Utf8(std::string_view text) {
    Separate();
    text_ += '"';
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x80) {
            Escaped(c);
        } else {
            text_ += c;
        }
    }
    text_ += '"';
}

void JsonWriter::TextKey(std::string_view bytes) {
    Text(bytes);
    text_ += ':';
    isFirst_ = true;
}

void JsonWriter::TextOrNull(const char* text) {
    if (text != nullptr) {
        Text(text);
    } else {
        Null();
    }
}

void JsonWriter::Crc(const void* data, std::size_t bytes) {
    uLong crc = crc32(0, nullptr, 0);
    if (bytes > 0) { crc = crc32_z(crc, static_cast<const unsigned char*>(data), bytes); }
    char digits[8];
    for (int i = 0; i < 8; ++i) { digits[i] = "0123456789abcdef"[crc >> (28 - 4 * i) & 15]; }
    Text({digits, 8});
}

} // namespace tarnwick
