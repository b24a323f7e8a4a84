#pragma once

#include "text/opened_file.h"
#include "xml/document_archive.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnwick {

// One member of an archive: where its record stands.
struct ZipEntry {
    std::uint64_t centralOffset; // in the central directory
    std::uint64_t memberIndex;   // its number
    std::string name;
};

// The members by name: a chained hash table of a fixed size, in the order of the central directory. It spares
// a walk over the directory for every member that is wanted.
struct ZipIndex {
    std::int32_t count = 0;
    std::int32_t bits = 0;
    std::int32_t size = 0; // buckets, 2 to the power `bits`
    std::int32_t mask = 0;
    double lookupSeconds = 0;
    std::vector<std::vector<ZipEntry>> buckets;
    // All members, made when a bucket turns out too long to be searched time and again.
    std::unordered_map<std::string_view, const ZipEntry*> far;
};

// An index of 2 to the power `bits` empty buckets.
void ZipIndexInit(ZipIndex& index, std::int32_t bits);

// The bucket of a name: its bytes weighted by their places, the sum folded to the width of the index.
std::int32_t ZipHash(const ZipIndex& index, std::string_view name);

// The first member of this name, or null. Counts the time that it takes.
const ZipEntry* ZipLookup(ZipIndex& index, std::string_view name);

// An opened ZIP archive.
class ZipArchive final : public DocumentArchive {
public:
    // Opens the archive `path`, or else `path` with ".zip" behind it, and indexes its members; says on the
    // console what was opened, and on standard output that nothing was.
    explicit ZipArchive(const char* path);
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;
    ~ZipArchive() override;

    bool IsOpen() const { return zip_ != nullptr; }
    ZipIndex index;

    // A member's raw bytes after a gzip head of ten bytes.
    Packed ReadPacked(const char* name) override;
    // Of a stored or deflated member.
    char* ReadMember(const char* name, TextMemory& memory, std::size_t* size, const char** problem) override;

private:
    struct MemberInfo {
        std::uint64_t compressedSize;
        std::uint64_t uncompressedSize;
        std::uint64_t method;
        bool encrypted;
    };
    void IndexArchive(const char* name);
    bool GoTo(const ZipEntry& entry, MemberInfo* info);
    int GetBufferCurrentFile(const MemberInfo& info, unsigned char* buffer, std::uint32_t* size);
    char* ReadStored(const MemberInfo& info, TextMemory& memory, std::size_t* size, const char** problem);
    char* ReadDeflated(const MemberInfo& info, TextMemory& memory, std::size_t* size, const char** problem);
    bool FindData(std::uint64_t* offset);
    std::size_t BytesThere(const MemberInfo& info, std::uint64_t offset) const;

    void* zip_ = nullptr;            // the library's handle
    std::optional<OpenedFile> file_; // the same file, for the raw bytes
};

} // namespace tarnwick
