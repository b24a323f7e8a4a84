#include "prepare/structure/annotations.h"

#include "exchange/arguments.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tarnwick::prepare {

namespace {

bool IsAnnotation(std::string_view keyword) {
    return keyword.find("ANNOTATION") != std::string_view::npos;
}

} // namespace

Annotations::Annotations(const ExchangeFile& file) {
    std::vector<std::uint64_t> open;
    const auto take = [&](const Instance& instance) { AppendReferences(file.TextOf(instance), &open); };
    const auto keywords = file.Keywords();
    for (std::uint32_t keyword = 1; keyword < keywords.size(); ++keyword) {
        if (!IsAnnotation(keywords[keyword])) { continue; }
        for (const std::uint32_t place : file.OfPlace(keyword)) { take(file.Instances()[place]); }
    }
    for (const std::uint32_t place : file.ComplexInstances()) {
        const Instance& instance = file.Instances()[place];
        const std::vector<Record> records = RecordsOf(file.TextOf(instance));
        if (std::any_of(records.begin(), records.end(),
                        [](const Record& r) { return IsAnnotation(r.keyword); })) {
            take(instance);
        }
    }
    // What they refer to, and what hangs under that.
    while (!open.empty()) {
        const std::uint64_t number = open.back();
        open.pop_back();
        const Instance* const instance = file.Find(number);
        if (instance == nullptr) { continue; }
        const std::string_view keyword = file.KeywordOf(*instance);
        const auto has = [keyword](std::string_view word) {
            return keyword.find(word) != std::string_view::npos;
        };
        const bool isItem = keyword.empty() ? FindRecord(file.TextOf(*instance), "TESSELLATED_ITEM").IsFound()
                                            : has("TESSELLATED") || has("TRIANGULATED");
        if (!isItem || has("REPRESENTATION") || !items_.AddNew(number)) { continue; }
        // Faces and sets hold no further items, but lists of a million numbers.
        if (!has("TRIANGULATED")) { take(*instance); }
    }
}

} // namespace tarnwick::prepare
