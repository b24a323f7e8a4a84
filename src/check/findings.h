#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// What can be wrong with a file, in the order in which to mend it: what keeps it from being read, what leaves
// the whole part out, what leaves out pieces of it, what makes it look different.
enum class FindingKind {
    kExtension,
    kUnread,
    kHeader,
    kTooLong,
    kStands,
    kDocument,
    kNoProduct,
    kDamaged,
    kManyNormals,
    kExactOnly,
    kNoShape,
    kOwnGeometry,
    kNoFile,
    kNoFileName,
    kHidden,
    kSeveralRepresentations,
    kNotDrawn,
    kBrokenList,
    kElement,
    kSwallowed,
    kBlank,
    kName,
    kOneLine,
    kUse,
    kMissing,
    kDoubled,
    kTransparent,
    kBlackMesh,
    kColour,
    kNotListed,
    kNoNormals,
    kNothing,
};
inline constexpr std::size_t kFindingKinds = 32;

// How a kind is called in reports, above its findings, and what to do about it.
struct FindingKindText {
    const char* name;
    const char* heading;
    const char* advice;
    bool isMended; // by tarnwick-prepare
    bool isLoss;   // something isn't drawn
};
const FindingKindText& TextOf(FindingKind kind);

// One thing that keeps a file from showing what it holds.
struct Finding {
    FindingKind kind;
    std::int32_t file = 0;    // index in the report's list of files
    std::int32_t entity = 0;  // entity number; 0 for none
    std::int32_t offset = -1; // in the file's text; -1 for none
    std::int32_t line = 0;    // from 1, once it is known; 0 for none
    std::string text = {};
};

// Sorts the findings by offset, and sets the line of each from its offset in `text` in one pass over it.
void FindLines(std::string_view text, std::vector<Finding>* findings);

// The advice for the first of the findings, or that nothing is wrong.
const char* AdviceFor(const std::vector<Finding>& findings);

} // namespace tarnwick
