#pragma once

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string_view>

// What takes the compiler long is compiled once, in json.cpp: with a sanitizer a parse and a print are six
// seconds for every test file that has them.
extern template class nlohmann::basic_json<>;

namespace nlohmann {

// For the messages of tests, which find it beside the type.
void PrintTo(const json& value, std::ostream* out);

} // namespace nlohmann

namespace tarnwick::test {

// Discarded (json::is_discarded) where the text is no JSON.
nlohmann::json ParseJson(std::string_view text);

} // namespace tarnwick::test
