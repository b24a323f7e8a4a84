#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tarnwick {

// Bytes of the one output block for `size` bytes of compressed input: 21.25 times as many, and a few more. 0
// when that would exceed kLargestText.
std::size_t InflatedRoom(std::uint64_t size);

// Inflates a zlib or gzip stream of `size` bytes into `room` characters at `out`, and says on standard output
// how much came out. A damaged stream, a missing trailer and a full block all count as the end of the stream.
// Returns the characters written; nothing when memory runs out.
// With `isMember` the bytes are a member of an archive after a gzip head of our own: no trailer follows, so
// no checksum is computed either.
std::optional<std::size_t> InflateBytes(const unsigned char* data, std::uint32_t size, char* out,
                                        std::size_t room, bool isMember = false);

// The same by zlib alone, which defines the outcome. InflateBytes takes a faster way where the outcome is the
// same.
std::optional<std::size_t> InflateInSteps(const unsigned char* data, std::uint32_t size, char* out,
                                          std::size_t room, bool isMember);

} // namespace tarnwick
