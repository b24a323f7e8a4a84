#pragma once

#include "exchange/exchange_file.h"
#include "write/p21_writer.h"
#include "write/placement.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::prepare {

// Elements of one kind that aren't drawn.
struct UndrawnElements {
    std::string kind; // their keyword, and what they lack if they should be drawn
    std::size_t count = 0;
    bool isShape = false; // false for curves, points and the like, which have no surface
};

// The surfaces of finite elements: shells as they are, of volumes the outer skin.
struct ElementMesh {
    std::vector<Vec3> nodes; // in millimetres, those that the quads use
    // Numbers of nodes from 0, counter-clockwise seen from outside; a triangle repeats its last corner.
    std::vector<std::array<std::uint32_t, 4>> quads;
    // The thickness at the corners of each quad, in millimetres. Empty where it is the same everywhere, or
    // isn't told.
    std::vector<std::array<float, 4>> values;
    std::vector<UndrawnElements> undrawn; // in the order of the file's keywords
};

// Whether the file has an element of any kind.
bool HasElements(const ExchangeFile& file);

// Reads all elements of a file. Corners count, nodes within edges and faces don't. Nodes are in the
// coordinate system, cartesian, cylindrical or spherical, of the point representation that lists them. What
// can't be read is counted with what isn't drawn. Linear in the file, but for a sort of the faces of volumes.
ElementMesh ReadElements(const ExchangeFile& file);

// The thickness with which a mesh without values is written: light blue in the viewer, whatever the others
// are.
inline constexpr double kPlainThickness = 7.9;

// Writes a whole file of schema 209 in the form that the viewer reads: four-noded shells whose sections have
// the thicknesses. `name` is the product's id and name.
void WriteElementFile(const ElementMesh& mesh, std::string_view name, P21Writer* out);

} // namespace tarnwick::prepare
