#include "check/line_breaks.h"

#include "text/parse_real.h"

namespace tarnwick {

namespace {

void Note(LineBreak* found, BreakKind kind, const char* place, std::int64_t triplesBefore = 0) {
    if (kind < found->kind || kind == BreakKind::kNone) { return; }
    if (kind > found->kind) { *found = {kind, place, 0, triplesBefore}; }
    ++found->count;
}

// Calls found(place, depth, before) for each line feed of a list, where `before` is the last character before
// it that is no blank or line end.
template <class Found>
void ForEachBreak(std::string_view list, Found found) {
    if (list.find('\n') == std::string_view::npos) { return; }
    int depth = 0;
    char before = '\0';
    for (const char& c : list) {
        if (c == '\n') {
            if (!found(&c, depth, before)) { return; }
        } else if (c != ' ' && c != '\t' && c != '\r') {
            if (c == '(') { ++depth; }
            if (c == ')') { --depth; }
            before = c;
        }
    }
}

// Whether the number that follows, in a list or not, is 0 anyway.
bool IsZeroAfter(std::string_view text) {
    const std::size_t next = text.find_first_not_of(" \t\r\n(");
    return next != std::string_view::npos && ParseReal(text.data() + next) == 0;
}

bool IsBlankUpToClose(std::string_view text) {
    const std::size_t next = text.find_first_not_of(" \t\r\n");
    return next == std::string_view::npos || text[next] == ')';
}

} // namespace

LineBreak BreakInTriples(std::string_view list, bool isReal, bool isLast) {
    LineBreak found;
    std::int64_t triples = 0;
    const char* counted = list.data();
    ForEachBreak(list, [&](const char* place, int depth, char before) {
        for (; counted < place; ++counted) { triples += *counted == ')' ? 1 : 0; }
        const auto rest = list.substr(static_cast<std::size_t>(place - list.data()));
        if (depth == 2) {
            // Blanks before a number are passed over, and before a whole number line ends too.
            if (isReal && before != '(' && before != ',') { return true; }
            if (isReal && !IsZeroAfter(rest)) { Note(&found, BreakKind::kNumber, place); }
            return true;
        }
        if (before == '(') {
            if (!isReal || !IsZeroAfter(rest)) { Note(&found, BreakKind::kNumber, place); }
            return true;
        }
        if (isLast && IsBlankUpToClose(rest)) { return true; }
        Note(&found, isLast ? BreakKind::kEnd : BreakKind::kWalk, place, triples);
        return false;
    });
    return found;
}

LineBreak BreakInNumbers(std::string_view list) {
    LineBreak found;
    const bool isEmpty = list.starts_with('(') && IsBlankUpToClose(list.substr(1));
    ForEachBreak(list, [&](const char* place, int, char) {
        if (isEmpty || place[-1] == ',') { Note(&found, BreakKind::kWalk, place); }
        return true;
    });
    return found;
}

LineBreak BreakInStrips(std::string_view list, bool isLast) {
    LineBreak found;
    ForEachBreak(list, [&](const char* place, int depth, char) {
        const auto rest = list.substr(static_cast<std::size_t>(place - list.data()));
        // After the very last one a blank is taken for a number, and that is all.
        if (isLast && depth == 1 && place[-1] != ')' && IsBlankUpToClose(rest)) { return true; }
        if (depth == 1 || place[-1] == ',') { Note(&found, BreakKind::kWalk, place); }
        return true;
    });
    return found;
}

LineBreak BreakBetween(std::string_view between, Between kind) {
    LineBreak found;
    for (const char& c : between) {
        if (c != '\n') { continue; }
        const std::size_t place = static_cast<std::size_t>(&c - between.data());
        const std::size_t comma = between.find(',');
        // After the comma a carriage return is passed over, and with it what follows up to a "(".
        const std::size_t next = between.find_first_not_of(' ', comma + 1);
        const bool isPassed = kind == Between::kBeforeTriangles && comma < place &&
                              next != std::string_view::npos && between[next] == '\r';
        // The step from a number passes over its neighbour.
        const bool isStepped = kind == Between::kAfterNumber && place == 0;
        if (!isPassed && !isStepped) { Note(&found, BreakKind::kWalk, &c); }
    }
    return found;
}

} // namespace tarnwick
