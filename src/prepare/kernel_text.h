#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tarnwick {

class ExchangeFile;

// The largest number of an instance that the kernel can tell from others.
inline constexpr std::uint64_t kLargestKernelNumber = 2'147'000'000;

// A whole ISO 10303-21 text for the geometry kernel: the bodies and all that they are made of, with their own
// numbers, the geometric representation context with its units, and one SHAPE_REPRESENTATION over the bodies.
// Presentation, annotations, tessellation and products stay out, whatever refers to them; strings are empty,
// but for those of the context. Without a context of that number: millimetres and radians. A reference to
// what isn't there becomes "$", and in the list of a shell's faces it is left out. Takes time and memory by
// the text that comes out, not by the file.
std::string KernelText(const ExchangeFile& file, std::span<const std::uint64_t> bodies,
                       std::uint64_t context);

// The numbers of the faces that a body consists of, each once, in the order of the text's lists; of a
// geometric set its surfaces.
std::vector<std::uint64_t> FacesOf(const ExchangeFile& file, std::uint64_t body);

} // namespace tarnwick
