#pragma once

#include "prepare/source_files.h"
#include "prepare/structure/structure.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

// The products of a file and of all that it refers to, as one tree of parts and uses without mirrored places.
namespace tarnwick::prepare {

// One of the files. Only the first keeps its text; the others are read again when their shape is needed.
struct WholeFileEntry {
    std::string path;
    std::string member; // of the archive that `path` is; empty for the file itself or the first member
    std::string digest;
    std::unique_ptr<LoadedSource> source; // null where the text isn't kept
    FileStructure structure;
};

struct WholeUse {
    std::size_t child = 0;
    Transform at; // rigid, in millimetres
};

struct WholeProduct {
    std::string name; // unique, as the viewer takes it
    std::size_t file = 0;
    std::vector<ShapeItem> shape; // often empty
    Transform turn;               // of the shape, where a use mirrors or scales it
    std::uint64_t style = 0;      // of its uses, as FileUse has them
    std::uint64_t context = 0;
    std::vector<WholeUse> uses;
};

struct Whole {
    std::vector<WholeFileEntry> files; // the first is the top, or the first of an archive
    std::vector<WholeProduct> products;
    std::size_t root = 0;
    double unit = 1;                 // millimetres of a length unit of the top
    std::vector<std::string> missed; // paths of files that are named and not there
    std::vector<Loss> losses;
    bool lacksMemory = false; // some of it isn't read for want of memory
    std::string error;        // why there is nothing, empty otherwise
};

// `path` is the top file's. Files that are named and not there are among the losses. `cancel` may be null;
// where it becomes true, what was read so far comes back. Any thread.
Whole LoadWhole(const std::string& path, const std::atomic<bool>* cancel);

// How often each product is placed: uses multiply from the root on. 0 for what the root doesn't lead to; the
// largest number where none is large enough.
std::vector<std::size_t> PlacesOf(const Whole& whole);

// A name as the viewer's readers take it: without comma, quote and control characters, at most 200 bytes.
std::string ViewerName(std::string_view name);

} // namespace tarnwick::prepare
