#pragma once

#include "tools/make/machine.h"
#include "write/xml_document.h"

#include <vector>

// One STEP XML document of the machine: products, their occurrences, and the names of the files that go on.
namespace tarnwick::make {

// What all documents of a machine have in common.
struct DocumentSet {
    const Machine& machine;
    std::vector<bool> ownDocument; // of each node: whether it is described in a document of its own
    FileRoute route = FileRoute::kDirect;
    std::string documentSuffix = ".stpx"; // of the documents' names
    std::string partSuffix = ".stp";      // of the parts' names
};

// As many sub-assemblies as asked for get documents of their own: those of the first level, then those of the
// second, and so on. Without a number the ones that have their own files in an assembly. At most
// MostDocuments.
std::vector<bool> ChooseDocuments(const Machine& machine, int count);
std::vector<bool> ChooseDocuments(const Machine& machine);
int MostDocuments(const Machine& machine);

// The document of one node: the node and the nodes below it that have no document of their own.
void WriteDocument(const DocumentSet& set, std::size_t node, ByteSink* sink);

} // namespace tarnwick::make
