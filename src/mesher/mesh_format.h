#pragma once

#include "write/index_lists.h"
#include "write/placement.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What tarnwick-mesh and its client say to each other. Both run on one machine and come from one build, so
// numbers are in its byte order.
namespace tarnwick {

// Of one face. Points are in the length unit of the bodies' context.
struct MeshFace {
    std::uint64_t entity = 0; // of the face in the text; 0 when it isn't known
    std::vector<Vec3> points;
    std::vector<Vec3> normals;       // one for each point, or none; of unit length, pointing outwards
    std::vector<Triangle> triangles; // of points, from 0; counter-clockwise seen from outside
};

struct MeshBody {
    std::uint64_t entity = 0;
    std::vector<MeshFace> faces;          // those with triangles
    std::vector<std::uint64_t> lostFaces; // in the text, but without triangles
};

// Why a body came without its shape, in the kernel's words.
struct MeshProblem {
    std::uint64_t entity = 0; // of the body; 0 for all of them
    std::string words;
};

enum class MeshAlgorithm : std::uint8_t { kDefault, kDelabella };

struct MeshRequest {
    std::string text; // a whole file, see KernelText
    std::vector<std::uint64_t> bodies;
    double deflection = 0.001; // the most that a triangle is off its surface, as a part of the diagonal
    // Of the box that deflection is relative to, in the length unit of the context; 0: the box of all these
    // bodies together.
    double diagonal = 0;
    double angle = 20; // the most between neighbouring pieces of a curve, in degrees
    MeshAlgorithm algorithm = MeshAlgorithm::kDefault;
    // Whether each body is triangulated by itself, and sent as soon as it is done: slower, but a body that
    // the kernel doesn't come back from costs none of the others.
    bool isEach = false;
};

enum class MeshStage : std::uint8_t { kReading, kTransfer, kMeshing };

// What the kernel begins now.
struct MeshProgress {
    MeshStage stage = MeshStage::kReading;
    std::uint64_t body = 0; // that it is about; 0 for all of them
};

struct MeshAnswer {
    double diagonal = 0; // that deflection was relative to, as in the request
    // In the order of the request, those without a shape left out. Their lost faces are those that the kernel
    // made, but found no triangles for; it tells nothing of faces that it didn't make.
    std::vector<MeshBody> bodies;
    std::vector<MeshProblem> problems;
};

// A part is an answer with some of the bodies; more follows.
enum class MeshMessage : std::uint32_t { kRequest = 1, kProgress = 2, kPart = 3, kAnswer = 4 };

// Stands before each message.
struct MeshHead {
    MeshMessage kind = MeshMessage::kRequest;
    std::uint64_t length = 0; // of what follows
};
inline constexpr std::size_t kMeshHeadSize = 16;

// The exit status of a tarnwick-mesh that finds no memory; any other end of it is another failure.
inline constexpr int kMeshOutOfMemory = 3;

// Whole messages, with their heads.
std::string EncodeMesh(const MeshRequest& request);
std::string EncodeMesh(const MeshProgress& progress);
std::string EncodeMesh(const MeshAnswer& answer, MeshMessage kind = MeshMessage::kAnswer);

// Nothing where these kMeshHeadSize bytes begin no message of this version.
std::optional<MeshHead> DecodeMeshHead(std::string_view bytes);

// Read what follows a head. False where a count goes beyond the bytes, bytes are left over, a number isn't
// finite, a triangle has a point that its face lacks, or the normals are fewer or more than the points; the
// record is of no use then. Never takes more memory than a small multiple of the bytes.
bool DecodeMesh(std::string_view bytes, MeshRequest* request);
bool DecodeMesh(std::string_view bytes, MeshProgress* progress);
// What an answer holds is appended.
bool DecodeMesh(std::string_view bytes, MeshAnswer* answer);

} // namespace tarnwick
