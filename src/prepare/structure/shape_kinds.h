#pragma once

#include <string_view>

// Which entities are shape, by their keywords.
namespace tarnwick::prepare {

// A face or a set of triangles, or what holds such (ISO 10303-42, tessellated_shape).
bool IsTessellated(std::string_view keyword);
// A body or a set of surfaces that the kernel makes faces of.
bool IsExactBody(std::string_view keyword);
// Solids that are described by how they are made. The kernel knows none of them.
bool IsConstructiveSolid(std::string_view keyword);

} // namespace tarnwick::prepare
