#pragma once

#include "write/placement.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The topologies of ISO 10303-104, by their corners.
namespace tarnwick::prepare {

enum class ElementShape : std::uint8_t {
    kNone,
    kTriangle,
    kQuadrilateral,
    kTetrahedron,
    kPyramid,
    kWedge,
    kHexahedron
};

std::size_t CornersOf(ElementShape shape);
inline bool IsVolume(ElementShape shape) {
    return shape >= ElementShape::kTetrahedron;
}

// Numbers of nodes; a triangle repeats its last corner.
using Quad = std::array<std::uint32_t, 4>;

// Appends the faces of a volume, winding counter-clockwise seen from outside, whichever way round its nodes
// are listed. A face whose corners coincide has fewer, and is left out if fewer than three remain.
void AppendFaces(ElementShape shape, std::span<const std::uint32_t> corners, std::span<const Vec3> nodes,
                 std::vector<Quad>* faces);

// A face with each corner once; false if fewer than three are left.
bool MakeQuad(std::span<const std::uint32_t> corners, Quad* quad);

// The faces that have volume on one side only, each once, in their order. Of equal volumes one counts.
std::vector<Quad> SkinOf(const std::vector<Quad>& faces);

} // namespace tarnwick::prepare
