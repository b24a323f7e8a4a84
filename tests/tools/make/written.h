#pragma once

#include "support/strict_p21.h"
#include "write/p21_writer.h"

#include <string>
#include <string_view>
#include <vector>

// Reading back what the sample maker has written.
namespace tarnwick::make {

using test::P21File;
using test::P21Value;
using test::ReferencesIn;

// Fails the test for a text that isn't valid to the letter, and for an entity that has no line to itself.
P21File Parse(std::string text);

// What `write` writes.
template <class Write>
std::string Written(Write write) {
    std::string text;
    StringSink sink(&text);
    P21Writer writer(&sink);
    write(&writer);
    return text;
}

// The numbers of all entities of that keyword, upward.
std::vector<int> IdsOf(const P21File& file, std::string_view keyword);
std::string_view KeywordOf(const P21File& file, int id);
const std::vector<P21Value>& ArgumentsOf(const P21File& file, int id);

// The numbers in a list.
std::vector<double> Numbers(const P21Value& list);
// Those in a list of lists.
std::vector<std::vector<double>> Rows(const P21Value& lists);

} // namespace tarnwick::make
