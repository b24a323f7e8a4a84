#pragma once

#include "platform/opened_file.h"
#include "text/look_up.h"
#include "xml/document_archive.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

// Where the record of one member of an archive stands.
struct ZipEntry {
    std::uint64_t centralOffset; // in the central directory
    std::uint64_t memberIndex;   // its number
};

class ZipInput;

// An opened ZIP archive.
class ZipArchive final : public DocumentArchive {
public:
    // Opens the archive `path`, or else `path` with ".zip" after it, and indexes its members; says on the
    // console what was opened, and on standard output that nothing was.
    explicit ZipArchive(const char* path);
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    ~ZipArchive() override;

    bool IsOpen() const { return zip_ != nullptr; }
    // Why it isn't open, where that isn't for what the file is: an errno, else 0.
    int Failure() const { return failure_; }
    // Members that can be asked for.
    std::size_t MemberCount() const { return members_.Count(); }

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
    const char* GoTo(const ZipEntry& entry, MemberInfo* info);
    const char* GetBufferCurrentFile(const MemberInfo& info, unsigned char* buffer, std::uint32_t* size);
    const char* WhyFailed();
    char* ReadStored(const MemberInfo& info, TextMemory& memory, std::size_t* size, const char** problem);
    char* ReadDeflated(const MemberInfo& info, TextMemory& memory, std::size_t* size, const char** problem);
    const char* FindData(std::uint64_t* offset);
    std::size_t BytesThere(const MemberInfo& info, std::uint64_t offset) const;

    struct CloseZip {
        void operator()(void* zip) const;
    };
    std::optional<OpenedFile> file_;
    std::unique_ptr<ZipInput> input_;     // what the library reads that file by
    std::unique_ptr<void, CloseZip> zip_; // the library's handle
    int failure_ = 0;
    // By name; of two of one name the first in the central directory counts. It spares a walk over the
    // directory for every member that is wanted.
    LookUp<std::string_view, ZipEntry> members_;
    std::deque<std::string> names_; // of the members, where the keys point
};

} // namespace tarnwick
