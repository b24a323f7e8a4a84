#pragma once

#include <string>
#include <string_view>

namespace tarnwick::test {

// The bytes as a zlib stream, or with a gzip header.
std::string ZlibPacked(std::string_view bytes);
std::string GzipPacked(std::string_view bytes);

// What was packed; the stream must be whole.
std::string Unpacked(std::string_view packed);

} // namespace tarnwick::test
