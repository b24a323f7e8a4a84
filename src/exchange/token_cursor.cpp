#include "exchange/token_cursor.h"

#include "exchange/text_skip.h"
#include "text/parse_real.h"

#include <algorithm>

namespace tarnwick {

namespace {

using real::IsDigit;

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
bool IsWord(char c) {
    return IsLetter(c) || IsDigit(c) || c == '-';
}
bool IsExponentLetter(char c) {
    return c == 'E' || c == 'e' || c == 'D' || c == 'd';
}

} // namespace

Token TokenCursor::Closed(TokenKind kind, char close) {
    const char* const found = std::find(p_ + 1, end_, close);
    return found < end_ ? Take(kind, found + 1) : Take(TokenKind::kBad, end_);
}

Token TokenCursor::Number() {
    const char* const digits = p_ + (*p_ == '+' || *p_ == '-');
    const char* q = std::find_if_not(digits, end_, IsDigit);
    bool hasDigits = q > digits;
    const bool hasPoint = q < end_ && *q == '.';
    if (hasPoint) {
        const char* const fraction = q + 1;
        q = std::find_if_not(fraction, end_, IsDigit);
        hasDigits = hasDigits || q > fraction;
    }
    if (!hasDigits) { return Take(TokenKind::kBad, p_ + 1); }
    if (q == end_ || !IsExponentLetter(*q)) {
        return Take(hasPoint ? TokenKind::kReal : TokenKind::kInteger, q);
    }
    const char* exponent = q + 1;
    if (exponent < end_ && (*exponent == '+' || *exponent == '-')) { ++exponent; }
    const char* const after = std::find_if_not(exponent, end_, IsDigit);
    return Take(after > exponent ? TokenKind::kReal : TokenKind::kBad, after);
}

Token TokenCursor::Enumeration() {
    const char* const q = std::find_if_not(p_ + 1, end_, IsWord);
    return q > p_ + 1 && q < end_ && *q == '.' ? Take(TokenKind::kEnumeration, q + 1)
                                               : Take(TokenKind::kBad, p_ + 1);
}

Token TokenCursor::Next() {
    p_ = SkipBlanks(p_, end_);
    if (p_ == end_) { return {TokenKind::kEnd, {end_, 0}}; }
    switch (*p_) {
    case '(':
        return Take(TokenKind::kOpen, p_ + 1);
    case ')':
        return Take(TokenKind::kClose, p_ + 1);
    case ',':
        return Take(TokenKind::kComma, p_ + 1);
    case ';':
        return Take(TokenKind::kSemicolon, p_ + 1);
    case '=':
        return Take(TokenKind::kEquals, p_ + 1);
    case '$':
        return Take(TokenKind::kOmitted, p_ + 1);
    case '*':
        return Take(TokenKind::kDerived, p_ + 1);
    case '"':
        return Closed(TokenKind::kBinary, '"');
    case '<':
        return Closed(TokenKind::kResource, '>');
    case '.':
        return p_ + 1 < end_ && IsDigit(p_[1]) ? Number() : Enumeration();
    case '\'': {
        const char* const after = SkipString(p_, end_);
        const bool isClosed = after > p_ + 1 && after[-1] == '\'';
        return Take(isClosed ? TokenKind::kString : TokenKind::kBad, after);
    }
    case '#':
    case '@': {
        const char* const after = std::find_if_not(p_ + 1, end_, IsDigit);
        if (after == p_ + 1) { return Take(TokenKind::kBad, after); }
        return Take(*p_ == '#' ? TokenKind::kReference : TokenKind::kValue, after);
    }
    default:
        if (IsLetter(*p_) || *p_ == '!') {
            return Take(TokenKind::kKeyword, std::find_if_not(p_ + 1, end_, IsWord));
        }
        if (IsDigit(*p_) || *p_ == '+' || *p_ == '-') { return Number(); }
        return Take(TokenKind::kBad, p_ + 1);
    }
}

std::string InCapitals(std::string_view keyword) {
    std::string capitals(keyword);
    for (char& c : capitals) { c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
    return capitals;
}

} // namespace tarnwick
