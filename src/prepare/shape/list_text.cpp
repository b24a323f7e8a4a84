#include "prepare/shape/list_text.h"

#include "exchange/arguments.h"
#include "exchange/text_skip.h"
#include "text/parse_real.h"
#include "write/real_text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace tarnwick::prepare {

namespace {

constexpr double kMostCoordinate = 1e30; // single precision ends a little beyond
constexpr std::size_t kMostDigits = 300; // a longer one is no coordinate

using real::IsDigit;

// A position in a list.
class ListWalk {
public:
    explicit ListWalk(std::string_view list) : p_(list.data()), end_(p_ + list.size()) {}

    // Steps over blanks, and then over the character if it stands there.
    bool Take(char c) {
        if (p_ < end_ && *p_ != c && (IsExchangeBlank(*p_) || *p_ == '/')) { p_ = SkipBlanks(p_, end_); }
        if (p_ == end_ || *p_ != c) { return false; }
        ++p_;
        return true;
    }
    bool IsAtEnd() {
        p_ = SkipBlanks(p_, end_);
        return p_ == end_;
    }
    std::string_view NumberText() {
        if (p_ < end_ && (IsExchangeBlank(*p_) || *p_ == '/')) { p_ = SkipBlanks(p_, end_); }
        const char* const begin = p_;
        while (p_ < end_ && (IsDigit(*p_) || *p_ == '.' || *p_ == '-' || *p_ == '+' || *p_ == 'E' ||
                             *p_ == 'e' || *p_ == 'D' || *p_ == 'd')) {
            ++p_;
        }
        return {begin, static_cast<std::size_t>(p_ - begin)};
    }
    // 0 for what is no number from 1 on that 32 bits hold.
    std::uint32_t Index() {
        if (p_ < end_ && !IsDigit(*p_)) { p_ = SkipBlanks(p_, end_); }
        std::uint64_t value = 0;
        const char* const begin = p_;
        while (p_ < end_ && IsDigit(*p_)) {
            value = value * 10 + static_cast<std::uint64_t>(*p_++ - '0');
            if (value > std::numeric_limits<std::uint32_t>::max()) {
                value = std::numeric_limits<std::uint32_t>::max();
            }
        }
        return p_ == begin ? 0 : static_cast<std::uint32_t>(value);
    }

private:
    const char* p_;
    const char* end_;
};

bool ReadNumber(std::string_view text, double* value) {
    return ReadReal(text, value) && std::abs(*value) < kMostCoordinate;
}

// A number as the viewer's readers take it: a point, and no exponent.
bool CopyNumber(std::string_view text, std::string* out) {
    bool hasPoint = false;
    bool isPlain = true;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size() && isPlain; ++i) {
        const char c = text[i];
        if (IsDigit(c)) {
            ++digits;
        } else if (c == '.' && !hasPoint && digits > 0) {
            hasPoint = true;
        } else {
            isPlain = c == '-' && i == 0;
        }
    }
    if (isPlain) {
        if (digits == 0 || digits > kMostDigits) { return false; }
        out->append(text);
    } else {
        double value = 0;
        if (!ReadNumber(text, &value)) { return false; }
        const std::size_t begin = out->size();
        AppendReal(value, out);
        hasPoint = out->find('.', begin) != std::string::npos;
    }
    if (!hasPoint) { out->push_back('.'); }
    return true;
}

void AppendIndex(std::uint32_t value, std::string* out) {
    char digits[16];
    out->append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

} // namespace

std::size_t CopyTriples(std::string_view list, std::string* out, bool* isWhole) {
    *isWhole = false;
    std::size_t count = 0;
    ListWalk walk(list);
    out->push_back('(');
    if (!walk.Take('(')) {
        out->push_back(')');
        return 0;
    }
    for (;;) {
        if (!walk.Take('(')) {
            *isWhole = count == 0 && walk.Take(')');
            break;
        }
        const std::size_t begin = out->size();
        if (count > 0) { out->push_back(','); }
        out->push_back('(');
        bool isGood = CopyNumber(walk.NumberText(), out);
        for (int i = 0; i < 2 && isGood; ++i) {
            out->push_back(',');
            isGood = walk.Take(',') && CopyNumber(walk.NumberText(), out);
        }
        if (!isGood || !walk.Take(')')) {
            out->resize(begin);
            break;
        }
        out->push_back(')');
        ++count;
        if (walk.Take(',')) { continue; }
        *isWhole = walk.Take(')');
        break;
    }
    out->push_back(')');
    return count;
}

std::vector<Vec3> ReadTriples(std::string_view list, bool* isWhole) {
    *isWhole = false;
    std::vector<Vec3> triples;
    ListWalk walk(list);
    if (!walk.Take('(')) { return triples; }
    for (;;) {
        if (!walk.Take('(')) {
            *isWhole = triples.empty() && walk.Take(')');
            return triples;
        }
        Vec3 v;
        const bool isGood = ReadNumber(walk.NumberText(), &v.x) && walk.Take(',') &&
                            ReadNumber(walk.NumberText(), &v.y) && walk.Take(',') &&
                            ReadNumber(walk.NumberText(), &v.z) && walk.Take(')');
        if (!isGood) { return triples; }
        triples.push_back(v);
        if (walk.Take(',')) { continue; }
        *isWhole = walk.Take(')');
        return triples;
    }
}

std::size_t CopyIndices(std::string_view list, std::size_t most, std::string* out, bool* isWhole) {
    std::size_t count = 0;
    out->push_back('(');
    for (const Index index : ReadIndices(list, isWhole)) {
        if (index == 0 || index > most) {
            *isWhole = false;
            break;
        }
        if (count++ > 0) { out->push_back(','); }
        AppendIndex(index, out);
    }
    out->push_back(')');
    return count;
}

std::vector<Index> ReadIndices(std::string_view list, bool* isWhole) {
    *isWhole = false;
    std::vector<Index> indices;
    ListWalk walk(list);
    if (!walk.Take('(')) { return indices; }
    if (walk.Take(')')) {
        *isWhole = true;
        return indices;
    }
    do {
        const Index index = walk.Index();
        if (index == 0) { return indices; }
        indices.push_back(index);
    } while (walk.Take(','));
    *isWhole = walk.Take(')');
    return indices;
}

std::size_t CopyLists(std::string_view list, ListForm form, std::size_t most, std::string* out,
                      std::size_t* dropped) {
    *dropped = 0;
    std::size_t triangles = 0;
    bool isFirst = true;
    ListWalk walk(list);
    out->push_back('(');
    if (walk.Take('(') && !walk.Take(')')) {
        do {
            if (!walk.Take('(')) {
                ++*dropped;
                break;
            }
            const std::size_t begin = out->size();
            if (!isFirst) { out->push_back(','); }
            char separator = '(';
            std::size_t count = 0;
            bool isGood = true;
            do {
                const std::uint32_t index = walk.Index();
                isGood = isGood && index > 0 && index <= most;
                out->push_back(separator);
                separator = ',';
                AppendIndex(index, out);
                ++count;
            } while (walk.Take(','));
            isGood = walk.Take(')') && isGood && (form == ListForm::kTriangles ? count == 3 : count >= 3);
            if (isGood) {
                out->push_back(')');
                triangles += count - 2;
                isFirst = false;
            } else {
                out->resize(begin);
                ++*dropped;
            }
        } while (walk.Take(','));
    }
    out->push_back(')');
    return triangles;
}

IndexLists ReadLists(std::string_view list) {
    IndexLists lists;
    ListWalk walk(list);
    if (!walk.Take('(')) { return lists; }
    while (walk.Take('(')) {
        do { lists.indices.push_back(walk.Index()); } while (walk.Take(','));
        lists.CloseList();
        if (!walk.Take(')')) { break; }
        if (!walk.Take(',')) { break; }
    }
    return lists;
}

} // namespace tarnwick::prepare
