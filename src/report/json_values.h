#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace tarnwick {

// A number that reads back to the same f32: 9 significant digits. What is not finite becomes a string.
nlohmann::ordered_json JsonFloat(float value);

// A number that reads back to the same f64. What is not finite becomes a string.
nlohmann::ordered_json JsonDouble(double value);

// The bytes of a file's string, each as the Latin-1 character that it is.
std::string JsonText(std::string_view bytes);

// CRC-32 of zlib over `bytes` bytes as 8 lower-case hexadecimal digits.
std::string Crc(const void* data, std::size_t bytes);

} // namespace tarnwick
