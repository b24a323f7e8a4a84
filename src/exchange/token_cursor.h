#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick {

// The tokens of ISO 10303-21, clauses 5.3 and 6.
enum class TokenKind : std::uint8_t {
    kEnd,
    kOpen,
    kClose,
    kComma,
    kSemicolon,
    kEquals,
    kReference,   // #12
    kValue,       // @12, an instance that is a value
    kInteger,     // -12
    kReal,        // 1.5E-3; also .5, 1E5 and 1.5d-3, see ReadReal
    kString,      // 'text', with its quotes
    kEnumeration, // .T.
    kBinary,      // "0F", with its quotes
    kKeyword,     // also the one of a typed parameter
    kOmitted,     // $
    kDerived,     // *
    kResource,    // <file.stp#anchor>
    kBad          // one character that begins none of these, or a token without its end
};

struct Token {
    TokenKind kind = TokenKind::kEnd;
    std::string_view text;
};

// Goes over a text token by token, blanks and comments apart. 16 bytes after the text must be readable.
class TokenCursor {
public:
    explicit TokenCursor(std::string_view text) : p_(text.data()), end_(p_ + text.size()) {}
    // kEnd after the last.
    Token Next();

private:
    Token Take(TokenKind kind, const char* end) {
        const Token token{kind, {p_, static_cast<std::size_t>(end - p_)}};
        p_ = end;
        return token;
    }
    Token Closed(TokenKind kind, char close);
    Token Number();
    Token Enumeration();

    const char* p_;
    const char* end_;
};

// A keyword in capitals, which some exporters write in small letters.
std::string InCapitals(std::string_view keyword);

} // namespace tarnwick
