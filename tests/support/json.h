#pragma once

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string_view>

// The compiler takes long for a parse and a print, with a sanitizer six seconds in each test file, so
// json.cpp compiles them once.
extern template class nlohmann::basic_json<>;

namespace nlohmann {

// For the messages of tests, which find it beside the type.
void PrintTo(const json& value, std::ostream* out);

} // namespace nlohmann

namespace tarnwick::test {

// Discarded (json::is_discarded) where the text is no JSON.
nlohmann::json ParseJson(std::string_view text);

} // namespace tarnwick::test
