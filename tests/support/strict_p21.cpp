#include "support/strict_p21.h"

#include "support/p21_forms.h"

#include <charconv>
#include <optional>
#include <utility>

namespace tarnwick::test {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsUpper(char c) {
    return (c >= 'A' && c <= 'Z') || c == '_';
}

bool IsHex(char c) {
    return IsDigit(c) || (c >= 'A' && c <= 'F');
}

int NumberOf(std::string_view reference) {
    int number = 0;
    std::from_chars(reference.data() + 1, reference.data() + reference.size(), number);
    return number;
}

// The length of the rest of an escape in a string, after its backslash; 0 for what is no escape.
std::size_t EscapeLength(std::string_view text) {
    if (text.starts_with('\\')) { return 1; }
    if (text.size() > 2 && text.starts_with("S\\")) { return 3; }
    if (!text.starts_with("X2\\") && !text.starts_with("X4\\")) { return 0; }
    const std::size_t end = text.find("\\X0\\");
    if (end == text.npos || end == 3 || (end - 3) % (text[1] == '2' ? 4 : 8) != 0) { return 0; }
    for (const char c : text.substr(3, end - 3)) {
        if (!IsHex(c)) { return 0; }
    }
    return end + 4;
}

class Reader {
public:
    explicit Reader(P21File* file) : file_(*file), rest_(*file->text) {}

    void Read() {
        if (!ReadSections()) {
            const std::string_view place = rest_.substr(0, 60);
            file_.faults.push_back("no valid syntax after #" + std::to_string(last_) +
                                   ", at: " + std::string(place));
        }
    }

private:
    bool ReadSections() {
        if (!Take("ISO-10303-21;") || !Take("HEADER;")) { return false; }
        for (std::optional<P21Record> record; !Take("ENDSEC;");) {
            if (!ReadRecord(&record) || !Take(";")) { return false; }
            file_.header.push_back(std::move(*record));
        }
        if (!Take("DATA;")) { return false; }
        while (!Take("ENDSEC;")) {
            if (!ReadInstance()) { return false; }
        }
        return Take("END-ISO-10303-21;") && rest_.find_first_not_of('\n') == rest_.npos;
    }

    bool ReadInstance() {
        std::string_view name;
        P21Instance instance;
        if (!TakeNumber('#', &name)) { return false; }
        last_ = NumberOf(name);
        if (!Take("=")) { return false; }
        std::optional<P21Record> record;
        if (Take("(")) {
            while (!Take(")")) {
                if (!ReadRecord(&record)) { return false; }
                instance.records.push_back(std::move(*record));
            }
        } else {
            if (!ReadRecord(&record)) { return false; }
            instance.records.push_back(std::move(*record));
        }
        if (instance.records.empty() || !Take(";")) { return false; }
        if (!file_.entities.emplace(last_, std::move(instance)).second) {
            file_.faults.push_back("doubled: " + std::string(name));
        }
        return true;
    }

    bool ReadRecord(std::optional<P21Record>* record) {
        P21Record& read = record->emplace();
        read.keyword = TakeKeyword();
        if (read.keyword.empty() || !rest_.starts_with('(')) { return false; }
        P21Value list;
        if (!ReadValue(&list)) { return false; }
        read.text = list.text.substr(1, list.text.size() - 2);
        read.arguments = std::move(list.items);
        return true;
    }

    bool ReadValue(P21Value* value) {
        const std::string_view from = rest_;
        const bool read = ReadAnyValue(value);
        value->text = from.substr(0, from.size() - rest_.size());
        return read;
    }

    bool ReadAnyValue(P21Value* value) {
        if (rest_.empty()) { return false; }
        switch (rest_[0]) {
        case '$':
            value->kind = P21Value::Kind::kMissing;
            return Take("$");
        case '*':
            value->kind = P21Value::Kind::kDerived;
            return Take("*");
        case '\'':
            value->kind = P21Value::Kind::kString;
            return TakeString();
        case '.':
            value->kind = P21Value::Kind::kEnumeration;
            return Take(".") && !TakeKeyword().empty() && Take(".");
        case '#': {
            std::string_view name;
            value->kind = P21Value::Kind::kReference;
            return TakeNumber('#', &name);
        }
        case '(':
            value->kind = P21Value::Kind::kList;
            return ReadList(value);
        default:
            return IsUpper(rest_[0]) ? ReadTyped(value) : ReadNumber(value);
        }
    }

    bool ReadList(P21Value* value) {
        if (!Take("(")) { return false; }
        if (Take(")")) { return true; }
        do {
            if (!ReadValue(&value->items.emplace_back())) { return false; }
        } while (Take(","));
        return Take(")");
    }

    bool ReadTyped(P21Value* value) {
        value->kind = P21Value::Kind::kTyped;
        return !TakeKeyword().empty() && rest_.starts_with('(') && ReadList(value) &&
               value->items.size() == 1;
    }

    // A real has a point with digits before it, also where it has an exponent.
    bool ReadNumber(P21Value* value) {
        value->kind = P21Value::Kind::kInteger;
        if (!Take("-")) { Take("+"); }
        if (!TakeDigits()) { return false; }
        if (!Take(".")) { return true; }
        value->kind = P21Value::Kind::kReal;
        TakeDigits();
        if (!Take("E")) { return true; }
        if (!Take("-")) { Take("+"); }
        return TakeDigits();
    }

    // Strings are of printable ASCII, quotes and backslashes doubled.
    bool TakeString() {
        std::size_t end = 1;
        while (end < rest_.size()) {
            const char c = rest_[end++];
            if (c < ' ' || c > '~') { return false; }
            if (c == '\\') {
                const std::size_t length = EscapeLength(rest_.substr(end));
                if (length == 0) { return false; }
                end += length;
            }
            if (c != '\'') { continue; }
            if (end == rest_.size() || rest_[end] != '\'') {
                rest_.remove_prefix(end);
                return true;
            }
            ++end;
        }
        return false;
    }

    std::string_view TakeKeyword() {
        std::size_t end = 0;
        while (end < rest_.size() && (IsUpper(rest_[end]) || (end > 0 && IsDigit(rest_[end])))) { ++end; }
        const std::string_view keyword = rest_.substr(0, end);
        rest_.remove_prefix(end);
        return keyword;
    }

    bool TakeDigits() {
        std::size_t end = 0;
        while (end < rest_.size() && IsDigit(rest_[end])) { ++end; }
        rest_.remove_prefix(end);
        return end > 0;
    }

    // No number starts with a 0.
    bool TakeNumber(char sign, std::string_view* name) {
        const std::string_view from = rest_;
        if (from.size() < 2 || from[0] != sign || from[1] == '0') { return false; }
        rest_.remove_prefix(1);
        const bool digits = TakeDigits();
        *name = from.substr(0, from.size() - rest_.size());
        return digits;
    }

    // Line ends may precede anything.
    bool Take(std::string_view word) {
        const std::size_t start = rest_.find_first_not_of('\n');
        if (start == rest_.npos || !rest_.substr(start).starts_with(word)) { return false; }
        rest_.remove_prefix(start + word.size());
        const std::size_t end = rest_.find_first_not_of('\n');
        if (end != rest_.npos) { rest_.remove_prefix(end); }
        return true;
    }

    P21File& file_;
    std::string_view rest_;
    int last_ = 0;
};

void CheckHeader(P21File* file) {
    constexpr std::string_view kOrder[] = {"FILE_DESCRIPTION", "FILE_NAME", "FILE_SCHEMA"};
    bool inOrder = file->header.size() == std::size(kOrder);
    for (std::size_t i = 0; inOrder && i < std::size(kOrder); ++i) {
        inOrder = file->header[i].keyword == kOrder[i] && HasItsForm(file->header[i]);
    }
    if (!inOrder) { file->faults.push_back("the header isn't description, name and schema"); }
}

void CheckEntity(int number, const P21Instance& instance, P21File* file) {
    const std::string name = "#" + std::to_string(number);
    for (std::size_t i = 0; i < instance.records.size(); ++i) {
        const P21Record& record = instance.records[i];
        if (!HasItsForm(record)) {
            const std::string arguments(record.text.substr(0, 80));
            file->faults.push_back(name + ": not arguments of " + std::string(record.keyword) + ": " +
                                   arguments);
        }
        if (i > 0 && instance.records[i - 1].keyword >= record.keyword) {
            file->faults.push_back(name + ": its records aren't in the order of the alphabet");
        }
        for (const int reference : ReferencesIn(record.arguments)) {
            if (!file->entities.contains(reference)) {
                file->faults.push_back(name + ": leads to no entity: #" + std::to_string(reference));
            }
        }
    }
}

} // namespace

P21File ReadP21(std::string text) {
    P21File file;
    file.text = std::make_shared<const std::string>(std::move(text));
    Reader(&file).Read();
    if (!file.faults.empty()) { return file; }
    CheckHeader(&file);
    for (const auto& [number, instance] : file.entities) { CheckEntity(number, instance, &file); }
    return file;
}

std::vector<int> ReferencesIn(const P21Value& value) {
    if (value.kind == P21Value::Kind::kReference) { return {NumberOf(value.text)}; }
    return ReferencesIn(value.items);
}

std::vector<int> ReferencesIn(const std::vector<P21Value>& values) {
    std::vector<int> references;
    for (const P21Value& value : values) {
        const std::vector<int> inner = ReferencesIn(value);
        references.insert(references.end(), inner.begin(), inner.end());
    }
    return references;
}

} // namespace tarnwick::test
