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

// Where the central directory of an archive has the record of one member.
struct ZipEntry {
    std::uint64_t centralOffset; // of the record
    std::uint64_t memberIndex;   // the number of the record
};

class ZipInput;

// An opened ZIP archive.
class ZipArchive final : public DocumentArchive {
public:
    // Opens the archive `path`, or else `path` with ".zip" after it, and indexes its members. Prints what was
    // opened on the console; if nothing was, says so on standard output.
    explicit ZipArchive(const char* path);
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    ~ZipArchive() override;

    bool IsOpen() const { return zip_ != nullptr; }
    // The errno when the system couldn't open or read it, else 0.
    int Failure() const { return failure_; }
    // The members that can be read.
    std::size_t MemberCount() const { return members_.Count(); }

    // The member's own bytes after a gzip head of ten bytes.
    Packed ReadPacked(const char* name) override;
    // Reads a stored or deflated member.
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
    std::unique_ptr<ZipInput> input_;     // through which the library reads that file
    std::unique_ptr<void, CloseZip> zip_; // the library's handle
    int failure_ = 0;
    // By name, so that no member needs a search through the directory; of two with the same name the first in
    // the directory counts.
    LookUp<std::string_view, ZipEntry> members_;
    std::deque<std::string> names_; // of the members, where the keys point
};

} // namespace tarnwick
