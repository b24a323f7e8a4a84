#pragma once

#include "exchange/exchange_file.h"
#include "exchange/file_bytes.h"
#include "prepare/structure/structure.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tarnwick::prepare {

// A file that was read: its text, and what it says of products.
struct LoadedSource {
    FileBytes bytes;
    std::unique_ptr<ExchangeFile> file; // null for STEP XML
    FileStructure structure;
    std::string error; // why there is nothing, empty otherwise
};

// Reads ISO 10303-21 and STEP XML, plain or packed; of an archive the member, or where `member` is empty the
// first. Never null; a failure is in `error`. Any thread.
std::unique_ptr<LoadedSource> LoadSource(const std::string& path, const std::string& member);

// The path of the first of the names that is a file in the folder, as it is written or with another ending of
// STEP files; empty for none. Names of other systems, with backslashes or from a root, are looked for below
// the folder. `isOther` tells that the ending is another one.
std::string FindSource(const std::string& folder, const std::vector<std::string>& names, bool* isOther);
// The same among the members of an archive, where `folder` is that of a member.
std::string FindMember(const std::unordered_set<std::string>& members, const std::string& folder,
                       const std::vector<std::string>& names, bool* isOther);

} // namespace tarnwick::prepare
