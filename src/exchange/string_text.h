#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnwick {

// What a string argument says, as UTF-8: without its quotes, a doubled quote or backslash as one, and the
// directives of ISO 10303-21 clause 6.4.3 (\X\, \X2\, \X4\, \S\, \P\) as the characters that they stand for;
// half of a UTF-16 pair is U+FFFD. Bytes beyond ASCII are taken as UTF-8 where all of the string is, else as
// ISO 8859-1. Line ends inside are left out. Empty for an argument that is no string.
std::string StringOf(std::string_view argument);

// The same bytes where they are UTF-8, else each as a character of ISO 8859-1.
std::string AsUtf8(std::string_view bytes);

// At most the first `most` bytes of a text in UTF-8, with no character cut in two.
std::string_view ClippedUtf8(std::string_view text, std::size_t most);

} // namespace tarnwick
