#include "report/json_writer.h"
#include "report/number_text.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <utility>

namespace tarnwick {

static_assert(std::endian::native == std::endian::little, "checksums are those of little-endian arrays");

namespace {

std::string_view NotFinite(double value) {
    if (std::isnan(value)) { return "\"nan\""; }
    return value > 0 ? "\"inf\"" : "\"-inf\"";
}

char* PutFloatOrName(char* out, float number) {
    if (std::isfinite(number)) { return PutFloat(out, number); }
    const std::string_view name = NotFinite(static_cast<double>(number));
    return std::copy(name.begin(), name.end(), out);
}

} // namespace

JsonWriter::JsonWriter(ByteSink* sink) : sink_(sink), block_(new char[kBlock]), tip_(block_.get()) {}

void JsonWriter::Flush() {
    const std::string_view text(block_.get(), static_cast<std::size_t>(tip_ - block_.get()));
    if (sink_ != nullptr) {
        sink_->Write(text);
    } else {
        text_ += text;
    }
    tip_ = block_.get();
}

std::string JsonWriter::Take() {
    Flush();
    return std::move(text_);
}

void JsonWriter::MakeRoom(std::size_t bytes) {
    if (static_cast<std::size_t>(block_.get() + kBlock - tip_) < bytes) { Flush(); }
}

void JsonWriter::Append(char c) {
    MakeRoom(1);
    *tip_++ = c;
}

void JsonWriter::Append(std::string_view characters) {
    while (!characters.empty()) {
        const std::string_view head = characters.substr(0, kBlock);
        MakeRoom(head.size());
        tip_ = std::copy(head.begin(), head.end(), tip_);
        characters.remove_prefix(head.size());
    }
}

void JsonWriter::Separate() {
    if (!isFirst_) { Append(','); }
    isFirst_ = false;
}

void JsonWriter::Begin(char bracket) {
    Separate();
    Append(bracket);
    isFirst_ = true;
}

void JsonWriter::End(char bracket) {
    Append(bracket);
    isFirst_ = false;
}

void JsonWriter::Key(std::string_view key) {
    Separate();
    Append('"');
    Append(key);
    Append("\":");
    isFirst_ = true;
}

void JsonWriter::Literal(std::string_view characters) {
    Separate();
    Append(characters);
}

template <class T, class Put>
void JsonWriter::Row(const T* values, std::size_t count, Put put) {
    constexpr std::size_t kAtOnce = 1024;
    static_assert(kAtOnce * (kNumberRoom + 1) < kBlock);
    for (std::size_t first = 0; first < count; first += kAtOnce) {
        const std::size_t here = std::min(count - first, kAtOnce);
        Separate();
        MakeRoom(here * (kNumberRoom + 1));
        char* tip = tip_;
        for (std::size_t i = 0; i < here; ++i) {
            tip = put(tip, values[first + i]);
            *tip++ = ',';
        }
        tip_ = tip - 1; // without the last comma
    }
}

void JsonWriter::Floats(const float* values, std::size_t count) {
    Row(values, count, PutFloatOrName);
}

void JsonWriter::Integers(const std::int32_t* values, std::size_t count) {
    Row(values, count, PutInteger);
}

void JsonWriter::Integers(const std::uint32_t* values, std::size_t count) {
    Row(values, count, PutInteger);
}

void JsonWriter::Integers(const std::uint8_t* values, std::size_t count) {
    Row(values, count, PutInteger);
}

void JsonWriter::Integer(std::int64_t number) {
    Separate();
    MakeRoom(kNumberRoom);
    tip_ = PutInteger(tip_, number);
}

void JsonWriter::Float(float number) {
    Floats(&number, 1);
}

// A number without a point or an exponent would be read as an integer.
void JsonWriter::Double(double number) {
    if (!std::isfinite(number)) { return Literal(NotFinite(number)); }
    char digits[kNumberRoom];
    const auto end = std::to_chars(digits, digits + kNumberRoom, number);
    Literal({digits, end.ptr});
    if (std::none_of(digits, end.ptr, [](char c) { return c == '.' || c == 'e'; })) { Append(".0"); }
}

void JsonWriter::Escaped(char c) {
    constexpr char hex[] = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(c);
    if (code < ' ') {
        Append("\\u00");
        Append(hex[code >> 4]);
        Append(hex[code & 15]);
        return;
    }
    if (c == '"' || c == '\\') { Append('\\'); }
    Append(c);
}

void JsonWriter::Text(std::string_view bytes) {
    Separate();
    Append('"');
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80) {
            Escaped(c);
        } else {
            Append(static_cast<char>(0xC0 | code >> 6));
            Append(static_cast<char>(0x80 | (code & 0x3F)));
        }
    }
    Append('"');
}

void JsonWriter::Utf8(std::string_view text) {
    Separate();
    Append('"');
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x80) {
            Escaped(c);
        } else {
            Append(c);
        }
    }
    Append('"');
}

void JsonWriter::TextKey(std::string_view bytes) {
    Text(bytes);
    Append(':');
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
