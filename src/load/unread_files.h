#pragma once

#include "platform/within_memory.h" // kNeedsMemory

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick {

class PartReader;
struct StepModel;

// A file that a load wanted and could not read, to tell the user what is missing.
struct UnreadFile {
    std::int32_t place;      // in the order in which the load wanted its files
    std::string path;        // the one that was tried first
    std::string productName; // the product that asked for it; empty for the file that was to be shown
    const char* reason;      // a phrase, in static memory
};
using UnreadFiles = std::vector<UnreadFile>;

// The reason for a file that was opened, but whose part, structure or mesh was given up. Why is on the
// console.
inline constexpr const char* kGivenUpReason = "is given up";

// Why the file of a model could not be read, from what its Read returned.
const char* UnreadReason(const StepModel& model, int result);
// Why the file of a part was given up; null when it wasn't.
const char* WhyGivenUp(const PartReader& reader);

// Sorts what several threads could not read into the order in which it was wanted.
void SortUnread(UnreadFiles* files);

// Says on the console that memory ran out for a file, and notes it as unread if there is memory for that.
void GiveUpForMemory(const char* path, const char* productName, std::int32_t place, UnreadFiles* files);

} // namespace tarnwick
