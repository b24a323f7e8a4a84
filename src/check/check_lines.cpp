// The scan takes an entity only at the first character of a line, and its keyword only right after the "=".
// It drops all else in silence.

#include "check/check_file.h"
#include "check/entity_text.h"
#include "p21/keyword_codes.h"
#include "p21/text_walk.h"
#include "text/parse_real.h"

#include <cstring>

namespace tarnwick {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view WithoutBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) { text.remove_prefix(1); }
    return text;
}

// The number of an entity that a text starts with, "#12 =", or 0.
std::int32_t EntityAtStart(std::string_view text) {
    if (text.empty() || text.front() != '#') { return 0; }
    std::size_t i = 1;
    while (i < text.size() && real::IsDigit(text[i])) { ++i; }
    const std::size_t digits = i - 1;
    while (i < text.size() && IsBlank(text[i])) { ++i; }
    return digits > 0 && i < text.size() && text[i] == '=' ? StringToInteger(text.data() + 1) : 0;
}

// Whether a reader looks for the keyword. Other entities are reached by their number alone.
bool IsRead(std::int32_t keywordCode) {
    return keywordCode >= code::kTessellatedShapeRepresentation && keywordCode != code::kTessellatedWire;
}

// How far after the "=" a keyword is looked for.
constexpr std::size_t kLongestGap = 1000;

class LineCheck {
public:
    explicit LineCheck(CheckedFile& file) : file_(file) {}

    // One line of the data section, without its end; false for the line that ends it.
    bool Take(std::string_view line) {
        const std::size_t last = line.find_last_not_of(" \t\r");
        const bool complete = last != std::string_view::npos && line[last] == ';';
        if (last == std::string_view::npos && (line.empty() || line.find_first_not_of('\r') == line.npos)) {
            return true; // an empty line is skipped by the scan
        }
        const bool inComment = NoteComment(line);
        if (!inComment) { CheckRest(line); }
        if (continuing_) {
            if (!inComment) { CheckSwallowed(line); }
        } else if (line.starts_with("ENDSEC")) {
            return false;
        } else if (!inComment) {
            CheckStart(line);
        }
        if (!continuing_) { openerId_ = EntityAtStart(line); }
        continuing_ = !complete;
        return true;
    }

private:
    void Add(FindingKind kind, std::int32_t id, std::string_view place, std::string text) {
        file_.findings.push_back({.kind = kind,
                                  .entity = id,
                                  .offset = OffsetOf(file_.model, place.data()),
                                  .text = std::move(text)});
    }

    // Whether the line is within a comment that started at the beginning of a line.
    bool NoteComment(std::string_view line) {
        const bool started = inComment_;
        if (!inComment_) { inComment_ = WithoutBlanks(line).starts_with("/*"); }
        const bool within = started || inComment_;
        if (line.find("*/") != std::string_view::npos) { inComment_ = false; }
        return within;
    }

    void CheckSwallowed(std::string_view line) {
        const std::int32_t id = EntityAtStart(WithoutBlanks(line));
        if (id == 0) { return; }
        Add(FindingKind::kSwallowed, id, line,
            openerId_ != 0 ? "is taken as the rest of " + Number(openerId_) + ", which doesn't end in \";\""
                           : "is lost, since the line before it doesn't end in \";\"");
    }

    // The start of a line that the scan looks at.
    void CheckStart(std::string_view line) {
        if (line.front() != '#') {
            const std::int32_t id = EntityAtStart(WithoutBlanks(line));
            if (id != 0) { Add(FindingKind::kBlank, id, line, "is lost, since its line is indented"); }
            return;
        }
        const std::size_t equals = line.find('=');
        const std::int32_t id = StringToInteger(line.data() + 1);
        if (equals == std::string_view::npos) {
            Add(FindingKind::kBrokenList, id, line, "is lost: its \"=\" doesn't stand on its first line");
            return;
        }
        if (id < 1) {
            Add(FindingKind::kDamaged, 0, line, "an entity's number is below 1: it is lost");
            return;
        }
        CheckKeyword(line, id, line.substr(equals + 1));
    }

    // The scan skips blanks after the "=", and nothing else.
    void CheckKeyword(std::string_view line, std::int32_t id, std::string_view afterEquals) {
        while (!afterEquals.empty() && afterEquals.front() == ' ') { afterEquals.remove_prefix(1); }
        const char* const end = file_.model.textEnd;
        const std::string_view rest(afterEquals.data(), static_cast<std::size_t>(end - afterEquals.data()));
        const std::string_view keyword = SkipSpace(rest.substr(0, kLongestGap));
        if (keyword.data() != afterEquals.data()) {
            if (keyword.empty() || !IsRead(ClassifyEntity(keyword.data()))) { return; }
            const bool sameLine = keyword.data() < line.data() + line.size();
            Add(sameLine ? FindingKind::kBlank : FindingKind::kBrokenList, id, line,
                sameLine ? "isn't known, since a tab or comment comes after its \"=\""
                         : "isn't known, since its keyword doesn't stand on its first line");
            return;
        }
        for (const std::string_view name : {std::string_view("PRODUCT"), std::string_view("NODE")}) {
            if (!keyword.starts_with(name)) { continue; }
            const std::string_view gap = keyword.substr(name.size());
            if (!gap.empty() && IsBlank(gap.front()) && WithoutBlanks(gap.substr(0, 20)).starts_with("(")) {
                Add(FindingKind::kBlank, id, line,
                    "isn't known, since a blank stands between " + std::string(name) + " and \"(\"");
            }
        }
    }

    // Entities that follow another on its line.
    void CheckRest(std::string_view line) {
        for (std::size_t end = line.find(';'); end != std::string_view::npos; end = line.find(';', end + 1)) {
            const std::int32_t id = EntityAtStart(WithoutBlanks(line.substr(end + 1)));
            if (id != 0) { Add(FindingKind::kOneLine, id, line, "is lost after another entity on its line"); }
        }
    }

    CheckedFile& file_;
    bool continuing_ = false; // the line before didn't end a statement
    bool inComment_ = false;
    std::int32_t openerId_ = 0; // of the entity at the start of the statement; 0 for none
};

} // namespace

void CheckLines(CheckedFile& file) {
    const StepModel& model = file.model;
    const std::string_view text(model.text, static_cast<std::size_t>(model.textEnd - model.text));
    const std::size_t data = text.find("\nDATA;");
    if (data == std::string_view::npos) { return; }
    LineCheck check(file);
    // The scan ends at a NUL.
    const std::string_view content(text.data(), std::strlen(text.data()));
    std::size_t start = content.find('\n', data + 1);
    while (start < content.size()) {
        const std::size_t end = std::min(content.find('\n', start + 1), content.size());
        if (!check.Take(content.substr(start + 1, end - start - 1))) { return; }
        start = end;
    }
}

} // namespace tarnwick
