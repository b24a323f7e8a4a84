#include "write/p21_writer.h"

#include "text/wide_text.h"
#include "write/real_text.h"

#include <cmath>

namespace tarnwick {

namespace {

void AppendHex(std::uint32_t code, int digits, std::string* out) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
        *out += "0123456789ABCDEF"[code >> shift & 15];
    }
}

void AppendCharacter(std::uint32_t code, std::string* out) {
    const bool damaged = code >= 0xDC00 && code < 0xE000;
    if (code < 0x20 || damaged) {
        *out += '?';
    } else if (code < 0x7F) {
        if (code == '\'' || code == '\\') { *out += static_cast<char>(code); }
        *out += static_cast<char>(code);
    } else {
        const bool wide = code > 0xFFFF;
        *out += wide ? "\\X4\\" : "\\X2\\";
        AppendHex(code, wide ? 8 : 4, out);
        *out += "\\X0\\";
    }
}

} // namespace

std::string EncodeString(std::string_view utf8) {
    std::string out = "'";
    for (const char32_t character : WideFromNarrow(utf8)) {
        AppendCharacter(static_cast<std::uint32_t>(character), &out);
    }
    return out += '\'';
}

void P21Writer::Header(const P21FileHeader& header) {
    Put(P21Literal{"ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION(("});
    Put(header.description);
    Put(P21Literal{"),'2;1');\nFILE_NAME("});
    Put(header.name);
    Put(P21Literal{",'2024-01-01T00:00:00',(''),(''),"});
    Put(header.program);
    Put(',');
    Put(header.program);
    Put(P21Literal{",'');\nFILE_SCHEMA(("});
    Put(header.schema);
    Put(P21Literal{"));\nENDSEC;\nDATA;\n"});
}

void P21Writer::Footer() {
    Put(P21Literal{"ENDSEC;\nEND-ISO-10303-21;\n"});
    out_.Flush();
}

EntityId P21Writer::Begin(std::string_view keyword) {
    ++last_.number;
    Put(last_);
    Put('=');
    Put(P21Literal{keyword});
    Put('(');
    return last_;
}

EntityId P21Writer::AddComplex(std::string_view records) {
    const EntityId id = Begin("");
    Put(P21Literal{records});
    End();
    return id;
}

void P21Writer::Put(EntityId id) {
    if (id.number == 0) {
        Put('$');
    } else {
        Put('#');
        Put(id.number);
    }
}

// A real of this format always has a point.
void P21Writer::Put(double value) {
    out_.PutReal(value);
    if (RoundReal(value) == std::trunc(RoundReal(value))) { Put('.'); }
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

} // namespace tarnwick
