#pragma once

#include "prepare/placement/transform.h"
#include "prepare/xml/xml_nodes.h"

#include <functional>
#include <optional>

namespace tarnwick::prepare {

// A transformation given by two axis placements, each an item of a representation.
struct AxisPair {
    pugi::xml_node origin;
    pugi::xml_node target;
};

// What the placement of a use needs to know of its document.
struct PlacementContext {
    const UidTable* uids = nullptr;
    // Millimetres of the length unit in which an item is given.
    std::function<double(pugi::xml_node)> unitOf;
    // Whether the origin of a pair is an item of the parent and its target one of the child, so that the two
    // have changed places.
    std::function<bool(const AxisPair&)> isTurnedAround;
};

// What `placement` or anything that it leads to says: a rotation and a translation, a matrix of twelve or
// sixteen numbers, an axis placement, or a transformation between two of them. Nothing where it can't be
// read, or flattens space. The nine numbers of a rotation are its columns one after the other. In
// millimetres.
std::optional<Transform> ReadPlacement(pugi::xml_node placement, const PlacementContext& context);

// A matrix from nine, twelve or sixteen numbers; nothing for any other count. Nine are the columns. Twelve
// are four columns of three, or three rows of four where only the rows are rigid. Sixteen are columns where
// the fourth numbers of the columns are 0, 0, 0 and 1, rows where those of the rows are, else nothing.
std::optional<Transform> MatrixOf(const std::vector<double>& numbers);

} // namespace tarnwick::prepare
