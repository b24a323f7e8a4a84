#include "text/inflate_bytes.h"

#include "platform/console.h"
#include "platform/text_block.h"

#include <zlib.h>

#include <algorithm>

namespace tarnwick {

std::size_t InflatedRoom(std::uint64_t size) {
    const std::uint64_t room = (size + size / 16) * 20 + 272384;
    return size > kLargestText || room > kLargestText ? 0 : static_cast<std::size_t>(room);
}

std::optional<std::size_t> InflateBytes(const unsigned char* data, std::uint32_t size, char* out,
                                        std::size_t room, bool isMember) {
    constexpr std::uint32_t kStep = 0x40000;
    constexpr int kDetectHeader = 47; // zlib's largest window, and either header
    z_stream stream{};
    if (inflateInit2(&stream, kDetectHeader) != Z_OK) { return std::nullopt; }
    if (isMember) { inflateValidate(&stream, 0); }
    stream.next_in = const_cast<unsigned char*>(data);
    stream.next_out = reinterpret_cast<unsigned char*>(out);
    std::uint32_t left = size;
    unsigned steps = 0;
    int result;
    do {
        const uLong before = stream.total_in;
        stream.avail_out = static_cast<uInt>(std::min<std::size_t>(room - stream.total_out, kStep));
        stream.avail_in = std::min(left, kStep);
        result = inflate(&stream, Z_SYNC_FLUSH);
        ++steps;
        left -= static_cast<std::uint32_t>(stream.total_in - before);
    } while (result == Z_OK);
    const std::size_t total = stream.total_out;
    inflateEnd(&stream);
    if (result == Z_MEM_ERROR) { return std::nullopt; }
    OutputPrint("total uncompress size = %u, in %u step\n", static_cast<unsigned>(total), steps);
    return total;
}

} // namespace tarnwick
