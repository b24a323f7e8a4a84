// tarnwick-bench-floor THREADS FILE...|FOLDER: the least that any load of these files does. Their bytes are
// read, their lines walked, and every number of their coordinates lists and tessellated faces is converted
// and stored in an array of its file that is kept to the end. No entity table, no colours, no structure, and
// no array for each face. A compressed file is inflated first; of a ZIP archive all members are inflated, and
// nothing else is done with them.

#include "platform/pages.h"
#include "platform/scratch_array.h"
#include "platform/text_block.h"
#include "text/parse_real.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using tarnwick::ScratchArray;

struct Arrays {
    ScratchArray<float> reals;
    ScratchArray<std::uint32_t> integers;
};

bool IsNumberStart(char c) {
    return tarnwick::real::IsDigit(c) || c == '-';
}

// The numbers of one line, from the second argument of its entity on. A number with a point is a real.
void TakeNumbers(const char* p, const char* end, Arrays* arrays) {
    while (p < end) {
        if (!IsNumberStart(*p)) {
            ++p;
            continue;
        }
        const char* digits = p + (*p == '-');
        std::uint64_t word = tarnwick::LoadEight(digits);
        unsigned count = tarnwick::real::LeadingDigits(word);
        if (count > 0 && count < 8 && digits[count] != '.') {
            if (!arrays->integers.Reserve(1)) { std::abort(); }
            *arrays->integers.Next() = tarnwick::real::DigitsValue(word, count) - 1;
            arrays->integers.Advance(1);
            p = digits + count;
        } else {
            if (!arrays->reals.Reserve(1)) { std::abort(); }
            *arrays->reals.Next() = static_cast<float>(tarnwick::ParseReal(p, &p));
            arrays->reals.Advance(1);
            if (!IsNumberStart(*p)) { ++p; }
        }
    }
}

bool IsTessellated(const char* keyword) {
    return std::memcmp(keyword, "COORDINATES_LIST", 16) == 0 ||
           std::memcmp(keyword, "TRIANGULATED_FACE", 17) == 0 ||
           std::memcmp(keyword, "COMPLEX_TRIANGULATED", 20) == 0;
}

// What one thread keeps from file to file.
struct Blocks {
    tarnwick::TextBlock file;
    tarnwick::TextBlock inflated;
};

// The whole file, with NULs after it.
char* ReadFile(const char* path, tarnwick::TextBlock* block, std::size_t* size) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0) { std::abort(); }
    *size = static_cast<std::size_t>(status.st_size);
    char* const text = block->Get(*size + 1);
    std::size_t done = 0;
    for (ssize_t got; done < *size && (got = read(file, text + done, *size - done)) > 0;) {
        done += static_cast<std::size_t>(got);
    }
    close(file);
    std::memset(text + done, 0, tarnwick::TextBlock::kPadding);
    return text;
}

constexpr int kAnyHeader = 47; // zlib or gzip
constexpr int kNoHeader = -15; // as in an archive

// Inflates in one call; returns what came out.
std::size_t Inflate(int windowBits, const char* data, std::size_t size, char* out, std::size_t room) {
    z_stream stream{};
    if (inflateInit2(&stream, windowBits) != Z_OK) { std::abort(); }
    stream.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(data));
    stream.avail_in = static_cast<uInt>(size);
    stream.next_out = reinterpret_cast<unsigned char*>(out);
    stream.avail_out = static_cast<uInt>(room);
    if (inflate(&stream, Z_FINISH) != Z_STREAM_END) { std::abort(); }
    inflateEnd(&stream);
    return stream.total_out;
}

void WalkLines(const char* text, std::size_t size, Arrays* arrays) {
    const char* const end = text + size;
    for (const char* line = text; line < end;) {
        const void* const feed = std::memchr(line, '\n', static_cast<std::size_t>(end - line));
        const char* const lineEnd = feed != nullptr ? static_cast<const char*>(feed) : end;
        if (*line == '#') {
            const char* keyword = line;
            while (*keyword != '=' && keyword < lineEnd) { ++keyword; }
            if (IsTessellated(keyword + 1)) { TakeNumbers(keyword + 20, lineEnd, arrays); }
        }
        line = lineEnd + 1;
    }
}

void ReadNumbers(const char* path, Blocks* blocks, Arrays* arrays) {
    std::size_t size = 0;
    char* text = ReadFile(path, &blocks->file, &size);
    if (size > 1 && (std::memcmp(text, "\x1F\x8B", 2) == 0 || *text == '\x78')) {
        const std::size_t room = size * 22 + 1000;
        char* const out = blocks->inflated.Get(room);
        size = Inflate(kAnyHeader, text, size, out, room);
        std::memset(out + size, 0, tarnwick::TextBlock::kPadding);
        text = out;
    }
    WalkLines(text, size, arrays);
}

// One member of an archive: where its local header begins, and its sizes.
struct Member {
    std::size_t header;
    std::size_t packed;
    std::size_t size;
    bool deflated;
};

std::size_t Number(const char* p, int bytes) {
    std::size_t number = 0;
    for (int i = bytes; i-- > 0;) { number = number << 8 | static_cast<unsigned char>(p[i]); }
    return number;
}

// The members by the central directory, of an archive of less than 4 GB and 65,535 members.
std::vector<Member> MembersOf(const char* zip, std::size_t size) {
    const char* end = zip + size - 22;
    while (end > zip && std::memcmp(end, "PK\5\6", 4) != 0) { --end; }
    std::vector<Member> members;
    const char* record = zip + Number(end + 16, 4);
    for (std::size_t left = Number(end + 10, 2); left > 0; --left) {
        members.push_back({Number(record + 42, 4), Number(record + 20, 4), Number(record + 24, 4),
                           Number(record + 10, 2) == 8});
        record += 46 + Number(record + 28, 2) + Number(record + 30, 2) + Number(record + 32, 2);
    }
    return members;
}

std::size_t InflateMember(const char* zip, const Member& member, Blocks* blocks) {
    const char* const header = zip + member.header;
    const char* const data = header + 30 + Number(header + 26, 2) + Number(header + 28, 2);
    if (!member.deflated) { return member.size; }
    return Inflate(kNoHeader, data, member.packed, blocks->inflated.Get(member.size + 1), member.size);
}

// Does the work of `threads` threads, this one among them.
template <class Work>
void OnThreads(int threads, const Work& work) {
    std::vector<std::thread> workers;
    for (int i = 1; i < threads; ++i) { workers.emplace_back(work); }
    work();
    for (std::thread& worker : workers) { worker.join(); }
}

std::size_t InflateArchive(int threads, const char* zip, std::size_t size) {
    const std::vector<Member> members = MembersOf(zip, size);
    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> bytes = 0;
    OnThreads(threads, [&] {
        Blocks blocks;
        for (std::size_t i; (i = next++) < members.size();) {
            bytes += InflateMember(zip, members[i], &blocks);
        }
    });
    return bytes;
}

// The files named, or those of the folder named.
std::vector<std::string> PathsOf(int count, char** names) {
    std::vector<std::string> paths(names, names + count);
    if (count != 1 || !std::filesystem::is_directory(paths[0])) { return paths; }
    const std::string folder = paths[0];
    paths.clear();
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".stp") { paths.push_back(entry.path().string()); }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

bool IsArchive(const char* path) {
    char start[4] = {};
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    const bool is = file >= 0 && read(file, start, 4) == 4 && std::memcmp(start, "PK\3\4", 4) == 0;
    if (file >= 0) { close(file); }
    return is;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) { return 2; }
    const int threads = std::atoi(argv[1]);
    if (IsArchive(argv[2])) {
        tarnwick::TextBlock block;
        std::size_t size = 0;
        const char* const zip = ReadFile(argv[2], &block, &size);
        std::printf("%zu bytes\n", InflateArchive(threads, zip, size));
        return 0;
    }
    const std::vector<std::string> paths = PathsOf(argc - 2, argv + 2);
    std::vector<std::unique_ptr<Arrays>> kept;
    for (std::size_t i = 0; i < paths.size(); ++i) { kept.push_back(std::make_unique<Arrays>()); }
    std::atomic<std::size_t> next = 0;
    OnThreads(threads, [&] {
        Blocks blocks;
        for (std::size_t i; (i = next++) < paths.size();) {
            ReadNumbers(paths[i].c_str(), &blocks, kept[i].get());
        }
    });
    std::size_t numbers = 0;
    for (const auto& arrays : kept) { numbers += arrays->reals.Count() + arrays->integers.Count(); }
    std::printf("%zu numbers\n", numbers);
    std::fflush(stdout);
    _exit(0);
}
