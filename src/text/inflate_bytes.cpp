#include "text/inflate_bytes.h"

#include "platform/console.h"
#include "platform/text_block.h"

#include <zlib.h>

#ifdef TARNWICK_HAS_LIBDEFLATE
#include <libdeflate.h>
#endif

#include <algorithm>
#include <memory>

namespace tarnwick {

namespace {

constexpr std::uint32_t kStep = 0x40000; // of input, and of output, in one call of zlib

void SayInflated(std::size_t total, unsigned steps) {
    OutputPrint("total uncompress size = %u, in %u step\n", static_cast<unsigned>(total), steps);
}

#ifdef TARNWICK_HAS_LIBDEFLATE

struct FreeDecompressor {
    void operator()(libdeflate_decompressor* d) const { libdeflate_free_decompressor(d); }
};

bool IsGzip(const unsigned char* data, std::uint32_t size) {
    return size >= 2 && data[0] == 0x1F && data[1] == 0x8B;
}

// libdeflate ignores the checksum of a gzip head, for which zlib may refuse the stream.
bool HasHeadChecksum(const unsigned char* data, std::uint32_t size) {
    constexpr unsigned char kHeadChecksum = 2;
    return IsGzip(data, size) && size >= 4 && (data[3] & kHeadChecksum) != 0;
}

// Whether a stream holds text uncompressed; compressed text never looks like that.
bool HoldsPlainText(const unsigned char* data, std::uint32_t size) {
    constexpr std::uint32_t kSample = 32;
    constexpr std::uint32_t kBetweenSamples = 0x4000;
    const auto isPlain = [](unsigned char c) { return (c >= ' ' && c <= '~') || c == '\n' || c == '\r'; };
    for (std::uint32_t at = 0; at + kSample <= size; at += kBetweenSamples) {
        if (std::all_of(data + at, data + at + kSample, isPlain)) { return true; }
    }
    return false;
}

// Whether each call of zlib would surely have filled its output: it does as long as the input of one step
// makes at least the output of one. False where the text, or a part of it, is hardly compressed.
bool FillsSteps(const unsigned char* data, std::uint32_t size, std::size_t total) {
    return size <= kStep || (total / 2 >= size && !HoldsPlainText(data, size));
}

// The same outcome in one go, at twice the speed; nothing where the stream isn't whole and sound, or where
// zlib may judge it or count its steps differently.
std::optional<std::size_t> InflateWhole(const unsigned char* data, std::uint32_t size, char* out,
                                        std::size_t room) {
    if (HasHeadChecksum(data, size)) { return std::nullopt; }
    const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> libdeflate(
        libdeflate_alloc_decompressor());
    if (libdeflate == nullptr) { return std::nullopt; }
    std::size_t total = 0;
    std::size_t taken = 0;
    const auto inflateAll =
        IsGzip(data, size) ? libdeflate_gzip_decompress_ex : libdeflate_zlib_decompress_ex;
    const libdeflate_result result = inflateAll(libdeflate.get(), data, size, out, room, &taken, &total);
    if (result != LIBDEFLATE_SUCCESS || !FillsSteps(data, size, total)) { return std::nullopt; }
    SayInflated(total, static_cast<unsigned>(std::max<std::size_t>(1, (total + kStep - 1) / kStep)));
    return total;
}

#else

std::optional<std::size_t> InflateWhole(const unsigned char*, std::uint32_t, char*, std::size_t) {
    return std::nullopt;
}

#endif

} // namespace

std::size_t InflatedRoom(std::uint64_t size) {
    const std::uint64_t room = (size + size / 16) * 20 + 272384;
    return size > kLargestText || room > kLargestText ? 0 : static_cast<std::size_t>(room);
}

std::optional<std::size_t> InflateBytes(const unsigned char* data, std::uint32_t size, char* out,
                                        std::size_t room, bool isMember) {
    // Without a checksum nothing shows that a member is damaged, and libdeflate may make something else of
    // it.
    const std::optional<std::size_t> whole = isMember ? std::nullopt : InflateWhole(data, size, out, room);
    return whole ? whole : InflateInSteps(data, size, out, room, isMember);
}

std::optional<std::size_t> InflateInSteps(const unsigned char* data, std::uint32_t size, char* out,
                                          std::size_t room, bool isMember) {
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
    SayInflated(total, steps);
    return total;
}

} // namespace tarnwick
