#pragma once

#include <cstddef>
#include <cstdint>

namespace tarnwick {

// Takes triples "(a,b,c)" with a comma between them, in two thirds of the time that they take number by
// number, on processors with AVX2 and BMI2; on others none. A real is digits, a point and digits, 16
// characters at most, perhaps with a "-" before them, and gives the same bits as ParseReal. An index is 1 to
// 8 digits, and gives its value less 1. Stops at the first triple in any other form.
//
// *p is the place of the first "("; 64 bytes after the end of the text must be readable. Moves *p to the
// place after the last ")" that was taken, and returns how many triples `out` got, at most `most`.
std::size_t TakeTriples(const char** p, float* out, std::size_t most);
std::size_t TakeTriples(const char** p, std::uint32_t* out, std::size_t most);

} // namespace tarnwick
