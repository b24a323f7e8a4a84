#include "geometry/face_outcome.h"

#include "p21/keyword_codes.h"
#include "p21/text_walk.h"
#include "platform/text_block.h"

#include <memory>

namespace tarnwick::test {

EntityLine::EntityLine(std::string content)
    : text(std::move(content)), id(StringToInteger(text.c_str() + 1)),
      code(ClassifyEntity((text + std::string(64, '\0')).c_str() + text.find('=') + 1)) {}

FaceText::FaceText(const std::vector<EntityLine>& lines) : text("ISO-10303-21;\nDATA;\n") {
    for (const EntityLine& line : lines) {
        records.push_back({line.id, static_cast<std::int32_t>(text.size()), 0, line.code, {}});
        text += line.text + "\n";
    }
    text += "ENDSEC;\nEND-ISO-10303-21;\n";
}

namespace {

std::vector<EntityLine> EntityLines(const std::vector<std::string>& lines) {
    std::vector<EntityLine> entities;
    for (const std::string& line : lines) { entities.emplace_back(line); }
    return entities;
}

template <class T>
std::vector<T> Copied(const T* values, std::int32_t count) {
    return count > 0 ? std::vector<T>(values, values + count) : std::vector<T>();
}

} // namespace

FaceFile::FaceFile(const FaceText& text) : model_(workspace_, "faces.stp") {
    Open(text);
}

FaceFile::FaceFile(const std::vector<std::string>& lines) : model_(workspace_, "faces.stp") {
    Open(FaceText(EntityLines(lines)));
}

void FaceFile::Open(const FaceText& text) {
    block_.assign(text.text.begin(), text.text.end());
    block_.resize(text.text.size() + TextBlock::kPadding, '\0');
    model_.text = block_.data();
    model_.textEnd = block_.data() + text.text.size();
    records_ = text.records;
    const auto bits = HashBits(static_cast<std::int32_t>(records_.size()));
    model_.entityMap = &map_.emplace(&workspace_.index, bits);
    for (P42Ent& record : records_) { model_.entityMap->Add(&record); }
}

FaceOutcome FaceFile::Read(std::int32_t id, StreamCapture* output) {
    std::unique_ptr<StreamCapture> own;
    if (output == nullptr) {
        own = std::make_unique<StreamCapture>(stdout);
        output = own.get();
    }
    StepFaceB face{};
    FaceProblem problem;
    FaceOutcome outcome;
    outcome.result = TraiteFace(&face, model_.Find(id), model_, arena_, &scratch_, &problem);
    outcome.output = output->Take();
    outcome.problem = problem.reason != nullptr ? problem.reason : "";
    outcome.faceId = face.faceId;
    outcome.exactFaceId = face.exactFaceId;
    outcome.pnmax = face.pnmax;
    if (outcome.result < 0) {
        return outcome; // the arrays of a failed face are nobody's
    }
    outcome.vertexCount = face.vertexCount;
    outcome.normalCount = face.normalCount;
    outcome.triangleCount = face.triangleCount;
    outcome.vertices = Copied(face.vertices, 3 * face.vertexCount);
    outcome.normals = Copied(face.normals, 3 * face.normalCount);
    outcome.triangles = Copied(face.triangles, 3 * face.triangleCount);
    outcome.pnindex = Copied(face.pnindex, face.pnindexCount);
    outcome.box = Copied(face.box, 6);
    return outcome;
}

} // namespace tarnwick::test
