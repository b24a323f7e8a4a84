#include "pieces.h"

#include "geometry/part_reader.h"
#include "p21/keyword_codes.h"
#include "p21/step_model.h"
#include "platform/arena.h"
#include "text/parse_real.h"
#include "text/take_triples.h"
#include "turns.h"

#ifdef TARNWICK_HAS_FAST_FLOAT
#include <fast_float/fast_float.h>
#endif

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tarnwick::bench {

namespace {

// Keeps the compiler from dropping work whose result nobody reads.
template <class T>
void Keep(const T& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

// All reals of a P21 text, as triples "(a,b,c)" with a comma after each.
std::string RealsOf(const std::string& text) {
    std::string found;
    int count = 0;
    const std::size_t data = text.find("\nDATA;");
    for (std::size_t i = data == std::string::npos ? 0 : data; i < text.size();) {
        std::size_t end = i;
        bool point = false;
        while (end < text.size() && text[end] != '\0' &&
               (real::IsDigit(text[end]) || std::strchr("+-.E", text[end]) != nullptr)) {
            if (text[end++] == '.') { point = true; }
        }
        if (point && real::IsDigit(text[text[i] == '-' ? i + 1 : i])) {
            if (count % 3 == 0) { found += '('; }
            found.append(text, i, end - i);
            found += ++count % 3 == 0 ? ")," : ",";
        }
        i = end + 1;
    }
    found.resize(found.rfind(')') + 1);
    found.append(64, '\0');
    return found;
}

template <class Parse>
double ParseAll(const std::string& reals, Parse parse) {
    return Seconds([&] {
        float sum = 0;
        for (const char* p = reals.data(); *p == '('; p += p[1] == ',' ? 2 : 1) {
            for (int i = 0; i < 3; ++i) {
                double value = 0;
                p = parse(p + 1, &value);
                sum += static_cast<float>(value);
            }
        }
        Keep(sum);
    });
}

// The same as the readers take them.
double TakeAll(const std::string& reals) {
    return Seconds([&] {
        constexpr std::size_t kAtATime = 256;
        std::array<float, 3 * kAtATime> values;
        const char* p = reals.data();
        while (*p == '(') {
            std::size_t taken = 3 * TakeTriples(&p, values.data(), kAtATime);
            for (; taken < 3; ++taken) { values[taken] = static_cast<float>(ParseReal(p + 1, &p)); }
            p += p[0] == ')' ? 1 : 0;
            p += p[0] == ',' ? 1 : 0;
            Keep(values.data());
        }
    });
}

double LinesByMemchr(const std::string& text, std::size_t size) {
    return Seconds([&] { Keep(CountByMemchr(text.data(), size, '\n')); });
}

} // namespace

void BenchReals(int turns, const std::string& path) {
    std::size_t size = 0;
    const std::string reals = RealsOf(ReadBytes(path, &size));
    std::vector<Way> ways;
#ifdef TARNWICK_HAS_FAST_FLOAT
    ways.push_back({"fast_float", [&] {
                        const char* const end = reals.data() + reals.size();
                        return ParseAll(reals, [end](const char* p, double* value) {
                            return fast_float::from_chars(p, end, *value).ptr;
                        });
                    }});
#endif
    ways.push_back({"strtod", [&] {
                        return ParseAll(reals, [](const char* p, double* value) {
                            char* end = nullptr;
                            *value = std::strtod(p, &end);
                            return static_cast<const char*>(end);
                        });
                    }});
    ways.push_back({"ParseReal", [&] {
                        return ParseAll(reals, [](const char* p, double* value) {
                            *value = ParseReal(p, &p);
                            return p;
                        });
                    }});
    ways.push_back({"TakeTriples, and ParseReal for the rest", [&] { return TakeAll(reals); }});
    RunInTurn("the reals of a part", turns, ways);
}

void BenchIndex(int turns, const std::string& path) {
    std::size_t size = 0;
    const std::string text = ReadBytes(path, &size);
    std::int32_t count = 0;
    const auto index = [&] {
        ReaderWorkspace workspace;
        StepModel model(workspace, path);
        const double seconds = Seconds([&] { Keep(model.Read()); }) - model.readSeconds;
        count = model.entityCount;
        return seconds;
    };
    index();
    // A record and a node of a list for each entity, as a table makes them that nobody has packed; one after
    // another, as one scan makes them, and in fresh memory, as a load has it.
    struct PlainRecord {
        std::int32_t id, offset, multiLine, code;
        void* more[3];
    };
    struct PlainNode {
        PlainRecord* record;
        PlainNode* next;
    };
    const auto write = [&] {
        Arena arena;
        return Seconds([&] {
            for (std::int32_t i = 0; i < count; ++i) {
                PlainRecord* const record = arena.New<PlainRecord>();
                record->id = i + 1;
                record->code = code::kUnknown;
                PlainNode* const node = arena.New<PlainNode>();
                node->record = record;
            }
            Keep(arena.Held());
        });
    };
    // The rest of such a table: a place for each record in file order, and buckets that are lists.
    const auto writeRest = [&] {
        const std::size_t places = static_cast<std::size_t>(count) * sizeof(PlainRecord*);
        const std::size_t buckets = (std::size_t{1} << HashBits(count)) * 48;
        Arena arena;
        return Seconds([&] {
            std::memset(arena.Allocate(places), 1, places);
            std::memset(arena.Allocate(buckets), 1, buckets);
        });
    };
    const auto least = [&] { return LinesByMemchr(text, size) + write(); };
    RunInTurn((std::to_string(count) + " entities").c_str(), turns,
              {{"memchr over the lines, and the writing", least},
               {"the same, and the rest of the table", [&] { return least() + writeRest(); }},
               {"memchr over the lines", [&] { return LinesByMemchr(text, size); }},
               {"scan and index", index}});
}

void BenchPart(int turns, const std::string& path) {
    std::size_t size = 0;
    const std::string text = ReadBytes(path, &size);
    ReaderWorkspace workspace;
    PartScratch scratch;
    const auto read = [&](bool all) {
        return Seconds([&] {
            StepModel model(workspace, path);
            if (model.Read() != StepModel::kRead) {
                std::fprintf(stderr, "%s is no P21 file\n", path.c_str());
                std::exit(2);
            }
            if (all) {
                Arena arena;
                PartReader reader(model, nullptr, arena, scratch);
                reader.Run();
                Keep(reader.triangleSum);
            }
        });
    };
    RunInTurn("a part", turns,
              {{"memchr over the lines", [&] { return LinesByMemchr(text, size); }},
               {"reading, scan and index", [&] { return read(false); }},
               {"all of it", [&] { return read(true); }}});
}

} // namespace tarnwick::bench
