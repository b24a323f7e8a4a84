// The scanner against the plain sequence of its steps, on texts of every kind of line.

#include "p21/keyword_codes.h"
#include "p21/model_file.h"
#include "support/capture.h"
#include "support/p21_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {
namespace {

using Ids = std::vector<std::int32_t>;

struct Scan {
    std::vector<std::vector<std::int32_t>> entities; // id, offset, multiLine, code
    std::int32_t shapeRepresentationId = 0;
    std::int32_t presentationId = 0;
    std::int32_t rootProductId = 0;
    std::int32_t productCount = 0;
    std::int32_t isAssembly = 0;
    Ids colourIds;
    Ids structureIds;
    std::string output;
    bool pastEnd = false; // a search for a line feed or a "=" has no end

    bool operator==(const Scan&) const = default;
};

// One step after the other, on a text with a NUL and readable characters after it.
Scan PlainScan(std::string text) {
    Scan scan;
    const std::size_t size = text.size();
    text.append(128, '\0');
    char* const t = text.data();
    std::size_t p = 0;
    const auto goToLineFeed = [&] {
        while (p < size && t[p] != '\n') { ++p; }
        scan.pastEnd = p == size;
    };
    do {
        goToLineFeed();
        if (scan.pastEnd) { return scan; }
        ++p;
    } while (std::memcmp(t + p, "DATA;", 5) != 0);
    goToLineFeed();
    if (scan.pastEnd) { return scan; }
    bool continuing = false;
    for (;;) {
        while (t[p] != '\n' && t[p] != '\0') { ++p; }
        if (t[p] == '\0') { break; }
        while (t[p] == '\n' || t[p] == '\r') { ++p; }
        const std::size_t l = p;
        std::size_t e = l;
        while (t[e] != '\n' && t[e] != '\0') { ++e; }
        while (e > l && (t[e] == '\t' || t[e] == '\n' || t[e] == '\r' || t[e] == ' ')) { --e; }
        const bool complete = t[e] == ';';
        p = e;
        if (continuing) {
            continuing = !complete;
            continue;
        }
        if (std::memcmp(t + l, "ENDSEC", 6) == 0) { break; }
        continuing = !complete;
        if (t[l] != '#') { continue; }
        std::size_t q = l + 1;
        while (t[q] != '=' && t[q] != '\n') {
            if (q >= size) {
                scan.pastEnd = true;
                return scan;
            }
            ++q;
        }
        if (t[q] == '\n') {
            scan.output += "<E> Definition d'entite non reconnue:\n";
            continue;
        }
        t[q] = '\0';
        const std::int32_t id = std::atoi(t + l + 1);
        t[q] = '=';
        ++q;
        while (t[q] == ' ') { ++q; }
        if (id < 1) { continue; }
        const std::int32_t code = ClassifyEntity(t + q);
        scan.entities.push_back({id, static_cast<std::int32_t>(l), complete ? 0 : 1, code});
        switch (code) {
        case 12:
            scan.shapeRepresentationId = id;
            break;
        case 22:
            if (scan.presentationId == 0) { scan.presentationId = id; }
            scan.structureIds.push_back(id);
            break;
        case 26:
            scan.isAssembly = 1;
            break;
        case 27:
            scan.rootProductId = id;
            ++scan.productCount;
            break;
        case 28:
        case 41:
        case 42:
            scan.structureIds.push_back(id);
            break;
        case 23:
        case 24:
            scan.colourIds.push_back(id);
            break;
        default:
            break;
        }
    }
    scan.output += CountLine(static_cast<int>(scan.entities.size()));
    return scan;
}

class Texts {
public:
    explicit Texts(std::uint32_t seed) : random_(seed) {}
    int Below(int limit) { return static_cast<int>(random_() % static_cast<std::uint32_t>(limit)); }
    bool OneIn(int n) { return Below(n) == 0; }

    std::string Line() {
        static constexpr std::string_view kKeywords[] = {
            "TESSELLATED_SHAPE_REPRESENTATION",
            "MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION",
            "NEXT_ASSEMBLY_USAGE_OCCURRENCE",
            "PRODUCT",
            "PRODUCT ",
            "COLOUR_RGB",
            "SHAPE_DEFINITION_REPRESENTATION",
            "MAKE_FROM_USAGE_OPTION",
            "DRAUGHTING_PRE_DEFINED_COLOUR",
            "CARTESIAN_POINT",
            "X",
            "(COLOUR_RGB"};
        static constexpr std::string_view kEnds[] = {";", " ;", ";  ", ";\t", ";\r", ",", "", " ", ";x"};
        if (OneIn(12)) {
            static constexpr std::string_view kOthers[] = {
                "",         "  ",    "\t", "\r", "/* comment */", "ENDSEC", "ENDSECX;",
                " ENDSEC;", "text;", "#",  "#5", "# ;",           "#;"};
            return std::string(
                kOthers[static_cast<std::size_t>(Below(static_cast<int>(std::size(kOthers))))]);
        }
        std::string line = OneIn(15) ? " " : OneIn(30) ? "\r" : "";
        line += OneIn(20) ? "" : "#";
        line += OneIn(15) ? std::to_string(Below(5) - 3) : std::to_string(1 + Below(300));
        if (OneIn(8)) { line.insert(line.find('#') + 1, static_cast<std::size_t>(Below(9)), '0'); }
        if (OneIn(8)) { line.append(static_cast<std::size_t>(Below(7)), '7'); }
        line += OneIn(10) ? " = " : OneIn(30) ? "=\t" : OneIn(30) ? " " : "=";
        line += kKeywords[static_cast<std::size_t>(Below(static_cast<int>(std::size(kKeywords))))];
        line += OneIn(10) ? "('a long text that stands for all the others that files may have in their lines'"
                          : "('',1.";
        if (OneIn(10)) { line.append(static_cast<std::size_t>(Below(400)), '1'); }
        line += ")";
        line += OneIn(4) ? kEnds[static_cast<std::size_t>(Below(static_cast<int>(std::size(kEnds))))] : ";";
        return line;
    }
    std::string Text() {
        std::string text = P21Header();
        for (int lines = Below(40); lines > 0; --lines) {
            text += Line() + (OneIn(6) ? "\r\n" : OneIn(20) ? "\n\n" : "\n");
        }
        if (!OneIn(4)) { text += "ENDSEC;\n"; }
        if (OneIn(3)) { text += "END-ISO-10303-21;"; }
        if (OneIn(8)) {
            text[P21Header().size() - 1 +
                 static_cast<std::size_t>(Below(static_cast<int>(text.size() - P21Header().size() + 1)))] =
                OneIn(2) ? '\0' : '\n';
        }
        return text;
    }

private:
    std::mt19937 random_;
};

// What the scanner makes of a text, which a plain scan has seen the end of.
Scan RealScan(const StepModel& model, int result) {
    Scan real;
    if (result != StepModel::kRead) { return real; }
    for (std::int32_t n = 0; n < model.entityCount; ++n) {
        const P42Ent* const record = model.EntityAt(n);
        real.entities.push_back({record->id, record->offset, record->multiLine, record->code});
    }
    real.shapeRepresentationId = model.shapeRepresentationId;
    real.presentationId = model.presentationId;
    real.rootProductId = model.rootProductId;
    real.productCount = model.productCount;
    real.isAssembly = model.isAssembly;
    real.colourIds = model.colourIds;
    ListP42Ent& list = *model.structureList;
    for (const P42Ent* record = list.First(); record != nullptr; record = list.Next()) {
        real.structureIds.push_back(record->id);
    }
    return real;
}

// Reads texts by both, one after another by the same workspace.
class Comparison {
public:
    // Returns whether both came to an end.
    bool Add(const std::string& text) {
        const Scan plain = PlainScan(text);
        StepModel model(workspace_, folder_.Write("x.stp", text));
        const int result = model.Read();
        const std::string output = log_.TakeOutput();
        log_.TakeConsole();
        if (plain.pastEnd) {
            if (result == StepModel::kRead) { differences.push_back("accepted:\n" + text); }
            return false;
        }
        Scan real = RealScan(model, result);
        real.output = output;
        if (!(real == plain)) { differences.push_back("result " + std::to_string(result) + ":\n" + text); }
        return true;
    }
    // Whether the last text was scanned by its marks.
    bool HadMarks() const { return workspace_.lines.AreFew(); }

    std::vector<std::string> differences;

private:
    const TempFolder folder_;
    ReaderWorkspace workspace_;
    LogCapture log_;
};

// Adds texts a number of times, and expects no differences.
void ExpectSame(int times, const std::function<void(Comparison&)>& add) {
    std::vector<std::string> differences;
    {
        Comparison comparison;
        for (int i = 0; i < times; ++i) { add(comparison); }
        differences = comparison.differences;
    }
    EXPECT_EQ(differences.size(), 0u);
    for (std::size_t i = 0; i < differences.size() && i < 3; ++i) {
        ADD_FAILURE() << differences[i].substr(0, 10000);
    }
}

TEST(ScanEntitiesEqualsItsPlainForm, OnTextsOfAllKindsOfLines) {
#ifdef NDEBUG
    constexpr int kTexts = 20000;
#else
    constexpr int kTexts = 2000;
#endif
    Texts texts(4);
    int compared = 0;
    ExpectSame(kTexts, [&](Comparison& comparison) { compared += comparison.Add(texts.Text()) ? 1 : 0; });
    EXPECT_GT(compared, kTexts / 2);
}

// A text whose lines are so long that a search passes over most of it by its marks; every now and then a run
// of ordinary lines, and here and there a NUL.
std::string LongLines(Texts& texts) {
    constexpr std::size_t kLargeEnough = std::size_t{9} << 19;
    std::string text = P21Header();
    while (text.size() < kLargeEnough) {
        std::string line = texts.Line();
        if (line.starts_with("ENDSEC")) { continue; }
        const std::size_t longer = static_cast<std::size_t>(texts.Below(texts.OneIn(9) ? 200000 : 9000));
        line.insert(std::min(line.find('='), line.size() - 1) + 1, longer, '8');
        text += line + (texts.OneIn(9) ? "\r\n" : "\n");
        for (int lines = texts.OneIn(9) ? texts.Below(200) : 0; lines > 0; --lines) {
            text += texts.Line() + "\n";
        }
    }
    if (texts.OneIn(3)) { text[text.size() - static_cast<std::size_t>(texts.Below(2000000)) - 1] = '\0'; }
    return text;
}

TEST(ScanEntitiesEqualsItsPlainForm, OnLargeTextsOfLongLines) {
#ifdef NDEBUG
    constexpr int kTexts = 40;
#else
    constexpr int kTexts = 8;
#endif
    Texts texts(5);
    int marked = 0;
    ExpectSame(kTexts, [&](Comparison& comparison) {
        marked += comparison.Add(LongLines(texts)) && comparison.HadMarks() ? 1 : 0;
        comparison.Add(texts.Text()); // which has none of those marks
    });
    EXPECT_GT(marked, kTexts / 2);
}

} // namespace
} // namespace tarnwick::test
