// What InflateBytes makes of a stream is held against InflateInSteps, which is zlib in plain steps.

#include "support/capture.h"
#include "text/inflate_bytes.h"

#include <gtest/gtest.h>

#include <zlib.h>

#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr int kZlib = 15;
constexpr int kGzip = 15 + 16;
constexpr std::size_t kStep = 0x40000;

// A packed stream; `head` may be that of a gzip stream.
struct Packing {
    int windowBits = kZlib;
    int level = Z_DEFAULT_COMPRESSION;
    int strategy = Z_DEFAULT_STRATEGY;
    gz_header* head = nullptr;
    std::size_t storedFrom = 0; // the text from here to
    std::size_t storedTo = 0;   // here goes into the stream as it stands
};

Bytes Pack(const std::string& text, const Packing& how) {
    z_stream stream{};
    if (deflateInit2(&stream, how.level, Z_DEFLATED, how.windowBits, 8, how.strategy) != Z_OK) {
        std::abort();
    }
    if (how.head != nullptr && deflateSetHeader(&stream, how.head) != Z_OK) { std::abort(); }
    Bytes packed(deflateBound(&stream, static_cast<uLong>(text.size())) + 1000);
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    const auto add = [&](std::size_t from, std::size_t to, int flush) {
        stream.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(text.data() + from));
        stream.avail_in = static_cast<uInt>(to - from);
        return deflate(&stream, flush);
    };
    if (how.storedTo > how.storedFrom) {
        add(0, how.storedFrom, Z_BLOCK);
        deflateParams(&stream, 0, how.strategy);
        add(how.storedFrom, how.storedTo, Z_BLOCK);
        deflateParams(&stream, how.level, how.strategy);
    }
    if (add(how.storedTo, text.size(), Z_FINISH) != Z_STREAM_END) { std::abort(); }
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

void FlipABit(Bytes* bytes, std::mt19937* random) {
    (*bytes)[(*random)() % bytes->size()] ^= static_cast<unsigned char>(1u << (*random)() % 8);
}

// Lines of a coordinates list, about `size` characters.
std::string NumberText(std::size_t size, std::mt19937* random) {
    std::string text = "#1=COORDINATES_LIST('',9,(";
    while (text.size() < size) {
        text += '(';
        for (int i = 0; i < 3; ++i) {
            text += std::to_string((*random)() % 100) + '.' + std::to_string((*random)() % 100000) + ',';
        }
        text += "),\n";
    }
    return text;
}

struct Outcome {
    std::optional<std::size_t> total;
    std::string text;
    std::string output;
    bool operator==(const Outcome&) const = default;
};

template <class Inflate>
Outcome OutcomeOf(const Bytes& packed, std::size_t room, Inflate inflate) {
    // A block of its own for each, so that a sanitizer sees a step beyond it.
    const Bytes data = packed;
    std::vector<char> out(room);
    LogCapture log;
    Outcome outcome;
    outcome.total = inflate(data.data(), static_cast<std::uint32_t>(data.size()), out.data(), room);
    if (outcome.total) { outcome.text.assign(out.data(), *outcome.total); }
    outcome.output = log.TakeOutput();
    return outcome;
}

void ExpectSame(const Bytes& packed, std::size_t room, const std::string& what) {
    for (const bool isMember : {false, true}) {
        const Outcome plain =
            OutcomeOf(packed, room, [&](const unsigned char* d, std::uint32_t n, char* out, std::size_t r) {
                return InflateInSteps(d, n, out, r, isMember);
            });
        const Outcome fast =
            OutcomeOf(packed, room, [&](const unsigned char* d, std::uint32_t n, char* out, std::size_t r) {
                return InflateBytes(d, n, out, r, isMember);
            });
        EXPECT_TRUE(plain.text == fast.text && plain.total == fast.total) << what;
        EXPECT_EQ(plain.output, fast.output) << what;
    }
}

void ExpectSame(const Bytes& packed, const std::string& what) {
    ExpectSame(packed, InflatedRoom(packed.size()), what);
}

TEST(InflateBytes, TakesStreamsOfAnyLevelAndStrategyAsZlibDoes) {
    std::mt19937 random(1);
    for (const std::size_t size : {std::size_t{1}, std::size_t{300}, kStep / 2, 5 * kStep}) {
        const std::string text = NumberText(size, &random);
        for (const int windowBits : {9, kZlib, kGzip}) {
            for (const int level : {0, 1, 6}) {
                for (const int strategy : {Z_DEFAULT_STRATEGY, Z_HUFFMAN_ONLY, Z_RLE, Z_FIXED}) {
                    ExpectSame(Pack(text, {windowBits, level, strategy}),
                               std::to_string(size) + " characters, window " + std::to_string(windowBits) +
                                   ", level " + std::to_string(level) + ", strategy " +
                                   std::to_string(strategy));
                }
            }
        }
    }
}

TEST(InflateBytes, CountsTheStepsOfTextThatIsAWholeNumberOfThem) {
    for (const std::size_t size : {std::size_t{0}, kStep - 1, kStep, kStep + 1, 2 * kStep, 4 * kStep}) {
        ExpectSame(Pack(std::string(size, ' '), {}), size + kStep, std::to_string(size));
        ExpectSame(Pack(std::string(size, ' '), {}), size, std::to_string(size) + " without room to spare");
    }
}

TEST(InflateBytes, CountsTheStepsOfAStreamWhoseMiddleIsNotCompressed) {
    std::mt19937 random(2);
    const std::string text = NumberText(16 * kStep, &random);
    for (const std::size_t stored : {kStep, 2 * kStep + 777, 5 * kStep}) {
        const Bytes packed = Pack(text, {.storedFrom = 3 * kStep, .storedTo = 3 * kStep + stored});
        ASSERT_LT(packed.size(), text.size()) << "compressed as a whole";
        ExpectSame(packed, text.size() + 1, std::to_string(stored));
    }
}

TEST(InflateBytes, StopsAtItsRoom) {
    std::mt19937 random(3);
    const std::string text = NumberText(3 * kStep, &random);
    const Bytes packed = Pack(text, {});
    for (const std::size_t room : {std::size_t{1}, std::size_t{1000}, kStep, text.size() - 1, text.size()}) {
        ExpectSame(packed, room, std::to_string(room));
    }
}

TEST(InflateBytes, TakesGzipHeadsWithAllTheirFields) {
    unsigned char extra[] = {1, 2, 3};
    unsigned char name[] = "part.stp";
    unsigned char comment[] = "a comment";
    for (int fields = 0; fields < 16; ++fields) {
        gz_header head{};
        head.extra = (fields & 1) != 0 ? extra : nullptr;
        head.extra_len = sizeof extra;
        head.name = (fields & 2) != 0 ? name : nullptr;
        head.comment = (fields & 4) != 0 ? comment : nullptr;
        head.hcrc = (fields & 8) != 0 ? 1 : 0;
        Bytes packed = Pack("#1=X();\n", {.windowBits = kGzip, .head = &head});
        ExpectSame(packed, "whole, fields " + std::to_string(fields));
        for (std::size_t i = 0; i < packed.size(); ++i) {
            packed[i] ^= 1;
            ExpectSame(packed, "byte " + std::to_string(i) + " of fields " + std::to_string(fields));
            packed[i] ^= 1;
        }
    }
}

TEST(InflateBytes, TakesDamagedStreamsAsZlibDoes) {
    std::mt19937 random(4);
    for (int round = 0; round < 600; ++round) {
        const std::string text = NumberText(random() % 3000, &random);
        const int windowBits = round % 2 == 0 ? kZlib : kGzip;
        Bytes packed = Pack(text, {.windowBits = windowBits, .level = static_cast<int>(random() % 10)});
        switch (random() % 4) {
        case 0:
            packed.resize(random() % packed.size()); // cut
            break;
        case 1:
            packed.resize(packed.size() + random() % 9); // zeros after it
            break;
        case 2:
            packed[packed.size() - 1 - random() % std::min<std::size_t>(packed.size(), 9)] ^=
                0x40; // checksum
            break;
        default:
            for (int i = 0; i < 3; ++i) { FlipABit(&packed, &random); }
        }
        ExpectSame(packed, "round " + std::to_string(round));
    }
}

TEST(InflateBytes, TakesDamageFarInsideALongStreamAsZlibDoes) {
    std::mt19937 random(5);
    const Bytes packed = Pack(NumberText(4 * kStep, &random), {});
    for (int round = 0; round < 8; ++round) {
        Bytes damaged = packed;
        FlipABit(&damaged, &random);
        if (round % 2 == 1) { damaged.resize(random() % damaged.size()); }
        ExpectSame(damaged, "round " + std::to_string(round));
    }
}

} // namespace
} // namespace tarnwick::test
