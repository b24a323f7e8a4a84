#pragma once

#include <cstddef>
#include <cstdint>

namespace tarnwick {

// The characters that PutFloat and PutInteger may write, some of them after the end of the text.
inline constexpr std::size_t kNumberRoom = 40;

// Writes a finite number as printf does with %.9g, to the last digit, but with ".0" where that has neither a
// point nor an exponent. Returns the end of the text.
char* PutFloat(char* out, float number);

// Returns the end of the text.
char* PutInteger(char* out, std::int64_t number);

} // namespace tarnwick
