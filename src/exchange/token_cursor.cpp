#include "exchange/token_cursor.h"

#include "exchange/text_skip.h"

#include <algorithm>

namespace tarnwick {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
bool IsWord(char c) {
    return IsLetter(c) || IsDigit(c) || c == '-';
}

} // namespace

Token TokenCursor::Closed(TokenKind kind, char close) {
    const char* const found = std::find(p_ + 1, end_, close);
    return found < end_ ? Take(kind, found + 1) : Take(TokenKind::kBad, end_);
}

Token TokenCursor::Number() {
    const char* q = p_;
    if (*q == '+' || *q == '-') { ++q; }
    if (q == end_ || !IsDigit(*q)) { return Take(TokenKind::kBad, p_ + 1); }
    q = std::find_if_not(q, end_, IsDigit);
    if (q == end_ || *q != '.') { return Take(TokenKind::kInteger, q); }
    q = std::find_if_not(q + 1, end_, IsDigit);
    if (q < end_ && (*q == 'E' || *q == 'e')) {
        const char* digits = q + 1;
        if (digits < end_ && (*digits == '+' || *digits == '-')) { ++digits; }
        const char* const behind = std::find_if_not(digits, end_, IsDigit);
        if (behind == digits) { return Take(TokenKind::kBad, behind); }
        q = behind;
    }
    return Take(TokenKind::kReal, q);
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
        return Enumeration();
    case '\'': {
        const char* const behind = SkipString(p_, end_);
        const bool isClosed = behind > p_ + 1 && behind[-1] == '\'';
        return Take(isClosed ? TokenKind::kString : TokenKind::kBad, behind);
    }
    case '#':
    case '@': {
        const char* const behind = std::find_if_not(p_ + 1, end_, IsDigit);
        if (behind == p_ + 1) { return Take(TokenKind::kBad, behind); }
        return Take(*p_ == '#' ? TokenKind::kReference : TokenKind::kValue, behind);
    }
    default:
        if (IsLetter(*p_) || *p_ == '!') {
            return Take(TokenKind::kKeyword, std::find_if_not(p_ + 1, end_, IsWord));
        }
        if (IsDigit(*p_) || *p_ == '+' || *p_ == '-') { return Number(); }
        return Take(TokenKind::kBad, p_ + 1);
    }
}

} // namespace tarnwick
