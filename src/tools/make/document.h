#pragma once

#include "tools/make/machine.h"
#include "write/xml_document.h"

#include <vector>

// One STEP XML document of the machine: products, their occurrences, and the names of the files with the
// rest.
namespace tarnwick::make {

// What all documents of a machine have in common.
struct DocumentSet {
    const Machine& machine;
    std::vector<bool> ownDocument; // of each node: whether it is described in a document of its own
    FileRoute route = FileRoute::kDirect;
    std::string documentSuffix = ".stpx"; // of the documents' names
    std::string partSuffix = ".stp";      // of the parts' names
};

// Which nodes get documents of their own: `count` of them, those of the first level, then those of the
// second, and so on, at most MostDocuments. Without a number, those that have files of their own in an
// assembly.
std::vector<bool> ChooseDocuments(const Machine& machine, int count);
std::vector<bool> ChooseDocuments(const Machine& machine);
int MostDocuments(const Machine& machine);

// The document of one node: the node and the nodes below it that have no document of their own.
void WriteDocument(const DocumentSet& set, std::size_t node, ByteSink* sink);

} // namespace tarnwick::make
