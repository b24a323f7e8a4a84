#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Reads P21 files by the letter of the standard, as programs do that give up a file at its first fault, to
// check what we write.
namespace tarnwick::test {

struct P21Value {
    enum class Kind { kMissing, kDerived, kInteger, kReal, kString, kEnumeration, kReference, kList, kTyped };
    Kind kind = Kind::kMissing;
    std::string_view text;       // as it is written in the file
    std::vector<P21Value> items; // of a list, or the one in a typed value
};

struct P21Record {
    std::string_view keyword;
    std::string_view text; // the arguments without the parentheses around them
    std::vector<P21Value> arguments;
};

// An entity of the data section: one record, or several for a complex one.
struct P21Instance {
    std::vector<P21Record> records;

    bool IsComplex() const { return records.size() > 1; }
    // Of the only record; empty for a complex entity.
    std::string_view Keyword() const { return IsComplex() ? std::string_view() : records[0].keyword; }
};

struct P21File {
    std::shared_ptr<const std::string> text; // which all views point into
    std::vector<P21Record> header;
    std::map<int, P21Instance> entities;
    std::vector<std::string> faults; // what is wrong, with the place of it; empty for a valid file
};

// Reads up to the first fault of syntax. In a text without one it finds doubled numbers, references that lead
// nowhere, header entities out of order, and entities with arguments that their keyword doesn't take.
P21File ReadP21(std::string text);

// The numbers of all references in a value, lists and typed values included.
std::vector<int> ReferencesIn(const P21Value& value);
std::vector<int> ReferencesIn(const std::vector<P21Value>& values);

} // namespace tarnwick::test
