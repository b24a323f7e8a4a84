#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

// UTF-8 to wide text and back. A byte that is not part of valid UTF-8 becomes the code 0xDC00 plus the byte,
// and that code the byte again, so that any file name survives the way there and back.
std::wstring WideFromNarrow(std::string_view text);
std::string NarrowFromWide(std::wstring_view text);

} // namespace tarnwick
