#pragma once

#include "prepare/placement/transform.h"
#include "write/index_lists.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Long lists of numbers, read or copied in one pass. `list` is an argument, "((1.,2.,3.),...)", in any
// layout; 16 bytes after it must be readable. A list ends at what is broken; `isWhole` is then false.
namespace tarnwick::prepare {

// Appends the triples to `out` without blanks and exponents. Returns how many there were.
std::size_t CopyTriples(std::string_view list, std::string* out, bool* isWhole);
// Numbers that f64 doesn't hold, or beyond 1e30, break the list.
std::vector<Vec3> ReadTriples(std::string_view list, bool* isWhole);

// Appends "(1,2,3)" of numbers from 1 to `most`. Returns how many there were.
std::size_t CopyIndices(std::string_view list, std::size_t most, std::string* out, bool* isWhole);
std::vector<Index> ReadIndices(std::string_view list, bool* isWhole);

// What lists of lists hold.
enum class ListForm : std::uint8_t { kTriangles, kStrips };
// Appends "((1,2,3),...)" without the lists that have other numbers than 1 to `most`, or too few of them;
// `dropped` counts these. Returns the triangles.
std::size_t CopyLists(std::string_view list, ListForm form, std::size_t most, std::string* out,
                      std::size_t* dropped);
// Each list as it is written, numbers from 1; nothing is left out, and what is no number becomes 0.
IndexLists ReadLists(std::string_view list);

} // namespace tarnwick::prepare
