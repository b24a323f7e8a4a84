#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

// UTF-8 to characters of 32 bits and back. A byte that is not part of valid UTF-8 becomes the code 0xDC00
// plus the byte, and that code the byte again, so that any file name survives the way there and back.
std::u32string WideFromNarrow(std::string_view text);
std::string NarrowFromWide(std::u32string_view text);

} // namespace tarnwick
