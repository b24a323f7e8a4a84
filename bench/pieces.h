#pragma once

#include <cstddef>
#include <string>

// The pieces of a load, each beside the least that the machine needs for the same bytes.
namespace tarnwick::bench {

// The bytes of a file, with 64 NULs after them. Ends the program when it can't be read.
std::string ReadBytes(const std::string& path, std::size_t* size);

// Counts `c` in the text by memchr, one call from each to the next.
std::size_t CountByMemchr(const char* text, std::size_t size, char c);

// The reals of the P21 file `path`, by ParseReal, by fast_float and by strtod.
void BenchReals(int turns, const std::string& path);

// The scan and the index of the P21 file `path`, beside a pass over its lines and the writing of the records
// and list nodes.
void BenchIndex(int turns, const std::string& path);

// All of the part in the P21 file `path`, beside a pass over its lines.
void BenchPart(int turns, const std::string& path);

// The structure of the STEP XML document `path`, beside a pass over its tags.
void BenchDocument(int turns, const std::string& path);

// The tables of the summary file `path`, beside a pass over its quotes, and one move of the Depth slider
// beside the writing of its boxes.
void BenchSummary(int turns, const std::string& path);

// The draw list of a tree with a million placed items, beside the writing of their records.
void BenchDrawList(int turns);

} // namespace tarnwick::bench
