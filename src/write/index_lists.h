#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tarnwick {

// The number of a vertex, from 0.
using Index = std::uint32_t;
using Triangle = std::array<Index, 3>;

// Lists of vertex numbers, one after the other; ends[k] is where list k ends.
struct IndexLists {
    std::vector<Index> indices;
    std::vector<std::size_t> ends;

    std::size_t Count() const { return ends.size(); }
    std::span<const Index> List(std::size_t k) const {
        const std::size_t start = k == 0 ? 0 : ends[k - 1];
        return {indices.data() + start, ends[k] - start};
    }
    void CloseList() { ends.push_back(indices.size()); }
};

} // namespace tarnwick
