#pragma once

#include "text/text_file.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tarnwick {

// An archive in place of the file system: the documents and parts of an assembly are its members. It has one
// file position, so threads must take turns.
class DocumentArchive {
public:
    virtual ~DocumentArchive() = default;

    // A member's bytes, packed so that they inflate like a file.
    struct Packed {
        std::unique_ptr<unsigned char[]> data; // null when there is no such member
        std::uint32_t size = 0;
        const char* oddity = nullptr; // why it won't inflate, if its record tells; a phrase
    };
    virtual Packed ReadPacked(const char* name) = 0;

    // The text of a member, with a NUL after it, in `memory`. Null, with the reason in *problem, when it
    // can't be read.
    virtual char* ReadMember(const char* name, TextMemory& memory, std::size_t* size,
                             const char** problem) = 0;
};

} // namespace tarnwick
