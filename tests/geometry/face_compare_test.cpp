// The face reader against the plain sequence of its moves, on well-formed lists and on damaged ones.

#include "geometry/face_maker.h"
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
