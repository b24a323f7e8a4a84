// Small files for the viewer to show, and what is where in their pictures.
#pragma once

#include <string>

namespace tarnwick::test {

// A plate of 20 by 10 in the plane z = 0 that looks at the eye. Its quarters are faces: upper left red, #30
// of a solid with the material steel; upper right green, #31 of a shell; lower left blue and half
// transparent, #32 of the solid; lower right grey, a surface set, #22.
std::string PlateText();

// An assembly of two such plates, 12 apart, one above the other, in the file plate.stp.
std::string TwoPlatesText();

// Such an assembly of `count` products of one file each, "missing-0.stp" and so on, none of which is there.
std::string MissingPartsText(int count);

// A summary of an assembly: at depth 0 one box of 20 by 10 by 1, at depth 1 its left and its right part, LEFT
// and RIGHT, with a gap from -2 to 2 between them.
std::string SummaryText();

} // namespace tarnwick::test
