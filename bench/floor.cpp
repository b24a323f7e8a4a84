// tarnwick-bench-floor THREADS FILE...: the least that any load of these files does. Their bytes are read,
// their lines walked, and every number of their coordinates lists and tessellated faces is converted and
// stored in an array of its file that is kept to the end. No entity table, no colours, no structure, and no
// array for each face.

#include "load/p21/parse_real.h"
#include "platform/pages.h"
#include "platform/scratch_array.h"
#include "platform/text_block.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
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
        std::uint64_t word = tarnwick::real::LoadEight(digits);
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

void ReadNumbers(const char* path, tarnwick::TextBlock* block, Arrays* arrays) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0) { std::abort(); }
    const std::size_t size = static_cast<std::size_t>(status.st_size);
    char* const text = block->Get(size + 1);
    std::size_t done = 0;
    for (ssize_t got; done < size && (got = read(file, text + done, size - done)) > 0;) {
        done += static_cast<std::size_t>(got);
    }
    close(file);
    std::memset(text + done, 0, tarnwick::TextBlock::kPadding);
    const char* const end = text + done;
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

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) { return 2; }
    const int threads = std::atoi(argv[1]);
    std::vector<std::unique_ptr<Arrays>> kept;
    for (int i = 2; i < argc; ++i) { kept.push_back(std::make_unique<Arrays>()); }
    std::atomic<int> next = 2;
    const auto work = [&] {
        tarnwick::TextBlock block;
        for (int i; (i = next++) < argc;) {
            ReadNumbers(argv[i], &block, kept[static_cast<std::size_t>(i - 2)].get());
        }
    };
    std::vector<std::thread> workers;
    for (int i = 1; i < threads; ++i) { workers.emplace_back(work); }
    work();
    for (std::thread& worker : workers) { worker.join(); }
    std::size_t numbers = 0;
    for (const auto& arrays : kept) { numbers += arrays->reals.Count() + arrays->integers.Count(); }
    std::printf("%zu numbers\n", numbers);
    std::fflush(stdout);
    _exit(0);
}
