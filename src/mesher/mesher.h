#pragma once

#include "mesher/mesh_format.h"
#include "mesher/mesh_process.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Triangles of exact bodies, which tarnwick-mesh makes in a process of its own.
namespace tarnwick {

class ExchangeFile;

struct MesherOptions {
    std::string program;       // see FindMeshProgram
    double deflection = 0.001; // the most that a triangle is off its surface, as a part of the box's diagonal
    double angle = 20;         // the most between neighbouring pieces of a curve, in degrees
    double timeLimit = 60;     // for one call of Mesh, in seconds
    std::size_t memoryLimit = 0; // address space of the process, in bytes; 0: none
};

struct MeshResult {
    // All that were asked for, in their order; one that failed has no faces.
    std::vector<MeshBody> bodies;
    // In words for a user, what is missing and why; empty where nothing is.
    std::vector<std::string> losses;
    // Likewise, what came otherwise than asked: coarser, or face by face.
    std::vector<std::string> notes;
    bool isCancelled = false;
};

// Has one process of its own, and is used by one thread at a time; any number of meshers work side by side.
class Mesher {
public:
    // `cancel`, if any, is polled while Mesh waits, which ends within 0.1 s once it is true. It must outlive
    // this object.
    explicit Mesher(MesherOptions options, const std::atomic<bool>* cancel = nullptr);

    // The bodies of a part, triangulated together, in the length unit of their context. Bodies that the
    // default algorithm doesn't finish in its share of the time, or lacks faces of, are tried with another
    // one, one by one, and coarser. Returns within the time limit and the moment that it takes to end a
    // process.
    MeshResult Mesh(const ExchangeFile& file, std::span<const std::uint64_t> bodies, std::uint64_t context);

private:
    const MesherOptions options_;
    MeshProcess process_;
};

// The path of tarnwick-mesh: beside this program, in ../libexec or ../lib/tarnwick from there, or where PATH
// says. Empty where there is none.
std::string FindMeshProgram();

} // namespace tarnwick
