#include "prepare/structure/documents.h"

#include "exchange/arguments.h"
#include "exchange/string_text.h"
#include "text/look_up.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace tarnwick::prepare {

namespace {

// A name with an ending of a few letters and digits: "wheel.stp", but not "#66" or "1.2 draft".
bool LooksLikeFile(std::string_view name) {
    const std::size_t point = name.rfind('.');
    if (point == std::string_view::npos || point == 0) { return false; }
    const std::string_view ending = name.substr(point + 1);
    const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    return ending.size() >= 1 && ending.size() <= 8 && std::all_of(ending.begin(), ending.end(), isWord) &&
           std::any_of(ending.begin(), ending.end(),
                       [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; });
}

class DocumentNames {
public:
    explicit DocumentNames(const ExchangeFile& file) : file_(file) {
        for (const char* const keyword :
             {"APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT", "EXTERNAL_IDENTIFICATION_ASSIGNMENT"}) {
            for (const std::uint32_t place : file.OfKeyword(keyword)) { Note(file.Instances()[place]); }
        }
    }

    // Thousands of definitions may have one document.
    const std::vector<std::string>& Of(std::uint64_t document) {
        if (const std::vector<std::string>* const known = known_.Find(document)) { return *known; }
        return known_.At(document) = Read(document);
    }

private:
    std::vector<std::string> Read(std::uint64_t document) {
        std::vector<std::string> names;
        const Instance* const instance = file_.Find(document);
        if (instance == nullptr) { return names; }
        std::vector<std::string> strings;
        for (const Record& record : RecordsOf(file_.TextOf(*instance))) {
            if (record.keyword != "DOCUMENT_FILE" && record.keyword != "DOCUMENT") { continue; }
            ArgumentCursor cursor(record.arguments);
            for (std::string_view argument; cursor.Next(&argument);) {
                if (argument.starts_with('\'')) { strings.push_back(StringOf(argument)); }
            }
        }
        const auto add = [&names](std::string name) {
            if (LooksLikeFile(name) && std::find(names.begin(), names.end(), name) == names.end()) {
                names.push_back(std::move(name));
            }
        };
        if (!strings.empty()) { add(strings[0]); }
        if (const std::vector<std::uint64_t>* const assignments = assignments_.Find(document)) {
            for (const std::uint64_t assignment : *assignments) { AddAssigned(assignment, add); }
        }
        for (const std::string& text : strings) { add(text); }
        return names;
    }

    void Note(const Instance& instance) {
        const Arguments arguments(RecordOf(file_.TextOf(instance)).arguments);
        std::vector<std::uint64_t> items;
        AppendReferences(arguments[3], &items);
        for (const std::uint64_t item : items) { assignments_.At(item).push_back(instance.number); }
    }

    // The assigned identification, the source, and both as folder and name.
    template <class Add>
    void AddAssigned(std::uint64_t assignment, const Add& add) const {
        const Arguments arguments(RecordOf(file_.TextOf(*file_.Find(assignment))).arguments);
        const std::string id = StringOf(arguments[0]);
        std::string source;
        if (const Instance* const entity = file_.Find(ReferenceOf(arguments[2]))) {
            // EXTERNAL_SOURCE('a.stp') or EXTERNAL_SOURCE(IDENTIFIER('a.stp')).
            const std::string_view text = RecordOf(file_.TextOf(*entity)).arguments;
            source = StringOf(text.starts_with('\'') ? Arguments(text)[0]
                                                     : Arguments(RecordOf(text).arguments)[0]);
        }
        const bool hasFolder = !source.empty() && source.find_first_not_of(" ./") != std::string::npos;
        if (LooksLikeFile(id) && hasFolder && !LooksLikeFile(source)) { add(source + "/" + id); }
        add(id);
        add(source);
    }

    const ExchangeFile& file_;
    LookUp<std::uint64_t, std::vector<std::uint64_t>> assignments_; // by document
    LookUp<std::uint64_t, std::vector<std::string>> known_;         // names of documents
};

} // namespace

void ForEachDocument(const ExchangeFile& file,
                     const std::function<void(std::uint64_t, const std::vector<std::string>&)>& found) {
    DocumentNames names(file);
    const auto tell = [&](std::uint64_t document, std::string_view items) {
        const std::vector<std::string>& of = names.Of(document);
        if (of.empty()) { return; }
        std::vector<std::uint64_t> described;
        AppendReferences(items, &described);
        for (const std::uint64_t item : described) { found(item, of); }
    };
    for (const char* const keyword : {"APPLIED_DOCUMENT_REFERENCE", "CC_DESIGN_SPECIFICATION_REFERENCE"}) {
        for (const std::uint32_t place : file.OfKeyword(keyword)) {
            const Arguments arguments(RecordOf(file.TextOf(file.Instances()[place])).arguments);
            tell(ReferenceOf(arguments[0]), arguments[2]);
        }
    }
    for (const std::uint32_t place : file.OfKeyword("PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS")) {
        const Instance& instance = file.Instances()[place];
        const Arguments arguments(RecordOf(file.TextOf(instance)).arguments);
        std::vector<std::uint64_t> documents;
        AppendReferences(arguments[4], &documents);
        for (const std::uint64_t document : documents) {
            const std::vector<std::string>& of = names.Of(document);
            if (!of.empty()) { found(instance.number, of); }
        }
    }
}

} // namespace tarnwick::prepare
