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

} // namespace tarnwick::test
