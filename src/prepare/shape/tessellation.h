#pragma once

#include "exchange/exchange_file.h"
#include "mesher/mesh_format.h"
#include "prepare/placement/transform.h"
#include "text/look_up.h"
#include "write/p21_writer.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Tessellation in whatever form a file has it (ISO 10303-42, tessellated_item), written in the form that the
// viewer reads.
namespace tarnwick::prepare {

// A face or a set of triangles in a text. All lists are as they are written there.
struct SourceFace {
    std::uint64_t entity = 0;
    std::uint64_t coordinates = 0;
    std::uint64_t link = 0; // the exact face, 0 for none
    std::string_view normals;
    std::string_view pnindex;  // empty where the face numbers the points directly
    std::string_view lists[2]; // triangles; or strips and fans; or the control points of curved triangles
    enum class Form : std::uint8_t { kTriangles, kStripsAndFans, kBezier } form = Form::kTriangles;
    Transform at; // of the face in the item that it was found through, in the text's own length unit
};

// A solid, a shell or another item with the faces in it.
struct SourceBody {
    std::uint64_t link = 0; // the exact body, 0 for none
    bool isSolid = false;
    std::vector<SourceFace> faces;
};

using TellLoss = std::function<void(std::uint64_t entity, std::string why)>;

// The faces in an item, however deep.
SourceBody FacesOf(const ExchangeFile& file, std::uint64_t item, const TellLoss& tell);

// Writes faces of one file into one part. Lists of points that faces share are written once.
class FaceWriter {
public:
    FaceWriter(const ExchangeFile& file, P21Writer* out, TellLoss tell)
        : file_(file), out_(*out), tell_(std::move(tell)) {}

    // Faces that will be written, to learn which share their points.
    void Announce(std::span<const SourceFace> faces);
    // Nothing where no triangle of the face is left. `at` is applied after the face's own transform; where
    // both change nothing, the numbers stay as they are written.
    std::optional<EntityId> Write(const SourceFace& face, const Transform& at);
    std::size_t Triangles() const { return triangles_; }

private:
    struct PointList {
        EntityId id;
        std::size_t points = 0;
        bool isWritten = false;
        std::size_t faces = 0;  // that number its points directly
        std::size_t toCome = 0; // faces that will use it
        bool isShared = false;  // by several faces
    };
    std::optional<EntityId> Copy(const SourceFace& face);
    std::optional<EntityId> Make(const SourceFace& face, const Transform& at);
    bool WritePoints(std::uint64_t coordinates, PointList* list);
    std::string_view PointsText(std::uint64_t coordinates) const;
    const std::vector<Vec3>& PointsOf(std::uint64_t coordinates);
    void LetGo(std::uint64_t coordinates);

    const ExchangeFile& file_;
    P21Writer& out_;
    TellLoss tell_;
    LookUp<std::uint64_t, PointList> lists_;
    LookUp<std::uint64_t, std::vector<Vec3>> parsed_; // shared lists, each kept until its last face
    std::vector<Vec3> lastParsed_;                    // the last list of all others
    std::string scratch_[5];
    std::size_t triangles_ = 0;
};

// Moves points and normals; where that mirrors, turns the triangles round.
void MoveFace(const Transform& at, MeshFace* face);

// Writes a face with all that it needs; nothing where it has no triangle.
std::optional<EntityId> WriteMeshFace(P21Writer* out, const MeshFace& face);

} // namespace tarnwick::prepare
