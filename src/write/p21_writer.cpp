#include "write/p21_writer.h"

#include "write/real_text.h"

namespace tarnwick::make {

namespace {

// One character of UTF-8 from the front of `text`, which is cut; -1 for a byte that starts none.
std::int32_t TakeCharacter(std::string_view* text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>((*text)[i]); };
    const unsigned lead = byte(0);
    const std::size_t length = lead < 0x80       ? 1
                               : lead >> 5 == 6  ? 2
                               : lead >> 4 == 14 ? 3
                               : lead >> 3 == 30 ? 4
                                                 : 0;
    std::int32_t code =
        length == 1 ? static_cast<std::int32_t>(lead) : static_cast<std::int32_t>(lead & (0x7Fu >> length));
    bool valid = length != 0 && length <= text->size();
    for (std::size_t i = 1; valid && i < length; ++i) {
        valid = (byte(i) & 0xC0) == 0x80;
        code = code << 6 | (byte(i) & 0x3F);
    }
    text->remove_prefix(valid ? length : 1);
    return valid ? code : -1;
}

void PutHex(std::int32_t code, int digits, std::string* out) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
        *out += "0123456789ABCDEF"[code >> shift & 15];
    }
}

} // namespace

std::string EncodeString(std::string_view utf8) {
    std::string out = "'";
    while (!utf8.empty()) {
        const std::int32_t code = TakeCharacter(&utf8);
        if (code == '\'' || code == '\\') { out += static_cast<char>(code); }
        if (code >= 0x20 && code < 0x7F) {
            out += static_cast<char>(code);
        } else if (code < 0x20) { // a damaged byte, or a control character, which the format has no place for
            out += '?';
        } else {
            const bool wide = code > 0xFFFF;
            out += wide ? "\\X4\\" : "\\X2\\";
            PutHex(code, wide ? 8 : 4, &out);
            out += "\\X0\\";
        }
    }
    return out += '\'';
}

void P21Writer::Header(std::string_view description, std::string_view name, std::string_view schema) {
    // The time is a constant: the same options must give the same bytes.
    Put(Literal{"ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION(("});
    Put(description);
    Put(Literal{"),'2;1');\nFILE_NAME("});
    Put(name);
    Put(Literal{",'2024-01-01T00:00:00',(''),(''),'tarnwick-make','tarnwick-make','');\nFILE_SCHEMA(("});
    Put(schema);
    Put(Literal{"));\nENDSEC;\nDATA;\n"});
}

void P21Writer::Footer() {
    Put(Literal{"ENDSEC;\nEND-ISO-10303-21;\n"});
    Flush();
}

Id P21Writer::Begin(std::string_view keyword) {
    ++last_.number;
    Put(last_);
    Put('=');
    Put(Literal{keyword});
    Put('(');
    return last_;
}

void P21Writer::End() {
    Put(Literal{");\n"});
}

Id P21Writer::AddComplex(std::string_view partials) {
    const Id id = Begin("");
    Put(Literal{partials});
    End();
    return id;
}

void P21Writer::Put(Id id) {
    if (id.number == 0) { return Put('$'); }
    Put('#');
    Put(static_cast<std::int64_t>(id.number));
}

void P21Writer::Put(std::int64_t value) {
    if (buffer_.size() >= kBlockSize) { Flush(); }
    char digits[24];
    buffer_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

// A real of this format always has a point.
void P21Writer::Put(double value) {
    if (buffer_.size() >= kBlockSize) { Flush(); }
    const std::size_t start = buffer_.size();
    AppendReal(value, &buffer_);
    if (buffer_.find('.', start) == buffer_.npos) { Put('.'); }
}

void P21Writer::Put(const Vec3& v) {
    Put('(');
    Put(v.x);
    Put(',');
    Put(v.y);
    Put(',');
    Put(v.z);
    Put(')');
}

void P21Writer::Put(std::span<const Id> ids) {
    Put('(');
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (i != 0) { Put(','); }
        Put(ids[i]);
    }
    Put(')');
}

void P21Writer::Flush() {
    sink_.Write(buffer_);
    flushed_ += static_cast<std::int64_t>(buffer_.size());
    buffer_.clear();
}

} // namespace tarnwick::make
