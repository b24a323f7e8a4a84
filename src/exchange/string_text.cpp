#include "exchange/string_text.h"

#include "exchange/pages_8859.h"

#include <charconv>
#include <cstdint>

namespace tarnwick {

namespace {

void AppendUtf8(std::uint32_t c, std::string* out) {
    const auto put = [out](std::uint32_t byte) { out->push_back(static_cast<char>(byte)); };
    if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) { c = 0xFFFD; }
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

// How many bytes the UTF-8 character at the start of the text has; 0 when there is none.
std::size_t Utf8Length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length == 0 || length > text.size()) { return 0; }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) { return 0; }
    }
    if (length == 3 && ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F))) { return 0; }
    if (length == 4 && ((first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F))) { return 0; }
    return length;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = Utf8Length(text);
        if (length == 0) { return false; }
        text.remove_prefix(length);
    }
    return true;
}

// A character of one of the pages of ISO 8859, which \P names by a letter from A for 8859-1 on.
void AppendOfPage(char page, unsigned char c, std::string* out) {
    if (page == 'A') { return AppendUtf8(c, out); }
    const std::uint32_t there = c >= 0xA0 ? kPages8859[page - 'B'][c - 0xA0] : c;
    AppendUtf8(there != 0 ? there : c, out);
}

// Reads the directives of one string.
class StringReader {
public:
    StringReader(std::string_view text, std::string* out) : text_(text), out_(*out) {}

    void Run() {
        const bool isUtf8 = IsUtf8(text_);
        while (!text_.empty()) {
            const char c = text_[0];
            if (c == '\'' && text_.starts_with("''")) {
                out_.push_back('\'');
                text_.remove_prefix(2);
            } else if (c == '\\') {
                Directive();
            } else {
                if (!isUtf8 && static_cast<unsigned char>(c) >= 0x80) {
                    AppendUtf8(static_cast<unsigned char>(c), &out_);
                } else if (c != '\n' && c != '\r') {
                    out_.push_back(c);
                }
                text_.remove_prefix(1);
            }
        }
    }

private:
    void Directive() {
        if (text_.starts_with("\\\\")) {
            out_.push_back('\\');
            text_.remove_prefix(2);
        } else if (text_.starts_with("\\X2\\")) {
            Characters(4);
        } else if (text_.starts_with("\\X4\\")) {
            Characters(8);
        } else if (std::uint32_t c = 0; text_.starts_with("\\X\\") && Hex(text_.substr(3), 2, &c)) {
            AppendUtf8(c, &out_);
            text_.remove_prefix(5);
        } else if (text_.starts_with("\\S\\") && text_.size() > 3) {
            AppendOfPage(page_, static_cast<unsigned char>(text_[3] | 0x80), &out_);
            text_.remove_prefix(4);
        } else if (text_.size() > 3 && text_[1] == 'P' && text_[3] == '\\' && text_[2] >= 'A' &&
                   text_[2] <= 'I') {
            page_ = text_[2];
            text_.remove_prefix(4);
        } else {
            out_.push_back('\\');
            text_.remove_prefix(1);
        }
    }

    static bool Hex(std::string_view text, std::size_t digits, std::uint32_t* value) {
        if (text.size() < digits) { return false; }
        const char* const end = text.data() + digits;
        return std::from_chars(text.data(), end, *value, 16).ptr == end;
    }

    // \X2\00E400F6\X0\ and \X4\, up to what is no such character.
    void Characters(std::size_t digits) {
        text_.remove_prefix(4);
        std::uint32_t high = 0; // of a pair that UTF-16 makes of a character beyond 16 bits
        for (std::uint32_t c = 0; Hex(text_, digits, &c); text_.remove_prefix(digits)) {
            if (high != 0 && c >= 0xDC00 && c < 0xE000) {
                c = 0x10000 + ((high - 0xD800) << 10) + (c - 0xDC00);
            } else if (high != 0) {
                AppendUtf8(high, &out_); // without its other half: U+FFFD
            }
            high = digits == 4 && c >= 0xD800 && c < 0xDC00 ? c : 0;
            if (high == 0) { AppendUtf8(c, &out_); }
        }
        if (high != 0) { AppendUtf8(high, &out_); }
        if (text_.starts_with("\\X0\\")) { text_.remove_prefix(4); }
    }

    std::string_view text_;
    std::string& out_;
    char page_ = 'A';
};

} // namespace

std::string StringOf(std::string_view argument) {
    std::string result;
    if (argument.size() < 2 || argument.front() != '\'') { return result; }
    argument.remove_prefix(1);
    if (argument.ends_with('\'')) { argument.remove_suffix(1); }
    StringReader(argument, &result).Run();
    return result;
}

std::string AsUtf8(std::string_view bytes) {
    if (IsUtf8(bytes)) { return std::string(bytes); }
    std::string result;
    for (const char c : bytes) { AppendUtf8(static_cast<unsigned char>(c), &result); }
    return result;
}

std::string_view ClippedUtf8(std::string_view text, std::size_t most) {
    if (text.size() <= most) { return text; }
    while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) { --most; }
    return text.substr(0, most);
}

} // namespace tarnwick
