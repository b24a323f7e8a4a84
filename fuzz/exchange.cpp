// Any ISO 10303-21 text: its instances, their arguments and strings, and what the strict check says of it.
#include "exchange/arguments.h"
#include "exchange/exchange_file.h"
#include "exchange/strict_check.h"
#include "exchange/string_text.h"
#include "harness.h"
#include "padded.h"

using namespace tarnwick;

namespace {

void ExpectInside(std::string_view part, std::string_view whole) {
    if (part.empty()) { return; }
    if (part.data() < whole.data() || part.data() + part.size() > whole.data() + whole.size()) {
        fuzz::Finding("a text outside of the file");
    }
}

// `depth` lists deep, so that the time stays that of the text.
void ReadArguments(std::string_view list, std::string_view whole, int depth) {
    ArgumentCursor cursor(list);
    for (std::string_view argument; cursor.Next(&argument);) {
        ExpectInside(argument, whole);
        StringOf(argument);
        AsUtf8(argument);
        RealOf(argument);
        TripleOf(argument);
        EnumerationOf(argument);
        ReferenceOf(argument);
        const Record typed = RecordOf(argument);
        ExpectInside(typed.arguments, whole);
        if (depth > 0) {
            const bool isList = argument.starts_with('(');
            ReadArguments(isList ? ListOf(argument) : typed.arguments, whole, depth - 1);
        }
    }
}

void ReadInstance(const ExchangeFile& file, const Instance& instance) {
    const std::string_view text = file.TextOf(instance);
    ExpectInside(text, file.Text());
    const Instance* const found = file.Find(instance.number);
    if (found == nullptr || found->number != instance.number || found > &instance) {
        fuzz::Finding("an instance that isn't found by its number");
    }
    for (const Record& record : RecordsOf(text)) {
        ExpectInside(record.keyword, text);
        ReadArguments(record.arguments, text, 2);
    }
    std::vector<std::uint64_t> references;
    AppendReferences(text, &references);
}

void ExpectOrder(const std::vector<Deviation>& deviations, std::string_view text) {
    for (const Deviation& deviation : deviations) {
        if (deviation.offset > text.size()) { fuzz::Finding("a deviation outside of the text"); }
        PlaceOf(text, deviation.offset);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const fuzz::Padded padded(fuzz::Text(data, size));
        const ExchangeFile file(padded.Text());
        std::size_t count = 0;
        for (std::uint32_t keyword = 0; keyword < file.Keywords().size(); ++keyword) {
            for (const std::uint32_t place : file.OfPlace(keyword)) {
                if (file.Instances()[place].keyword != keyword) { fuzz::Finding("a wrong keyword"); }
                ++count;
            }
        }
        if (count != file.Instances().size()) { fuzz::Finding("an instance of no keyword"); }
        for (const Instance& instance : file.Instances()) { ReadInstance(file, instance); }
        ExpectOrder({file.Deviations().begin(), file.Deviations().end()}, file.Text());
        ExpectOrder(CheckStrictly(file.Text(), 100), file.Text());
    });
}
