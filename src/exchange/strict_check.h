#pragma once

#include "exchange/exchange_file.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace tarnwick {

// Where a text deviates from the grammar of ISO 10303-21: sections and their order, the records of the
// header, numbers, the form of every token, commas and parentheses, strings and their directives, and
// references to numbers that no instance has. At most `most` of them, in the order of the text; those of
// references come last. Linear in the text. 16 bytes after it must be readable.
std::vector<Deviation> CheckStrictly(std::string_view text, std::size_t most);

} // namespace tarnwick
