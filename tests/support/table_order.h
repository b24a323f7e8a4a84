#pragma once

#include <vector>

namespace tarnwick::test {

// Numbers in the order in which a table of `entityCount` entities has them, worked out the long way.
std::vector<int> TableOrder(const std::vector<int>& ids, int entityCount);

} // namespace tarnwick::test
