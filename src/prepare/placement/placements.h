#pragma once

#include "exchange/exchange_file.h"
#include "prepare/placement/transform.h"

#include <cstdint>
#include <optional>

// Where things stand: the entities of ISO 10303-42 and -43 that say so. Lengths are multiplied by `unit`.
// Nothing where the entity is another one or can't be read.
namespace tarnwick::prepare {

// CARTESIAN_POINT and DIRECTION, without a unit.
std::optional<Vec3> ReadVec3(const ExchangeFile& file, std::uint64_t number);

// AXIS2_PLACEMENT_3D, AXIS1_PLACEMENT and CARTESIAN_TRANSFORMATION_OPERATOR_3D.
std::optional<Transform> ReadPlacement(const ExchangeFile& file, std::uint64_t number, double unit);

// ITEM_DEFINED_TRANSFORMATION from the space of its first item to that of its second, or a transformation
// operator. The units are those of the spaces of the two items.
std::optional<Transform> ReadTransformation(const ExchangeFile& file, std::uint64_t number, double firstUnit,
                                            double secondUnit);

} // namespace tarnwick::prepare
