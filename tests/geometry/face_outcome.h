#pragma once

#include "geometry/triangulated_face.h"
#include "p21/step_model.h"
#include "support/capture.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

// One entity line of a text: its number and code stand in it.
struct EntityLine {
    explicit EntityLine(std::string content);

    std::string text;
    std::int32_t id;
    std::int32_t code;
};

// Lines that a face reader gets, put together to one text with something ahead of them and after them.
struct FaceText {
    explicit FaceText(const std::vector<EntityLine>& lines);

    std::string text;
    std::vector<P42Ent> records;
};

// All that the reading of one face leaves.
struct FaceOutcome {
    int result = 0;
    std::string problem; // empty for none
    std::string output;
    std::int32_t faceId = 0;
    std::int32_t exactFaceId = 0;
    std::int32_t pnmax = 0;
    std::int32_t vertexCount = 0;
    std::int32_t normalCount = 0;
    std::int32_t triangleCount = 0;
    std::vector<float> vertices;
    std::vector<float> normals;
    std::vector<std::uint32_t> triangles;
    std::vector<std::int32_t> pnindex;
    std::vector<float> box;
};

// Faces as the program reads them, one after the other, with one scratch for all of them. The text stands in
// a block of its size and the padding that readers may rely on.
class FaceFile {
public:
    explicit FaceFile(const FaceText& text);
    explicit FaceFile(const std::vector<std::string>& lines);

    // Reads the face of a number. `output` is a capture of standard output that is already there.
    FaceOutcome Read(std::int32_t id, StreamCapture* output = nullptr);
    std::string Text() const { return {model_.text, model_.textEnd}; }

private:
    void Open(const FaceText& text);

    ReaderWorkspace workspace_;
    StepModel model_;
    std::vector<char> block_;
    std::vector<P42Ent> records_;
    std::optional<MapP42Ent> map_;
    Arena arena_;
    FaceScratch scratch_;
};

} // namespace tarnwick::test
