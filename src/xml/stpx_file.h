#pragma once

#include "platform/text_block.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick {

// The blocks in which documents are read one after the other.
struct DocumentMemory {
    TextBlock text;
    TextBlock compressed;
};

// One document text on its way into memory.
struct StpxFile {
    // How the bytes are packed, from the name.
    static constexpr std::int32_t kPlain = 0;
    static constexpr std::int32_t kTwoCharacterSuffix = 1; // the name ends in Z or z
    static constexpr std::int32_t kOneCharacterSuffix = 2; // a "z" was appended by the fall-back

    double readSeconds = 0;
    double inflateSeconds = 0;
    std::string path;     // rewritten by the fall-back rule; empty for a document out of an archive
    char* text = nullptr; // in the memory that it was read into, null until then
    std::size_t size = 0; // its characters
    std::int32_t compression = kPlain;
};

// A file that isn't read yet.
StpxFile OpenStpxFile(std::string path);

// Reads the file, inflating what its name says is compressed, under its name or else under that of its
// compressed or plain twin. Returns 0, or 1 when it can't be had.
int ReadStpxFile(StpxFile& file, DocumentMemory& memory);

// 1 when the name's extension is "stpx" or "stpxz" in any case.
int IsXmlFileName(std::string_view name);

} // namespace tarnwick
