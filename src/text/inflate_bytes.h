#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tarnwick {

// Bytes of the one output block for `size` bytes of compressed input: a ratio of 21.25 and a little more. 0
// when that would exceed what 32 bits hold.
std::size_t InflatedRoom(std::uint64_t size);

// Inflates a zlib or gzip stream of `size` bytes into `room` characters at `out`, and says on standard output
// how much came out. A damaged stream, one without its trailer and a full block all end it like a finished
// stream. Returns the characters written; nothing when memory runs out.
// With `isMember` the bytes are a member of an archive after a gzip head of our own: no trailer follows, so
// the checksum that would be compared with it isn't made either.
std::optional<std::size_t> InflateBytes(const unsigned char* data, std::uint32_t size, char* out,
                                        std::size_t room, bool isMember = false);

// The same by zlib alone, which defines the outcome. InflateBytes takes what is faster where the outcome is
// the same.
std::optional<std::size_t> InflateInSteps(const unsigned char* data, std::uint32_t size, char* out,
                                          std::size_t room, bool isMember);

} // namespace tarnwick
