#include "mesher/mesh_format.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace tarnwick {

namespace {

// "TWM" and the version of the messages.
constexpr std::uint32_t kMagic = 0x014D5754;

// Appends values to a message, whose head it writes.
class MessageWriter {
public:
    explicit MessageWriter(MeshMessage kind, std::size_t expected) {
        bytes_.reserve(kMeshHeadSize + expected);
        Put(kMagic);
        Put(kind);
        Put(std::uint64_t{0});
    }

    template <class Value>
    void Put(const Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void Put(std::string_view text) {
        Put(std::uint64_t{text.size()});
        bytes_.append(text);
    }
    template <class Value>
    void Put(const std::vector<Value>& values) {
        static_assert(std::is_trivially_copyable_v<Value>);
        Put(std::uint64_t{values.size()});
        bytes_.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(Value));
    }

    std::string Finish() {
        const std::uint64_t length = bytes_.size() - kMeshHeadSize;
        std::memcpy(bytes_.data() + kMeshHeadSize - sizeof length, &length, sizeof length);
        return std::move(bytes_);
    }

private:
    std::string bytes_;
};

// Takes values from the front of a message. Once something is missing, all that follows is zero or empty.
class MessageReader {
public:
    explicit MessageReader(std::string_view bytes) : left_(bytes) {}

    template <class Value>
    Value Get() {
        static_assert(std::is_trivially_copyable_v<Value>);
        Value value{};
        if (const char* const from = Take(1, sizeof value)) { std::memcpy(&value, from, sizeof value); }
        return value;
    }
    double GetFinite() {
        const double value = Get<double>();
        if (!std::isfinite(value)) { Fail(); }
        return value;
    }
    void Get(std::string* text) {
        const auto length = Get<std::uint64_t>();
        if (const char* const from = Take(length, 1)) { text->assign(from, length); }
    }
    template <class Value>
    void Get(std::vector<Value>* values) {
        static_assert(std::is_trivially_copyable_v<Value>);
        const auto count = Get<std::uint64_t>();
        const char* const from = Take(count, sizeof(Value));
        if (from != nullptr && count > 0) {
            values->resize(count);
            std::memcpy(values->data(), from, count * sizeof(Value));
        }
    }
    // A count of things of which each takes at least `least` bytes.
    std::size_t GetCount(std::size_t least) {
        const auto count = Get<std::uint64_t>();
        if (count > left_.size() / least) { Fail(); }
        return isWhole_ ? static_cast<std::size_t>(count) : 0;
    }

    void Fail() {
        isWhole_ = false;
        left_ = {};
    }
    bool IsWhole() const { return isWhole_; }
    bool IsAtEnd() const { return isWhole_ && left_.empty(); }

private:
    // The bytes of so many values, or null.
    const char* Take(std::uint64_t count, std::size_t size) {
        if (!isWhole_ || count > left_.size() / size) {
            Fail();
            return nullptr;
        }
        const char* const from = left_.data();
        left_.remove_prefix(static_cast<std::size_t>(count) * size);
        return from;
    }

    std::string_view left_;
    bool isWhole_ = true;
};

bool AreFinite(const std::vector<Vec3>& vectors) {
    return std::all_of(vectors.begin(), vectors.end(), IsFinite);
}

bool IsSound(const MeshFace& face) {
    if (!face.normals.empty() && face.normals.size() != face.points.size()) { return false; }
    const bool areWithin = std::all_of(face.triangles.begin(), face.triangles.end(), [&](const Triangle& t) {
        return std::max({t[0], t[1], t[2]}) < face.points.size();
    });
    return areWithin && AreFinite(face.points) && AreFinite(face.normals);
}

constexpr std::size_t kLeastFace = 4 * sizeof(std::uint64_t);
constexpr std::size_t kLeastBody = 3 * sizeof(std::uint64_t);
constexpr std::size_t kLeastProblem = 2 * sizeof(std::uint64_t);

std::size_t SizeOf(const MeshAnswer& answer) {
    std::size_t size = sizeof(double) + 2 * sizeof(std::uint64_t);
    for (const MeshBody& body : answer.bodies) {
        size += kLeastBody + body.lostFaces.size() * sizeof(std::uint64_t);
        for (const MeshFace& face : body.faces) {
            size += kLeastFace + (face.points.size() + face.normals.size()) * sizeof(Vec3) +
                    face.triangles.size() * sizeof(Triangle);
        }
    }
    for (const MeshProblem& problem : answer.problems) { size += kLeastProblem + problem.words.size(); }
    return size;
}

void GetFace(MessageReader* in, MeshFace* face) {
    face->entity = in->Get<std::uint64_t>();
    in->Get(&face->points);
    in->Get(&face->normals);
    in->Get(&face->triangles);
    if (!IsSound(*face)) { in->Fail(); }
}

void GetBody(MessageReader* in, MeshBody* body) {
    body->entity = in->Get<std::uint64_t>();
    const std::size_t faces = in->GetCount(kLeastFace);
    for (std::size_t i = 0; i < faces && in->IsWhole(); ++i) { GetFace(in, &body->faces.emplace_back()); }
    in->Get(&body->lostFaces);
}

} // namespace

std::string EncodeMesh(const MeshRequest& request) {
    MessageWriter out(MeshMessage::kRequest, request.text.size() + 64 + request.bodies.size() * 8);
    out.Put(request.algorithm);
    out.Put(static_cast<std::uint8_t>(request.isEach));
    out.Put(request.deflection);
    out.Put(request.diagonal);
    out.Put(request.angle);
    out.Put(request.bodies);
    out.Put(std::string_view(request.text));
    return out.Finish();
}

std::string EncodeMesh(const MeshProgress& progress) {
    MessageWriter out(MeshMessage::kProgress, 16);
    out.Put(progress.stage);
    out.Put(progress.body);
    return out.Finish();
}

std::string EncodeMesh(const MeshAnswer& answer, MeshMessage kind) {
    MessageWriter out(kind, SizeOf(answer));
    out.Put(answer.diagonal);
    out.Put(std::uint64_t{answer.bodies.size()});
    for (const MeshBody& body : answer.bodies) {
        out.Put(body.entity);
        out.Put(std::uint64_t{body.faces.size()});
        for (const MeshFace& face : body.faces) {
            out.Put(face.entity);
            out.Put(face.points);
            out.Put(face.normals);
            out.Put(face.triangles);
        }
        out.Put(body.lostFaces);
    }
    out.Put(std::uint64_t{answer.problems.size()});
    for (const MeshProblem& problem : answer.problems) {
        out.Put(problem.entity);
        out.Put(std::string_view(problem.words));
    }
    return out.Finish();
}

std::optional<MeshHead> DecodeMeshHead(std::string_view bytes) {
    MessageReader in(bytes);
    const auto magic = in.Get<std::uint32_t>();
    const auto kind = in.Get<std::uint32_t>();
    const auto length = in.Get<std::uint64_t>();
    const bool isKnown = kind >= static_cast<std::uint32_t>(MeshMessage::kRequest) &&
                         kind <= static_cast<std::uint32_t>(MeshMessage::kAnswer);
    if (!in.IsAtEnd() || magic != kMagic || !isKnown) { return std::nullopt; }
    return MeshHead{static_cast<MeshMessage>(kind), length};
}

bool DecodeMesh(std::string_view bytes, MeshRequest* request) {
    MessageReader in(bytes);
    const auto algorithm = in.Get<std::uint8_t>();
    request->algorithm = static_cast<MeshAlgorithm>(algorithm);
    const auto isEach = in.Get<std::uint8_t>();
    request->isEach = isEach != 0;
    request->deflection = in.GetFinite();
    request->diagonal = in.GetFinite();
    request->angle = in.GetFinite();
    in.Get(&request->bodies);
    in.Get(&request->text);
    return in.IsAtEnd() && algorithm <= static_cast<std::uint8_t>(MeshAlgorithm::kDelabella) && isEach <= 1;
}

bool DecodeMesh(std::string_view bytes, MeshProgress* progress) {
    MessageReader in(bytes);
    const auto stage = in.Get<std::uint8_t>();
    progress->stage = static_cast<MeshStage>(stage);
    progress->body = in.Get<std::uint64_t>();
    return in.IsAtEnd() && stage <= static_cast<std::uint8_t>(MeshStage::kMeshing);
}

bool DecodeMesh(std::string_view bytes, MeshAnswer* answer) {
    MessageReader in(bytes);
    answer->diagonal = in.GetFinite();
    const std::size_t bodies = in.GetCount(kLeastBody);
    for (std::size_t i = 0; i < bodies && in.IsWhole(); ++i) { GetBody(&in, &answer->bodies.emplace_back()); }
    const std::size_t problems = in.GetCount(kLeastProblem);
    for (std::size_t i = 0; i < problems && in.IsWhole(); ++i) {
        MeshProblem& problem = answer->problems.emplace_back();
        problem.entity = in.Get<std::uint64_t>();
        in.Get(&problem.words);
    }
    return in.IsAtEnd();
}

} // namespace tarnwick
