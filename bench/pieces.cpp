// tarnwick-bench-pieces PIECE TURNS [FILE]: one piece of a load beside the least that the machine needs for
// the same bytes, in one process.

#include "pieces.h"

#include "platform/console.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace tarnwick::bench {

std::string ReadBytes(const std::string& path, std::size_t* size) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        std::fprintf(stderr, "%s can't be opened\n", path.c_str());
        std::exit(2);
    }
    std::string bytes;
    char block[1 << 16];
    for (std::size_t got; (got = std::fread(block, 1, sizeof block, file)) > 0;) { bytes.append(block, got); }
    std::fclose(file);
    *size = bytes.size();
    bytes.append(64, '\0');
    return bytes;
}

std::size_t CountByMemchr(const char* text, std::size_t size, char c) {
    std::size_t count = 0;
    const char* const end = text + size;
    for (const char* p = text; p < end; ++count) {
        const void* const found = std::memchr(p, c, static_cast<std::size_t>(end - p));
        if (found == nullptr) { break; }
        p = static_cast<const char*>(found) + 1;
    }
    return count;
}

} // namespace tarnwick::bench

int main(int argc, char** argv) {
    using namespace tarnwick::bench;
    struct Piece {
        std::string_view name;
        void (*run)(int, const std::string&);
    };
    constexpr Piece kPieces[] = {
        {"reals", BenchReals},       {"index", BenchIndex},     {"part", BenchPart},
        {"document", BenchDocument}, {"summary", BenchSummary},
    };
    tarnwick::EnableOutput(false);
    const std::string_view piece = argc > 1 ? argv[1] : "";
    const int turns = argc > 2 ? std::atoi(argv[2]) : 0;
    if (turns > 0 && argc == 3 && piece == "drawlist") {
        BenchDrawList(turns);
        return 0;
    }
    for (const Piece& known : kPieces) {
        if (turns > 0 && argc == 4 && piece == known.name) {
            known.run(turns, argv[3]);
            return 0;
        }
    }
    std::fprintf(stderr, "usage: tarnwick-bench-pieces reals|index|part|document|summary TURNS FILE\n"
                         "       tarnwick-bench-pieces drawlist TURNS\n");
    return 2;
}
