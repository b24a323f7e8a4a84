#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// Readable zeros after a text that is in memory.
inline constexpr std::size_t kBytesPadding = 32;

// What FileBytes::error is where memory is what it lacks.
inline constexpr char kNotEnoughMemory[] = "there is not enough memory for it";

// The bytes of a file, unpacked; `error` says in words why there are none.
struct FileBytes {
    std::unique_ptr<char[]> data;
    std::size_t size = 0; // without the padding
    std::string error;
    // XXH3 of 128 bits, as hexadecimal digits: of a file as it lies there, packed or not; of a member's
    // bytes.
    std::string digest;

    bool IsRead() const { return data != nullptr; }
    std::string_view Text() const { return {data.get(), size}; }
};

// Reads a file whole. Its first bytes tell how it is packed, not its name: a gzip or zlib stream is inflated;
// of a ZIP archive, the first member that has a name of a STEP file (or the first of all). Never more than
// `most` bytes come out. Any thread.
FileBytes ReadFileBytes(const std::string& path, std::size_t most);

// The members of a ZIP archive that have a name of a STEP file, in its order; none for any other file.
struct StepMembers {
    std::vector<std::string> names;
    std::string error; // why there may be more, empty otherwise
};
// Any thread.
StepMembers StepMembersOf(const std::string& path);

// Reads a member of a ZIP archive whole; one that is a gzip or zlib stream is inflated. Any thread.
FileBytes ReadMemberBytes(const std::string& archive, const std::string& member, std::size_t most);

// What `digest` of ReadFileBytes would be, without keeping the bytes; empty where the file can't be read.
std::string DigestOfFile(const std::string& path);

} // namespace tarnwick
