#include "support/packed.h"

#include <zlib.h>

#include <cstdlib>

namespace tarnwick::test {

namespace {

std::string Packed(std::string_view bytes, int windowBits) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        std::abort();
    }
    std::string packed(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<unsigned char*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    if (deflate(&stream, Z_FINISH) != Z_STREAM_END) { std::abort(); }
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

} // namespace

std::string ZlibPacked(std::string_view bytes) {
    return Packed(bytes, 15);
}

std::string GzipPacked(std::string_view bytes) {
    return Packed(bytes, 15 + 16);
}

std::string Unpacked(std::string_view packed) {
    z_stream stream{};
    if (inflateInit2(&stream, 15 + 32) != Z_OK) { std::abort(); }
    stream.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    std::string bytes;
    int status = Z_OK;
    while (status == Z_OK) {
        const std::size_t start = bytes.size();
        bytes.resize(2 * start + (1 << 16));
        stream.next_out = reinterpret_cast<unsigned char*>(bytes.data() + start);
        stream.avail_out = static_cast<uInt>(bytes.size() - start);
        status = inflate(&stream, Z_NO_FLUSH);
    }
    if (status != Z_STREAM_END) { std::abort(); }
    bytes.resize(stream.total_out);
    inflateEnd(&stream);
    return bytes;
}

} // namespace tarnwick::test
