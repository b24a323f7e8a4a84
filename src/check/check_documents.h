#pragma once

#include "check/findings.h"
#include "product/scene_records.h"
#include "xml/document_archive.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick {

// A file that documents lead to.
struct DocumentFile {
    std::string path; // as it is opened, or the member of the archive
    std::string product;
};

// What STEP XML documents say. They are read as the load reads them, except where it would never return.
struct CheckedDocuments {
    std::vector<std::string> paths;     // of the documents that could be opened; the first is the root
    std::vector<Finding> findings;      // `file` is the place among the paths
    std::vector<DocumentFile> unread;   // documents that could not be opened
    std::vector<DocumentFile> tooLarge; // likewise, for want of memory
    std::vector<DocumentFile> parts;    // files of parts, each once
    std::int64_t placedParts = 0;       // uses of products with a part file, multiplied through
};

// `path` is that of the root document; in an archive, its member. `archive` is null for files, `rootName`
// where the whole document is meant.
CheckedDocuments CheckDocuments(const std::string& path, const char* rootName, DocumentArchive* archive);

} // namespace tarnwick
