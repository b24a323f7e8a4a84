// The pieces of a load beside the least that the machine needs for the same bytes, by Google Benchmark. The
// P21 part to measure on is named by the environment variable TARNWICK_BENCH_PART; bench/run makes one.

#include "geometry/part_reader.h"
#include "load/p21/parse_real.h"
#include "load/p21/step_model.h"
#include "platform/arena.h"
#include "platform/console.h"

#include <benchmark/benchmark.h>
#ifdef TARNWICK_HAS_FAST_FLOAT
#include <fast_float/fast_float.h>
#endif

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace tarnwick;

const std::string& PartPath() {
    static const std::string path = [] {
        const char* const named = std::getenv("TARNWICK_BENCH_PART");
        if (named == nullptr) {
            std::fprintf(stderr, "TARNWICK_BENCH_PART doesn't name a part\n");
            std::exit(2);
        }
        return std::string(named);
    }();
    return path;
}

const std::string& PartText() {
    static const std::string text = [] {
        std::string bytes;
        if (std::FILE* const file = std::fopen(PartPath().c_str(), "rb")) {
            char block[1 << 16];
            for (std::size_t got; (got = std::fread(block, 1, sizeof block, file)) > 0;) {
                bytes.append(block, got);
            }
            std::fclose(file);
        }
        return bytes;
    }();
    return text;
}

// All reals of the part, one behind another, with a comma behind each.
const std::string& Reals() {
    static const std::string reals = [] {
        const std::string& text = PartText();
        std::string found;
        const std::size_t data = text.find("\nDATA;");
        for (std::size_t i = data == std::string::npos ? 0 : data; i < text.size();) {
            std::size_t end = i;
            bool point = false;
            while (end < text.size() &&
                   (real::IsDigit(text[end]) || std::strchr("+-.E", text[end]) != nullptr)) {
                if (text[end++] == '.') { point = true; }
            }
            if (point && real::IsDigit(text[text[i] == '-' ? i + 1 : i])) {
                found.append(text, i, end - i);
                found += ',';
            }
            i = end + 1;
        }
        found.append(64, '\0');
        return found;
    }();
    return reals;
}

void SetRate(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

template <class Parse>
void ParseAll(benchmark::State& state, Parse parse) {
    const std::string& reals = Reals();
    for (auto _ : state) {
        float sum = 0;
        for (const char* p = reals.data(); *p != '\0'; ++p) {
            double value = 0;
            p = parse(p, &value);
            sum += static_cast<float>(value);
        }
        benchmark::DoNotOptimize(sum);
    }
    SetRate(state, reals.size());
}

void RealsByParseReal(benchmark::State& state) {
    ParseAll(state, [](const char* p, double* value) {
        *value = ParseReal(p, &p);
        return p;
    });
}
BENCHMARK(RealsByParseReal)->Unit(benchmark::kMillisecond);

#ifdef TARNWICK_HAS_FAST_FLOAT
void RealsByFastFloat(benchmark::State& state) {
    const char* const end = Reals().data() + Reals().size();
    ParseAll(state,
             [end](const char* p, double* value) { return fast_float::from_chars(p, end, *value).ptr; });
}
BENCHMARK(RealsByFastFloat)->Unit(benchmark::kMillisecond);
#endif

void RealsByStrtod(benchmark::State& state) {
    ParseAll(state, [](const char* p, double* value) {
        char* end = nullptr;
        *value = std::strtod(p, &end);
        return static_cast<const char*>(end);
    });
}
BENCHMARK(RealsByStrtod)->Unit(benchmark::kMillisecond);

void LinesByMemchr(benchmark::State& state) {
    const std::string& text = PartText();
    for (auto _ : state) {
        std::size_t lines = 0;
        const char* const end = text.data() + text.size();
        for (const char* p = text.data(); p < end; ++lines) {
            const void* const feed = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
            if (feed == nullptr) { break; }
            p = static_cast<const char*>(feed) + 1;
        }
        benchmark::DoNotOptimize(lines);
    }
    SetRate(state, text.size());
}
BENCHMARK(LinesByMemchr)->Unit(benchmark::kMillisecond);

// Reading and indexing: the bytes, the scan, the table.
void ReadAndIndex(benchmark::State& state) {
    EnableOutput(false);
    ReaderWorkspace workspace;
    for (auto _ : state) {
        StepModel model(workspace, PartPath());
        benchmark::DoNotOptimize(model.Read());
    }
    SetRate(state, PartText().size());
}
BENCHMARK(ReadAndIndex)->Unit(benchmark::kMillisecond);

// The same and the whole part behind it.
void ReadPart(benchmark::State& state) {
    EnableOutput(false);
    ReaderWorkspace workspace;
    PartScratch scratch;
    for (auto _ : state) {
        StepModel model(workspace, PartPath());
        if (model.Read() != StepModel::kRead) {
            state.SkipWithError("the part can't be read");
            break;
        }
        Arena arena;
        PartReader reader(model, nullptr, arena, scratch);
        reader.Run();
        state.counters["triangles"] = reader.triangleSum;
    }
    SetRate(state, PartText().size());
}
BENCHMARK(ReadPart)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
