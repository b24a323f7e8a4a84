#include "exchange/strict_check.h"

#include "exchange/arguments.h"
#include "exchange/token_cursor.h"
#include "text/look_up.h"
#include "text/parse_real.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace tarnwick {

namespace {

using real::IsDigit;

bool IsHex(char c) {
    return IsDigit(c) || (c >= 'A' && c <= 'F');
}

// What is wrong with the form of a real; null for nothing.
const char* RealFault(std::string_view text) {
    const std::size_t letter = text.find_first_of("EeDd");
    if (letter != std::string_view::npos && text[letter] == 'e') { return "an exponent has a small e"; }
    if (letter != std::string_view::npos && text[letter] != 'E') {
        return "an exponent has another letter than E";
    }
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) { return "a real has no point"; }
    return point == 0 || !IsDigit(text[point - 1]) ? "a real has no digit before its point" : nullptr;
}

// What is wrong with the inside of a string; null for nothing.
const char* StringFault(std::string_view text) {
    text = text.substr(1, text.size() - 2);
    while (!text.empty()) {
        const auto c = static_cast<unsigned char>(text[0]);
        if (c >= 0x80) {
            // Edition 3 allows UTF-8.
        } else if (c < ' ') {
            if (c != '\n' && c != '\r') { return "a string has a control character"; }
        } else if (c == '\'') {
            text.remove_prefix(1);
        } else if (c == '\\') {
            const auto hexDigits = [&](std::size_t from) {
                return static_cast<std::size_t>(
                           std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                            IsHex) -
                           text.begin()) -
                       from;
            };
            std::size_t length = 0;
            if (text.starts_with("\\\\")) {
                length = 2;
            } else if (text.starts_with("\\S\\") && text.size() > 3) {
                length = 4;
            } else if (text.size() > 3 && text[1] == 'P' && text[2] >= 'A' && text[2] <= 'I' &&
                       text[3] == '\\') {
                length = 4;
            } else if (text.starts_with("\\X\\") && hexDigits(3) >= 2) {
                length = 5;
            } else if (text.starts_with("\\X2\\") || text.starts_with("\\X4\\")) {
                const std::size_t digits = hexDigits(4);
                const std::size_t each = text[2] == '2' ? 4 : 8;
                if (digits > 0 && digits % each == 0 && text.substr(4 + digits).starts_with("\\X0\\")) {
                    length = digits + 8;
                }
            }
            if (length == 0) { return "a string has a backslash that begins no directive"; }
            text.remove_prefix(length);
            continue;
        }
        text.remove_prefix(1);
    }
    return nullptr;
}

bool HasSmallLetter(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

class StrictReader {
public:
    StrictReader(std::string_view text, std::size_t most) : text_(text), most_(most), cursor_(text) {}

    std::vector<Deviation> Run() {
        if (!text_.starts_with("ISO-10303-21;")) { Note(text_, "the file doesn't begin with ISO-10303-21;"); }
        Advance();
        if (IsKeyword("ISO-10303-21")) { Advance(), Expect(TokenKind::kSemicolon, "a ; is missing"); }
        Header();
        while (TakeSection("ANCHOR") || TakeSection("REFERENCE")) { SkipSection(); }
        if (!IsKeyword("DATA")) { Note(token_.text, "a DATA section is missing"); }
        while (TakeDataSection()) { Instances(); }
        if (IsKeyword("END-ISO-10303-21")) {
            Advance(), Expect(TokenKind::kSemicolon, "a ; is missing");
        } else {
            Note(token_.text, "END-ISO-10303-21; is missing");
        }
        while (TakeSection("SIGNATURE")) { SkipSection(); }
        if (!Is(TokenKind::kEnd)) { Note(token_.text, "there is something after the end of the file"); }
        CheckReferences();
        return std::move(deviations_);
    }

private:
    static constexpr int kMostDepth = 64;

    bool IsFull() const { return deviations_.size() >= most_; }
    void Note(std::string_view where, std::string what) {
        if (!IsFull()) {
            deviations_.push_back(
                {static_cast<std::size_t>(where.data() - text_.data()), std::move(what), false});
        }
    }
    void Advance() { token_ = cursor_.Next(); }
    bool Is(TokenKind kind) const { return token_.kind == kind; }
    bool IsKeyword(std::string_view keyword) const {
        return Is(TokenKind::kKeyword) && token_.text == keyword;
    }
    bool Take(TokenKind kind) {
        if (!Is(kind)) { return false; }
        Advance();
        return true;
    }
    bool Expect(TokenKind kind, const char* otherwise) {
        if (Take(kind)) { return true; }
        Note(token_.text, otherwise);
        return false;
    }
    // Past the next ";".
    void Recover() {
        while (!Is(TokenKind::kSemicolon) && !Is(TokenKind::kEnd)) { Advance(); }
        Take(TokenKind::kSemicolon);
    }

    bool TakeSection(std::string_view keyword) {
        if (!IsKeyword(keyword)) { return false; }
        Advance();
        Expect(TokenKind::kSemicolon, "a ; is missing after the name of a section");
        return true;
    }
    bool TakeDataSection() {
        if (!IsKeyword("DATA")) { return false; }
        Advance();
        if (Is(TokenKind::kOpen)) { Parameters(); }
        Expect(TokenKind::kSemicolon, "a ; is missing after DATA");
        return true;
    }
    void SkipSection() {
        while (!IsKeyword("ENDSEC") && !Is(TokenKind::kEnd)) {
            // A section of references gives numbers to what other files hold.
            if (Is(TokenKind::kReference)) { numbers_.AddNew(ReferenceOf(token_.text)); }
            Advance();
        }
        EndSection();
    }
    void EndSection() {
        if (!IsKeyword("ENDSEC")) {
            Note(token_.text, "ENDSEC; is missing");
            return;
        }
        Advance();
        Expect(TokenKind::kSemicolon, "a ; is missing after ENDSEC");
    }

    void Header() {
        if (!TakeSection("HEADER")) {
            Note(token_.text, "the HEADER section is missing");
            return;
        }
        constexpr std::array<std::string_view, 3> kFirst{"FILE_DESCRIPTION", "FILE_NAME", "FILE_SCHEMA"};
        for (const std::string_view keyword : kFirst) {
            if (!IsKeyword(keyword)) {
                Note(token_.text, std::string(keyword) + " is missing from the header or out of its order");
            } else {
                HeaderRecord();
            }
        }
        while (Is(TokenKind::kKeyword) && token_.text != "ENDSEC") { HeaderRecord(); }
        EndSection();
    }
    void HeaderRecord() {
        if (!SimpleRecord() || !Expect(TokenKind::kSemicolon, "a ; is missing in the header")) { Recover(); }
    }

    void Instances() {
        while (!IsKeyword("ENDSEC") && !Is(TokenKind::kEnd) && !IsFull()) {
            if (!Instance()) { Recover(); }
        }
        EndSection();
    }

    bool Instance() {
        if (!Is(TokenKind::kReference)) {
            Note(token_.text, "an instance begins with # and a number");
            return false;
        }
        const std::uint64_t number = ReferenceOf(token_.text);
        if (number == 0) { Note(token_.text, "the number of an instance is from 1 on"); }
        if (!numbers_.AddNew(number)) {
            Note(token_.text, "the number " + std::string(token_.text) + " stands twice");
        }
        Advance();
        if (!Expect(TokenKind::kEquals, "a = is missing")) { return false; }
        if (Take(TokenKind::kOpen)) {
            while (Is(TokenKind::kKeyword)) {
                if (!SimpleRecord()) { return false; }
            }
            if (!Expect(TokenKind::kClose, "a complex instance isn't closed")) { return false; }
        } else if (!SimpleRecord()) {
            return false;
        }
        return Expect(TokenKind::kSemicolon, "a ; is missing");
    }

    bool SimpleRecord() {
        if (!Is(TokenKind::kKeyword)) {
            Note(token_.text, "a keyword is missing");
            return false;
        }
        CheckKeyword();
        Advance();
        return Parameters();
    }
    void CheckKeyword() {
        if (HasSmallLetter(token_.text)) { Note(token_.text, "a keyword has small letters"); }
    }

    // "(...)", to any depth that a file can have.
    bool Parameters() {
        if (!Expect(TokenKind::kOpen, "a ( is missing")) { return false; }
        int depth = 1;
        if (Take(TokenKind::kClose)) { return true; }
        for (;;) { // here a parameter begins
            if (Is(TokenKind::kKeyword)) {
                CheckKeyword();
                Advance();
                if (!Is(TokenKind::kOpen)) {
                    Note(token_.text, "a typed parameter needs a (");
                    return false;
                }
            }
            if (Take(TokenKind::kOpen)) {
                if (++depth > kMostDepth) {
                    Note(token_.text, "lists are nested too deeply");
                    return false;
                }
                if (!Is(TokenKind::kClose)) { continue; }
            } else if (!Value()) {
                return false;
            }
            while (Take(TokenKind::kClose)) {
                if (--depth == 0) { return true; }
            }
            if (!Expect(TokenKind::kComma, "a , or a ) is missing")) { return false; }
        }
    }

    bool Value() {
        switch (token_.kind) {
        case TokenKind::kReference:
            references_.push_back(token_.text);
            break;
        case TokenKind::kReal:
            if (const char* const fault = RealFault(token_.text)) { Note(token_.text, fault); }
            break;
        case TokenKind::kString:
            if (const char* const fault = StringFault(token_.text)) { Note(token_.text, fault); }
            break;
        case TokenKind::kEnumeration:
            if (HasSmallLetter(token_.text)) { Note(token_.text, "an enumeration value has small letters"); }
            break;
        case TokenKind::kBinary:
            if (token_.text.size() < 3 || token_.text[1] < '0' || token_.text[1] > '3' ||
                !std::all_of(token_.text.begin() + 1, token_.text.end() - 1, IsHex)) {
                Note(token_.text, "a binary value has other than hexadecimal digits");
            }
            break;
        case TokenKind::kInteger:
        case TokenKind::kValue:
        case TokenKind::kOmitted:
        case TokenKind::kDerived:
        case TokenKind::kResource:
            break;
        default:
            Note(token_.text, "a parameter is missing or isn't one");
            return false;
        }
        Advance();
        return true;
    }

    void CheckReferences() {
        for (const std::string_view reference : references_) {
            if (IsFull()) { return; }
            if (!numbers_.Contains(ReferenceOf(reference))) {
                Note(reference, std::string(reference) + " leads to no instance");
            }
        }
    }

    const std::string_view text_;
    const std::size_t most_;
    TokenCursor cursor_;
    Token token_;
    std::vector<Deviation> deviations_;
    LookUp<std::uint64_t, char> numbers_;
    std::vector<std::string_view> references_;
};

} // namespace

std::vector<Deviation> CheckStrictly(std::string_view text, std::size_t most) {
    return StrictReader(text, most).Run();
}

} // namespace tarnwick
