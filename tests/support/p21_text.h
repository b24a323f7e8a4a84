#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

using Lines = std::vector<std::string>;

inline constexpr std::string_view kManagedModel = "AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF";

void Append(Lines& lines, const Lines& more);

// All that comes before the first entity of a P21 file: the header and the line "DATA;".
std::string P21Header(std::string_view schema = kManagedModel);

// A whole P21 file with these lines in its data section.
std::string P21Text(const Lines& data, std::string_view schema = kManagedModel);

// A whole P21 file that is one part: a product, a representation (#2) with these items, and the lines.
// `items` is the list as it is written in the file, "(#20,#21)".
std::string PartText(std::string_view items, const Lines& lines);

// The styles #50, a colour, and #51, a colour and a transparency, with all that hangs on them: #50 to #62.
Lines TwoStyles();

// A closed tetrahedron's worth of everything that a part reader walks: two coloured containers, a surface
// set, strips, fans, pnindex, a raw material. Some 2,500 bytes, for tests that damage it everywhere.
std::string SmallPartText();

} // namespace tarnwick::test
