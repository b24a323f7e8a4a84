#include "exchange/arguments.h"

#include "exchange/text_skip.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace tarnwick {

namespace {

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsWord(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '!' || c == '-';
}

// Whether a keyword of a text is this one, which is in capitals; some exporters write small letters.
bool IsKeyword(std::string_view text, std::string_view capitals) {
    return std::equal(text.begin(), text.end(), capitals.begin(), capitals.end(),
                      [](char a, char b) { return a == b || (a >= 'a' && a <= 'z' && a - 'a' + 'A' == b); });
}

std::string_view Between(const char* begin, const char* end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

// The record at *p, which moves after it.
Record TakeRecord(const char** p, const char* end) {
    const char* const begin = SkipBlanks(*p, end);
    const char* q = std::find_if_not(begin, end, IsWord);
    const std::string_view keyword = Between(begin, q);
    q = SkipBlanks(q, end);
    if (keyword.empty() || q == end || *q != '(') {
        *p = end;
        return {};
    }
    const char* const after = SkipList(q + 1, end);
    *p = after;
    const bool isClosed = after > q + 1 && after[-1] == ')';
    return {keyword, Between(q + 1, isClosed ? after - 1 : after)};
}

// What a typed parameter holds, or the argument itself.
std::string_view Untyped(std::string_view argument) {
    if (argument.empty() || !IsLetter(argument[0])) { return argument; }
    ArgumentCursor cursor(RecordOf(argument).arguments);
    std::string_view value;
    return cursor.Next(&value) ? value : std::string_view{};
}

} // namespace

Record RecordOf(std::string_view text) {
    const char* p = text.data();
    return TakeRecord(&p, p + text.size());
}

std::vector<Record> RecordsOf(std::string_view text) {
    std::vector<Record> records;
    const char* p = text.data();
    const char* const end = p + text.size();
    if (p < end && *p == '(') { ++p; }
    for (;;) {
        const Record record = TakeRecord(&p, end);
        if (!record.IsFound()) { return records; }
        records.push_back(record);
    }
}

Record FindRecord(std::string_view text, std::string_view keyword) {
    const char* p = text.data();
    const char* const end = p + text.size();
    if (p < end && *p == '(') { ++p; }
    for (;;) {
        const Record record = TakeRecord(&p, end);
        if (!record.IsFound() || IsKeyword(record.keyword, keyword)) { return record; }
    }
}

ArgumentCursor::ArgumentCursor(std::string_view list) : p_(list.data()), end_(list.data() + list.size()) {}

bool ArgumentCursor::Next(std::string_view* argument) {
    p_ = SkipBlanks(p_, end_);
    if (p_ == end_ && !isAfterComma_) { return false; }
    const char* const begin = p_;
    const char* last = begin; // right after the argument's last character
    while (p_ < end_ && *p_ != ',') {
        switch (*p_) {
        case '(':
            p_ = SkipList(p_ + 1, end_);
            break;
        case '\'':
            p_ = SkipString(p_, end_);
            break;
        case '"': {
            const char* const close = std::find(p_ + 1, end_, '"');
            p_ = close < end_ ? close + 1 : end_;
            break;
        }
        default:
            do {
                ++p_;
            } while (p_ < end_ && *p_ != ',' && *p_ != '(' && *p_ != '\'' && *p_ != '"' && *p_ != '/' &&
                     !IsExchangeBlank(*p_));
        }
        last = p_;
        p_ = SkipBlanks(p_, end_);
    }
    *argument = Between(begin, last);
    isAfterComma_ = p_ < end_;
    if (isAfterComma_) { ++p_; }
    return true;
}

Arguments::Arguments(std::string_view list) {
    ArgumentCursor cursor(list);
    arguments_.reserve(8);
    for (std::string_view argument; cursor.Next(&argument);) { arguments_.push_back(argument); }
}

std::string_view ListOf(std::string_view argument) {
    if (!argument.starts_with('(')) { return {}; }
    argument.remove_prefix(1);
    if (argument.ends_with(')')) { argument.remove_suffix(1); }
    return argument;
}

std::uint64_t ReferenceOf(std::string_view argument) {
    std::uint64_t number = 0;
    if (!argument.starts_with('#')) { return 0; }
    const char* const end = argument.data() + argument.size();
    const auto [after, error] = std::from_chars(argument.data() + 1, end, number);
    return error == std::errc() && after == end ? number : 0;
}

void AppendReferences(std::string_view text, std::vector<std::uint64_t>* references) {
    const char* p = text.data();
    const char* const end = p + text.size();
    while ((p = FindAny<'#', '\'', '/', '"'>(p, end)) < end) {
        if (*p == '\'') {
            p = SkipString(p, end);
            continue;
        }
        if (*p == '"') {
            p = std::find(p + 1, end, '"');
            p += p < end ? 1 : 0;
            continue;
        }
        if (*p == '/') {
            const char* const after = SkipBlanks(p, end);
            p = after == p ? p + 1 : after;
            continue;
        }
        std::uint64_t number = 0;
        p = std::from_chars(p + 1, end, number).ptr;
        if (number != 0) { references->push_back(number); }
    }
}

bool ReadReal(std::string_view text, double* value) {
    if (text.starts_with('+')) { text.remove_prefix(1); } // from_chars takes none
    const char* const end = text.data() + text.size();
    double read = 0;
    auto [after, error] = std::from_chars(text.data(), end, read);
    if (error != std::errc()) { return false; }
    if (after < end && (*after == 'D' || *after == 'd')) {
        std::string copy(text);
        copy[static_cast<std::size_t>(after - text.data())] = 'E';
        return ReadReal(copy, value);
    }
    // from_chars takes "inf" and "nan" as well.
    if (after != end || !std::isfinite(read)) { return false; }
    *value = read;
    return true;
}

std::optional<double> RealOf(std::string_view argument) {
    double value = 0;
    return ReadReal(Untyped(argument), &value) ? std::optional(value) : std::nullopt;
}

std::optional<std::array<double, 3>> TripleOf(std::string_view argument) {
    std::array<double, 3> triple{};
    std::size_t count = 0;
    ArgumentCursor cursor(ListOf(argument));
    for (std::string_view text; count < 3 && cursor.Next(&text); ++count) {
        const std::optional<double> value = RealOf(text);
        if (!value) { return std::nullopt; }
        triple[count] = *value;
    }
    if (count < 2) { return std::nullopt; }
    return triple;
}

std::string_view EnumerationOf(std::string_view argument) {
    if (argument.size() < 2 || argument.front() != '.' || argument.back() != '.') { return {}; }
    return argument.substr(1, argument.size() - 2);
}

} // namespace tarnwick
