#include "check/entity_text.h"

#include "exchange/text_skip.h"
#include "text/parse_real.h"

#include <array>
#include <limits>

namespace tarnwick {

namespace {

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Where the first entity after `offset` starts: records are in the order of the file.
std::size_t NextEntity(const StepModel& model, std::int32_t offset) {
    std::int32_t low = 0;
    std::int32_t high = model.entityCount;
    while (low < high) {
        const std::int32_t middle = low + (high - low) / 2;
        if (model.EntityAt(middle)->offset <= offset) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low < model.entityCount ? static_cast<std::size_t>(model.EntityAt(low)->offset)
                                   : static_cast<std::size_t>(model.textEnd - model.text);
}

std::int32_t NumberAt(std::string_view text, std::size_t* digits) {
    std::int64_t value = 0;
    std::size_t count = 0;
    for (; count < text.size() && real::IsDigit(text[count]); ++count) {
        if (value <= std::numeric_limits<std::int32_t>::max()) { value = value * 10 + (text[count] - '0'); }
    }
    *digits = count;
    return value > std::numeric_limits<std::int32_t>::max() ? 0 : static_cast<std::int32_t>(value);
}

using CharSet = std::array<bool, 256>;

constexpr CharSet SetOf(std::string_view characters) {
    CharSet set{};
    for (const char c : characters) { set[static_cast<unsigned char>(c)] = true; }
    return set;
}

// What a value goes on with, by its kind.
constexpr std::array<CharSet, 2> kInValue = {SetOf("0123456789.-+Ee"), SetOf("0123456789")};

bool IsPartOfValue(char c, bool starts, ValueKind values) {
    if (starts && values == ValueKind::kReferences) { return c == '#'; }
    return kInValue[static_cast<std::size_t>(values)][static_cast<unsigned char>(c)];
}

// The place after a list of three numbers and nothing else that starts at `p`; null where none does.
const char* AfterTriple(const char* p, const char* end) {
    for (const char mark : {'(', ',', ','}) {
        if (p == end || *p != mark) { return nullptr; }
        const char* const value = ++p;
        while (p < end && kInValue[0][static_cast<unsigned char>(*p)]) { ++p; }
        if (p == value) { return nullptr; }
    }
    return p < end && *p == ')' ? p + 1 : nullptr;
}

} // namespace

std::string_view EntityText(const StepModel& model, const P42Ent* entity) {
    const auto start = static_cast<std::size_t>(entity->offset);
    const std::string_view room(model.text + start, NextEntity(model, entity->offset) - start);
    const char* const end = room.data() + room.size();
    for (const char* p = room.data(); p < end; ++p) {
        p = FindAny<'\'', ';'>(p, end);
        if (p < end && *p == ';') { return room.substr(0, static_cast<std::size_t>(p - room.data())); }
        if (p < end) { p = FindAny<'\''>(p + 1, end); }
    }
    return room;
}

std::string_view KeywordOf(std::string_view entityText) {
    const std::size_t equals = entityText.find('=');
    if (equals == std::string_view::npos) { return {}; }
    const std::string_view keyword = SkipSpace(entityText.substr(equals + 1));
    std::size_t end = 0;
    while (end < keyword.size() && keyword[end] != '(' && !IsSpace(keyword[end])) { ++end; }
    return keyword.substr(0, end);
}

const char* PlaceAfter(std::string_view entityText, int commas, char target) {
    std::size_t place = entityText.find('(');
    for (int i = 0; i < commas && place != std::string_view::npos; ++i) {
        place = entityText.find(',', place + 1);
    }
    if (place != std::string_view::npos) { place = entityText.find(target, place + 1); }
    return place != std::string_view::npos ? entityText.data() + place : nullptr;
}

std::string_view SkipSpace(std::string_view text) {
    for (;;) {
        while (!text.empty() && IsSpace(text.front())) { text.remove_prefix(1); }
        if (!text.starts_with("/*")) { return text; }
        const std::size_t end = text.find("*/", 2);
        if (end == std::string_view::npos) { return text; }
        text.remove_prefix(end + 2);
    }
}

std::vector<std::string_view> ArgumentsOf(std::string_view entityText) {
    std::vector<std::string_view> arguments;
    const std::size_t open = entityText.find('(');
    if (open == std::string_view::npos) { return arguments; }
    const char* const end = entityText.data() + entityText.size();
    const char* start = entityText.data() + open + 1;
    int depth = 0;
    const char* p = start;
    for (; p < end; ++p) {
        p = depth == 0 ? FindAny<'(', ')', '\'', ','>(p, end) : FindAny<'(', ')', '\''>(p, end);
        if (p == end) { break; }
        if (*p == '\'') {
            p = FindAny<'\''>(p + 1, end);
            if (p == end) { break; }
        } else if (*p == '(') {
            ++depth;
        } else if (*p == ')') {
            if (depth-- == 0) { break; }
        } else {
            arguments.emplace_back(start, static_cast<std::size_t>(p - start));
            start = p + 1;
        }
    }
    const std::string_view last(start, static_cast<std::size_t>(p - start));
    if (!arguments.empty() || !Trimmed(last).empty()) { arguments.push_back(last); }
    return arguments;
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsSpace(text.front())) { text.remove_prefix(1); }
    while (!text.empty() && IsSpace(text.back())) { text.remove_suffix(1); }
    return text;
}

std::int32_t IdIn(std::string_view argument) {
    const std::string_view text = Trimmed(argument);
    std::size_t digits = 0;
    return !text.empty() && text.front() == '#' ? NumberAt(text.substr(1), &digits) : 0;
}

bool ReferenceFinder::Next(std::int32_t* id, std::size_t* digits, std::size_t* at) {
    const char* const end = text_.data() + text_.size();
    for (; place_ < text_.size(); ++place_) {
        place_ = static_cast<std::size_t>(FindAny<'\'', '#'>(text_.data() + place_, end) - text_.data());
        if (place_ == text_.size()) { break; }
        if (text_[place_] == '\'') {
            place_ = text_.find('\'', place_ + 1);
            if (place_ == std::string_view::npos) { place_ = text_.size(); }
        } else if (text_[place_] == '#') {
            *id = NumberAt(text_.substr(place_ + 1), digits);
            *at = place_;
            place_ += 1 + *digits;
            std::size_t after = place_;
            while (after < text_.size() && (text_[after] == ' ' || text_[after] == '\t')) { ++after; }
            const bool isEntity = after < text_.size() && text_[after] == '=';
            if (*digits > 0 && !isEntity) { return true; }
            --place_;
        }
    }
    return false;
}

std::vector<std::int32_t> ReferencesIn(std::string_view list) {
    std::vector<std::int32_t> ids;
    ReferenceFinder references(list);
    std::int32_t id = 0;
    std::size_t digits = 0;
    std::size_t at = 0;
    while (references.Next(&id, &digits, &at)) { ids.push_back(id); }
    return ids;
}

ListShape ShapeOf(std::string_view list, ValueKind values) {
    ListShape shape;
    const std::string_view text = Trimmed(list);
    if (text == "$") { return shape; }
    int depth = 0;
    std::int64_t valuesBefore = 0; // those of the inner list count from here
    char before = '\0';            // the last token: "(", ")", ",", or "1" for a value
    bool spaceBefore = false;
    bool hasOuterValue = false; // beside the inner lists, where none may be
    for (const char *p = text.data(), *const end = p + text.size(); p < end; ++p) {
        const char c = *p;
        if (IsSpace(c)) {
            spaceBefore = true;
            if (depth == 1 && shape.inner > 0 && (c == ' ' || c == '\t')) { shape.blankAtEnd = true; }
            continue;
        }
        if (shape.blankAtEnd && depth == 1 && c != ')') {
            shape.blankBetween = true;
            shape.blankAtEnd = false;
        }
        if (c == '(') {
            shape.sound &= before == '(' || before == ',' || before == '\0';
            const bool mayBeTriple = depth == 1 && values == ValueKind::kNumbers;
            if (const char* const after = mayBeTriple ? AfterTriple(p, end) : nullptr; after != nullptr) {
                ++shape.inner;
                shape.values += 3;
                before = ')';
                spaceBefore = false;
                p = after - 1;
                continue;
            }
            if (++depth == 2) {
                ++shape.inner;
                valuesBefore = shape.values;
            }
        } else if (c == ')') {
            shape.sound &= before != ',' && depth > 0;
            if (depth-- == 2 && shape.values - valuesBefore != 3) { shape.triples = false; }
        } else if (c == ',') {
            shape.sound &= (before == '1' || before == ')') && depth > 0;
        } else {
            const bool starts = before != '1' || spaceBefore;
            if (starts) {
                ++shape.values;
                if (depth == 1) { hasOuterValue = true; }
            }
            shape.sound &=
                depth > 0 && before != ')' && IsPartOfValue(c, starts, values) && !(starts && before == '1');
            // The rest of the value changes nothing.
            while (p + 1 < end &&
                   kInValue[static_cast<std::size_t>(values)][static_cast<unsigned char>(p[1])]) {
                ++p;
            }
        }
        before = c == '(' || c == ')' || c == ',' ? c : '1';
        spaceBefore = false;
    }
    shape.sound &= depth == 0 && before == ')' && !(hasOuterValue && shape.inner > 0);
    return shape;
}

std::string_view TextInQuotes(std::string_view argument) {
    const std::string_view text = Trimmed(argument);
    if (text.size() < 2 || text.front() != '\'' || text.back() != '\'') { return {}; }
    return text.substr(1, text.size() - 2);
}

} // namespace tarnwick
