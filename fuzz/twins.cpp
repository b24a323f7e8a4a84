// Numbers and faces, read as the program does and by the plain moves that define the outcome.
#include "geometry/face_outcome.h"
#include "geometry/plain_face.h"
#include "harness.h"
#include "platform/text_block.h"
#include "text/parse_real.h"
#include "text/plain_parse_real.h"

#include <algorithm>
#include <cstring>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

void CompareNumbers(std::string_view text) {
    TextBlock block;
    char* const start = block.Get(text.size());
    std::copy(text.begin(), text.end(), start);
    std::fill_n(start + text.size(), TextBlock::kPadding, '\0');
    for (std::size_t i = 0; i < std::min<std::size_t>(text.size(), 200); ++i) {
        const char* end = nullptr;
        const char* plainEnd = nullptr;
        const double value = ParseReal(start + i, &end);
        const double plain = PlainParseReal(start + i, &plainEnd);
        if (std::memcmp(&value, &plain, sizeof value) != 0 || end != plainEnd) {
            fuzz::Finding("two readings of a number differ");
        }
    }
}

bool SameFloats(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0);
}

bool AreEqual(const FaceOutcome& a, const FaceOutcome& b) {
    if (a.result != b.result) { return false; }
    if (a.result < 0) { return true; }
    return a.faceId == b.faceId && a.exactFaceId == b.exactFaceId && a.pnmax == b.pnmax &&
           a.vertexCount == b.vertexCount && a.normalCount == b.normalCount &&
           a.triangleCount == b.triangleCount && SameFloats(a.vertices, b.vertices) &&
           SameFloats(a.normals, b.normals) && a.triangles == b.triangles && a.pnindex == b.pnindex &&
           SameFloats(a.box, b.box);
}

// The lines of the input that are entities.
std::vector<EntityLine> Lines(std::string_view text) {
    std::vector<EntityLine> lines;
    while (!text.empty()) {
        const std::string line(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (line.starts_with('#') && line.find('=') != std::string::npos) { lines.emplace_back(line); }
    }
    return lines;
}

void CompareFaces(const std::vector<EntityLine>& lines) {
    static StreamCapture output(stdout);
    const FaceText text(lines);
    PlainFaceReader plainReader(text);
    FaceFile file(text);
    for (const EntityLine& line : lines) {
        if (line.code != 17 && line.code != 18 && line.code != 20) { continue; }
        try {
            const FaceOutcome plain = plainReader.Read(line.id);
            if (!AreEqual(file.Read(line.id, &output), plain)) {
                fuzz::Finding("two readings of a face differ");
            }
        } catch (const NoOutcome&) {
            if (file.Read(line.id, &output).result != -1) {
                fuzz::Finding("a face without an outcome is accepted");
            }
            return;
        } catch (const EndsProcess&) { return; }
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const std::string_view text = fuzz::Text(data, size);
        CompareNumbers(text);
        CompareFaces(Lines(text));
    });
}
