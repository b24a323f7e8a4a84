#pragma once

#include "platform/whole_file.h"
#include "write/byte_sink.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Writes a ZIP archive member by member. Not by the usual library, which doesn't check whether it has memory
// for a member's record, nor most failures of what it writes to.
namespace tarnwick {

class ZipWriter {
public:
    explicit ZipWriter(const std::string& path);
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    // A member, deflated unless it is to be stored; `write` is called once with a sink for its content. At
    // most 4 GiB, packed or not.
    bool Add(const std::string& name, bool stored, const std::function<void(ByteSink*)>& write);
    // Writes the directory and gives the archive its name; false when any byte was lost, and then Error()
    // says why. What isn't closed is dropped.
    bool Close();
    const std::string& Error() const { return error_; }

private:
    struct Member {
        std::string name;
        std::uint64_t offset = 0; // of its local header
        std::uint64_t packedSize = 0;
        std::uint64_t size = 0;
        std::uint32_t checksum = 0;
        bool isStored = false;
        bool isText = false;
    };
    class MemberSink;

    void Put(std::string_view bytes);
    void PutNumber(std::uint64_t value, int bytes);
    void PutMethodAndDate(const Member& member);
    void PutSizes(const Member& member);
    void PutLocalHeader(const Member& member);
    void PutDirectoryEntry(const Member& member);
    void PutLargeEnd(std::uint64_t start, std::uint64_t size);
    void PutEnd(std::uint64_t start, std::uint64_t size);
    void Flush();
    bool Fail(const char* reason);
    bool CheckFile();

    WholeFile file_;
    std::string block_; // on its way to the file
    std::uint64_t position_ = 0;
    std::vector<Member> members_;
    std::string error_;
};

} // namespace tarnwick
