#pragma once

#include "prepare/prepare.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarnwick::prepare {

// What an outcome was made from, kept beside its parts, so that the same needn't be made twice.
struct PrepareRecord {
    std::string options; // all that changes the outcome, as one line
    // Paths and digests of the files that were read; the digest is empty for a file that wasn't there.
    std::vector<std::pair<std::string, std::string>> inputs;
    std::vector<std::pair<std::string, std::string>> outputs; // of what was written; paths from the folder on
    PrepareResult result;
};

bool WriteRecord(const std::string& path, const PrepareRecord& record);
// Nothing where there is no record, or none of this version.
std::optional<PrepareRecord> ReadRecord(const std::string& path);

// Whether no file has changed since; those of the outcome are in `folder`.
bool Holds(const PrepareRecord& record, const std::string& folder);

} // namespace tarnwick::prepare
