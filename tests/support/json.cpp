#include "support/json.h"

#include <ostream>

template class nlohmann::basic_json<>;

namespace nlohmann {

void PrintTo(const json& value, std::ostream* out) {
    *out << value.dump(-1, ' ', false, json::error_handler_t::replace);
}

} // namespace nlohmann

namespace tarnwick::test {

nlohmann::json ParseJson(std::string_view text) {
    return nlohmann::json::parse(text, nullptr, false);
}

} // namespace tarnwick::test
