// The face reader against the plain sequence of its moves, on well-formed lists and on damaged ones.

#include "geometry/face_outcome.h"
#include "geometry/plain_face.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {
namespace {

class Maker {
public:
    explicit Maker(std::uint32_t seed) : random_(seed) {}

    int Below(int limit) { return static_cast<int>(random_() % static_cast<std::uint32_t>(limit)); }
    bool OneIn(int n) { return Below(n) == 0; }

    std::string Real() {
        std::string text = OneIn(3) ? "-" : OneIn(20) ? "+" : "";
        text += std::to_string(Below(OneIn(3) ? 100000 : 10));
        if (!OneIn(10)) {
            text += ".";
            for (int digits = Below(9); digits > 0; --digits) { text += static_cast<char>('0' + Below(10)); }
        }
        if (OneIn(6)) {
            text += OneIn(2) ? "E-" : OneIn(2) ? "E+" : "E";
            text += std::to_string(Below(11));
        }
        return text;
    }
    std::string Blank(int oneIn = 12) { return OneIn(oneIn) ? (OneIn(3) ? "  " : " ") : ""; }
    std::string Triple(const std::string& a, const std::string& b, const std::string& c) {
        return "(" + Blank() + a + Blank() + "," + Blank() + b + "," + Blank() + c + Blank() + ")";
    }
    std::string Triples(int count) {
        std::string text = "(" + Blank();
        for (int i = 0; i < count; ++i) {
            text += (i > 0 ? "," + Blank(20) : "") + Triple(Real(), Real(), Real());
        }
        return text + ")";
    }
    std::string Index(int most) {
        return std::to_string(OneIn(60) ? Below(3 * most) - most : 1 + Below(most));
    }
    std::string Indices(int count, int most) {
        std::string text = "(";
        for (int i = 0; i < count; ++i) { text += (i > 0 ? "," + Blank(20) : "") + Index(most); }
        return text + Blank(30) + ")";
    }
    std::string IndexLists(int most) {
        if (OneIn(4)) { return OneIn(2) ? "$" : "()"; }
        std::string text = "(";
        for (int lists = 1 + Below(4), i = 0; i < lists; ++i) {
            text += (i > 0 ? "," : "") + Indices(1 + Below(7), most);
        }
        return text + ")";
    }
    std::string Triangles(int most) {
        std::string text = "(" + Blank();
        for (int count = 1 + Below(8), i = 0; i < count; ++i) {
            text += (i > 0 ? "," + Blank(20) : "") + Triple(Index(most), Index(most), Index(most));
        }
        return text + ")";
    }
    std::string CoordinatesList(int id, int points) {
        return "#" + std::to_string(id) + "=COORDINATES_LIST(''," + std::to_string(points) + "," + Blank() +
               Triples(points) + ");";
    }
    std::string Face(int id, int listId, int points) {
        const int code = Below(3);
        std::string text = "#" + std::to_string(id) + "=";
        text += code == 0   ? "TRIANGULATED_FACE("
                : code == 1 ? "COMPLEX_TRIANGULATED_FACE("
                            : "COMPLEX_TRIANGULATED_SURFACE_SET(";
        text += OneIn(30)   ? "'a,b'"
                : OneIn(30) ? "'a name that is rather long and says nothing at all about it'"
                            : "''";
        text += "," + Blank() + "#" + std::to_string(OneIn(60) ? 99 : listId);
        // A blank before the "$" would send the walk for pnmax to the next digit.
        text += OneIn(4) ? ",$" : "," + Blank() + std::to_string(Below(2 * points));
        int vertices = points;
        std::string pnindex = OneIn(2) ? "$" : "()";
        if (OneIn(2)) {
            vertices = 1 + Below(points);
            pnindex = "(";
            for (int i = 0; i < vertices; ++i) {
                pnindex += (i > 0 ? "," : "") + std::to_string(1 + Below(points));
            }
            pnindex += ")";
        }
        const int normals = Below(6);
        text += "," + Blank();
        text += normals == 0   ? "$"
                : normals == 1 ? "()"
                : normals == 2 ? Triples(1)
                : normals == 3 ? Triples(1 + Below(points + 1))
                               : Triples(vertices);
        if (code != 2) { text += "," + Blank() + (OneIn(2) ? "$" : "#" + std::to_string(Below(500))); }
        text += "," + Blank() + pnindex;
        text += "," + Blank() + (code == 0 ? Triangles(vertices) : IndexLists(vertices));
        if (code != 0) { text += "," + Blank() + IndexLists(vertices); }
        return text + ");";
    }
    // Deletes, inserts or replaces a character after the line's number.
    void Damage(std::string* line) {
        static constexpr std::string_view kCharacters = "  \n\n\r\t(())),,,$#'0123456789.-E;\x80";
        const std::size_t start = line->find('=') + 1;
        const std::size_t place =
            start + static_cast<std::size_t>(Below(static_cast<int>(line->size() - start)));
        const char c =
            OneIn(40) ? '\0'
                      : kCharacters[static_cast<std::size_t>(Below(static_cast<int>(kCharacters.size())))];
        switch (Below(3)) {
        case 0:
            line->erase(place, 1 + static_cast<std::size_t>(OneIn(10) ? Below(20) : 0));
            break;
        case 1:
            line->insert(place, 1, c);
            break;
        default:
            (*line)[place] = c;
        }
    }

private:
    std::mt19937 random_;
};

bool SameFloats(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

// Empty when they agree, else what differs.
std::string Difference(const FaceOutcome& real, const FaceOutcome& plain) {
    if (real.result != plain.result) {
        return "result " + std::to_string(real.result) + " (" + real.problem + ") and not " +
               std::to_string(plain.result);
    }
    if (real.output != plain.output) {
        return "message '" + real.output + "' and not '" + plain.output + "'";
    }
    if (!real.problem.empty()) { return "a problem: " + real.problem; }
    if (real.result < 0) { return ""; }
    return real.faceId != plain.faceId                  ? "faceId"
           : real.exactFaceId != plain.exactFaceId      ? "exactFaceId"
           : real.pnmax != plain.pnmax                  ? "pnmax"
           : real.vertexCount != plain.vertexCount      ? "vertexCount"
           : real.normalCount != plain.normalCount      ? "normalCount"
           : real.triangleCount != plain.triangleCount  ? "triangleCount"
           : !SameFloats(real.vertices, plain.vertices) ? "vertices"
           : !SameFloats(real.normals, plain.normals)   ? "normals"
           : real.triangles != plain.triangles          ? "triangles"
           : real.pnindex != plain.pnindex              ? "pnindex"
           : !SameFloats(real.box, plain.box)           ? "box"
                                                        : "";
}

std::string Shown(std::string text) {
    for (std::size_t i; (i = text.find('\0')) != std::string::npos;) { text.replace(i, 1, "<NUL>"); }
    return text;
}

struct Tally {
    int defined = 0;
    int undefined = 0;
    int messages = 0;
    int failures = 0;
    std::vector<std::string> differences;
};

// Reads the faces of a text with both readers until one has no outcome.
void Compare(const std::vector<EntityLine>& lines, StreamCapture* output, Tally* tally) {
    const FaceText text(lines);
    PlainFaceReader plainReader(text);
    FaceFile file(text);
    const auto differ = [&](const EntityLine& line, const std::string& difference) {
        if (tally->differences.size() < 5) {
            tally->differences.push_back("face #" + std::to_string(line.id) + ": " + difference + "\n" +
                                         Shown(text.text));
        } else {
            tally->differences.emplace_back();
        }
    };
    for (const EntityLine& line : lines) {
        if (line.code != 17 && line.code != 18 && line.code != 20) { continue; }
        FaceOutcome plain;
        try {
            plain = plainReader.Read(line.id);
        } catch (const NoOutcome& none) {
            ++tally->undefined;
            const FaceOutcome real = file.Read(line.id, output);
            if (real.result != -1) { differ(line, std::string("accepted, though ") + none.reason); }
            return;
        } catch (const EndsProcess&) { return; }
        const FaceOutcome real = file.Read(line.id, output);
        ++tally->defined;
        tally->messages += plain.output.empty() ? 0 : 1;
        tally->failures += plain.result != 0 ? 1 : 0;
        const std::string difference = Difference(real, plain);
        if (!difference.empty()) {
            differ(line, difference);
            return;
        }
        if (file.Text() != plainReader.Text()) {
            differ(line, "other marks in the text");
            return;
        }
    }
}

void Expect(const Tally& tally) {
    EXPECT_EQ(tally.differences.size(), 0u);
    for (const std::string& difference : tally.differences) {
        if (!difference.empty()) { ADD_FAILURE() << difference; }
    }
}

// A text of one or two lists and up to four faces. The lists stand before or after their faces.
std::vector<EntityLine> RandomLines(Maker& maker, int damages) {
    const int lists = 1 + maker.Below(2);
    int points[2];
    std::vector<std::string> lines;
    for (int list = 0; list < lists; ++list) {
        points[list] = 1 + maker.Below(12);
        lines.push_back(maker.CoordinatesList(10 + list, points[list]));
    }
    const int faces = 1 + maker.Below(4);
    for (int face = 0; face < faces; ++face) {
        const int list = maker.Below(lists);
        lines.push_back(maker.Face(20 + face, 10 + list, points[list]));
    }
    if (maker.OneIn(2)) { std::swap(lines.front(), lines.back()); }
    std::vector<EntityLine> entities(lines.begin(), lines.end());
    for (; damages > 0; --damages) {
        maker.Damage(
            &entities[static_cast<std::size_t>(maker.Below(static_cast<int>(entities.size())))].text);
    }
    return entities;
}

#ifdef NDEBUG
constexpr int kTexts = 20000;
#else
constexpr int kTexts = 3000;
#endif

TEST(TraiteFaceEqualsItsPlainForm, OnWellFormedFaces) {
    Maker maker(1);
    Tally tally;
    {
        StreamCapture output(stdout);
        for (int i = 0; i < kTexts / 2; ++i) { Compare(RandomLines(maker, 0), &output, &tally); }
    }
    Expect(tally);
    EXPECT_GT(tally.defined, kTexts / 2);
}

TEST(TraiteFaceEqualsItsPlainForm, OnFacesWithOneDamage) {
    Maker maker(2);
    Tally tally;
    {
        StreamCapture output(stdout);
        for (int i = 0; i < kTexts; ++i) { Compare(RandomLines(maker, 1), &output, &tally); }
    }
    Expect(tally);
    EXPECT_GT(tally.messages, kTexts / 100);
    EXPECT_GT(tally.failures, kTexts / 100);
    EXPECT_GT(tally.undefined, kTexts / 100);
}

TEST(TraiteFaceEqualsItsPlainForm, OnFacesWithSeveralDamages) {
    Maker maker(3);
    Tally tally;
    {
        StreamCapture output(stdout);
        for (int i = 0; i < kTexts; ++i) { Compare(RandomLines(maker, 2 + maker.Below(4)), &output, &tally); }
    }
    Expect(tally);
}

// A line feed, a blank or a lost character at each place of a line in turn.
TEST(TraiteFaceEqualsItsPlainForm, WithEachCharacterDamagedInTurn) {
    const std::vector<std::string> lines{
        "#10=COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.),(0.,1.,0.)));",
        "#11=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),#5,(1,2,3,4),((1,2,3),(1,3,4)));",
        "#12=COMPLEX_TRIANGULATED_FACE('',#10,4,((0.,0.,1.),(0.,1.,0.)),$,(1,2,4),((1,2,3),(3,2)),((1,2,3)))"
        ";",
        "#13=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,$,$,$,((1,2,3,4)),$);",
        "#14=TRIANGULATED_FACE('',#10,$,$,$,(),((1,2,3)));",
    };
    Tally tally;
    {
        StreamCapture output(stdout);
        for (std::size_t line = 0; line < lines.size(); ++line) {
            for (std::size_t place = lines[line].find('=') + 1; place < lines[line].size(); ++place) {
                for (const char c : {'\n', ' ', ')', '(', ',', '$', '#', '7', '\0'}) {
                    std::vector<EntityLine> entities(lines.begin(), lines.end());
                    entities[line].text.insert(place, 1, c);
                    Compare(entities, &output, &tally);
                    entities[line].text[place + 1] = c;
                    entities[line].text.erase(place, 1);
                    Compare(entities, &output, &tally);
                }
                std::vector<EntityLine> entities(lines.begin(), lines.end());
                entities[line].text.erase(place, 1);
                Compare(entities, &output, &tally);
            }
        }
    }
    Expect(tally);
}

} // namespace
} // namespace tarnwick::test
