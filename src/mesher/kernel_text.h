#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tarnwick {

class ExchangeFile;

// The largest number that an instance keeps in the text: the kernel's numbers have 32 bits.
inline constexpr std::uint64_t kLargestKernelNumber = 2'000'000'000;

struct KernelInput {
    std::string text;
    // Their numbers in the text; a body that isn't in it is left out.
    std::vector<std::uint64_t> bodies;
    // The file's numbers of the instances that have kLargestKernelNumber + 1 and so on in the text.
    std::vector<std::uint64_t> renumbered;

    std::uint64_t OwnNumber(std::uint64_t inText) const {
        const std::uint64_t place = inText - kLargestKernelNumber - 1;
        return inText > kLargestKernelNumber && place < renumbered.size() ? renumbered[place] : inText;
    }
};

// A whole ISO 10303-21 text for the geometry kernel: the bodies and all that they are made of, with their own
// numbers unless those are too large, the geometric representation context with its units, and one
// SHAPE_REPRESENTATION over the bodies. Presentation, annotations, tessellation and products stay out,
// whatever refers to them; strings are empty, but for those of the context. Without a context of that number:
// millimetres and radians. A reference to what isn't there becomes "$", and in the list of a shell's faces it
// is left out. Takes time and memory by the text that comes out, not by the file.
KernelInput KernelText(const ExchangeFile& file, std::span<const std::uint64_t> bodies,
                       std::uint64_t context);

// The numbers of the faces that a body consists of, each once, in the order of the text's lists; of a
// geometric set its surfaces.
std::vector<std::uint64_t> FacesOf(const ExchangeFile& file, std::uint64_t body);

} // namespace tarnwick
