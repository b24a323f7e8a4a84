#include "p21/text_walk.h"

#include "platform/fail_fast.h"
#include "text/parse_real.h"

#include <cstring>
#include <limits>

namespace tarnwick {

void TextWalk::GoTo(char c) {
    const char* const nearEnd = NearEnd(at);
    const void* found = std::memchr(at, c, static_cast<std::size_t>(nearEnd - at));
    if (found == nullptr && nearEnd < end) { found = far->Find(nearEnd, c); }
    at = found != nullptr ? static_cast<const char*>(found) : end;
    if (at == end) { overrun = true; }
}

const char* TextWalk::NextFar(std::initializer_list<char> wanted, const char* from) const {
    const char* next = end;
    for (const char c : wanted) {
        const char* const found = far->Find(from, c);
        if (found != nullptr && found < next) { next = found; }
    }
    return next;
}

void TextWalk::SkipFar(bool lineFeeds) {
    if (far == nullptr) {
        while (*at == ' ' || (lineFeeds && *at == '\n')) { ++at; }
        return;
    }
    const char* const found = far->FindOther(at, lineFeeds);
    at = found != nullptr ? found : end;
}

void TextWalk::GoToArgumentComma() {
    const char* const nearEnd = NearEnd(at);
    std::int64_t depth = 0;
    for (; at < nearEnd; ++at) {
        if (*at == '(') {
            ++depth;
        } else if (*at == ')') {
            --depth;
        } else if (*at == ',' && depth <= 0) {
            return;
        }
    }
    const char* const found = nearEnd < end ? far->FindComma(nearEnd, depth) : nullptr;
    at = found != nullptr ? found : end;
    overrun = overrun || found == nullptr;
}

std::int32_t StringToInteger(const char* p) {
    while (*p == ' ' || (*p >= '\t' && *p <= '\r')) { ++p; }
    const bool negative = *p == '-';
    if (negative || *p == '+') { ++p; }
    constexpr std::int64_t kLimit = std::int64_t{1} << 31;
    std::int64_t value = 0;
    for (; real::IsDigit(*p); ++p) {
        value = value * 10 + (*p - '0');
        if (value > kLimit) { value = kLimit; }
    }
    if (negative) { return static_cast<std::int32_t>(-value); }
    return value == kLimit ? std::numeric_limits<std::int32_t>::max() : static_cast<std::int32_t>(value);
}

std::int32_t ReadDigits(TextWalk* walk) {
    const char* const start = walk->at;
    std::int64_t value = 0;
    for (; real::IsDigit(*walk->at); ++walk->at) {
        if (static_cast<std::size_t>(walk->at - start) == kDigitRoom - 1) { FailFast(); }
        value = value * 10 + (*walk->at - '0');
    }
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value > kMost ? kMost : value);
}

std::int32_t ReadReference(TextWalk* walk) {
    walk->GoTo('#');
    walk->Step();
    return ReadDigits(walk);
}

void ReadReals(TextWalk* walk, double* values, int count) {
    for (int i = 0; i < count; ++i) {
        if (i > 0) { walk->PassCommas(1); }
        values[i] = ParseReal(walk->at);
    }
}

std::string_view ReadQuoted(TextWalk* walk, std::size_t limit) {
    const char* const start = walk->at;
    walk->GoTo('\'');
    const std::size_t length = static_cast<std::size_t>(walk->at - start);
    if (!walk->overrun && length >= limit) { FailFast(); }
    return {start, length};
}

std::string_view ReadFirstString(TextWalk* walk, std::size_t limit) {
    walk->GoToFirstString();
    return ReadQuoted(walk, limit);
}

void ParseIdList(TextWalk* walk, std::vector<std::int32_t>* ids) {
    walk->Enter();
    walk->SkipBlanks();
    if (walk->Current() == ')') { return; }
    const char* p = walk->at;
    const char* const end = walk->end;
    for (;;) {
        if (p >= end) { break; }
        // The usual form, "#12," or "#12)": the digits lead to the delimiter.
        const char* next = p + 1;
        std::int64_t id = 0;
        while (real::IsDigit(*next) && next - p < 10) { id = id * 10 + (*next++ - '0'); }
        if ((*next == ',' || *next == ')') && next > p + 1) {
            ids->push_back(static_cast<std::int32_t>(id));
        } else {
            ids->push_back(StringToInteger(p + 1));
            next = walk->Next<',', ')'>(p + 1);
            if (next == end) { break; }
        }
        if (*next == ')') {
            walk->at = p;
            return;
        }
        p = next + 1;
        if (*p != '#') { p = walk->Next<'#', ')', '\n', '\0'>(p); }
        if (*p == ')') {
            walk->at = p;
            return;
        }
    }
    walk->at = end;
    walk->overrun = true;
}

} // namespace tarnwick
