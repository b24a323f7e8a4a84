#include "write/zip_writer.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace tarnwick {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;
constexpr std::uint64_t kLargest32 = 0xFFFFFFFF; // which stands for a number that is elsewhere
constexpr std::uint64_t kLargest16 = 0xFFFF;
constexpr std::uint32_t kLocalHeader = 0x04034B50;
constexpr std::uint32_t kDirectoryEntry = 0x02014B50;
constexpr std::uint32_t kLargeEnd = 0x06064B50;
constexpr std::uint32_t kLargeEndPlace = 0x07064B50;
constexpr std::uint32_t kEnd = 0x06054B50;
constexpr std::uint32_t kVersion = 20;
constexpr std::uint32_t kLargeVersion = 45; // that knows 64 bits
constexpr std::uint32_t kBestSpeedFlags = 6;
// 2024-02-01, a constant: the same options must give the same bytes.
constexpr std::uint32_t kDate = (2024 - 1980) << 25 | 1 << 21 | 1 << 16;
constexpr std::uint64_t kPlaceOfSizes = 14; // in a local header

constexpr const char* kTooLarge = "the archive is too large";

} // namespace

// Packs the content of a member. For speed: packing is most of the work of a large archive, and no reader
// minds the size.
class ZipWriter::MemberSink : public ByteSink {
public:
    MemberSink(ZipWriter& zip, Member& member) : zip_(zip), member_(member) {
        member_.checksum = static_cast<std::uint32_t>(crc32(0, nullptr, 0));
        if (member_.isStored) { return; }
        block_.resize(kBlock);
        constexpr int kNoHeader = -MAX_WBITS;
        constexpr int kUsualMemory = 8;
        isOpen_ = deflateInit2(&stream_, Z_BEST_SPEED, Z_DEFLATED, kNoHeader, kUsualMemory,
                               Z_DEFAULT_STRATEGY) == Z_OK;
        if (!isOpen_) { zip_.Fail(std::strerror(ENOMEM)); }
    }
    MemberSink(const MemberSink&) = delete;
    MemberSink& operator=(const MemberSink&) = delete;
    ~MemberSink() override {
        if (isOpen_) { deflateEnd(&stream_); }
    }

    void Write(std::string_view bytes) override {
        constexpr std::size_t kMost = std::size_t{1} << 30; // the length is an unsigned of 32 bits
        while (!bytes.empty()) {
            const std::string_view head = bytes.substr(0, kMost);
            // zlib's input pointer isn't const, but it only reads.
            auto* const start = reinterpret_cast<Bytef*>(const_cast<char*>(head.data()));
            const auto count = static_cast<uInt>(head.size());
            member_.checksum = static_cast<std::uint32_t>(crc32(member_.checksum, start, count));
            member_.size += count;
            if (member_.isStored) {
                Pack(head);
            } else {
                stream_.next_in = start;
                stream_.avail_in = count;
                Deflate(Z_NO_FLUSH);
            }
            bytes.remove_prefix(head.size());
        }
    }
    bool Close() override {
        if (isOpen_) {
            stream_.avail_in = 0;
            Deflate(Z_FINISH);
            member_.isText = stream_.data_type == Z_TEXT;
        }
        return zip_.error_.empty();
    }

private:
    void Deflate(int flush) {
        if (!isOpen_) { return; }
        do {
            stream_.next_out = reinterpret_cast<Bytef*>(block_.data());
            stream_.avail_out = static_cast<uInt>(block_.size());
            deflate(&stream_, flush);
            Pack(std::string_view(block_).substr(0, block_.size() - stream_.avail_out));
        } while (stream_.avail_out == 0);
    }
    void Pack(std::string_view bytes) {
        member_.packedSize += bytes.size();
        zip_.Put(bytes);
    }

    ZipWriter& zip_;
    Member& member_;
    std::string block_;
    z_stream stream_{};
    bool isOpen_ = false;
};

ZipWriter::ZipWriter(const std::string& path) : file_(path.c_str()) {
    CheckFile();
    block_.reserve(kBlock);
}

// The reason is that of the first failure; those after it only follow from it.
bool ZipWriter::Fail(const char* reason) {
    if (error_.empty()) { error_ = reason; }
    return false;
}

bool ZipWriter::CheckFile() {
    if (file_.Error() != 0) { Fail(std::strerror(file_.Error())); }
    return error_.empty();
}

void ZipWriter::Put(std::string_view bytes) {
    position_ += bytes.size();
    if (block_.size() + bytes.size() > kBlock) { Flush(); }
    if (bytes.size() > kBlock) {
        file_.Write(bytes.data(), bytes.size());
    } else {
        block_ += bytes;
    }
}

void ZipWriter::PutNumber(std::uint64_t value, int bytes) {
    char text[8];
    for (int i = 0; i < bytes; ++i) { text[i] = static_cast<char>(value >> (8 * i) & 0xFF); }
    Put({text, static_cast<std::size_t>(bytes)});
}

void ZipWriter::Flush() {
    file_.Write(block_.data(), block_.size());
    block_.clear();
}

void ZipWriter::PutMethodAndDate(const Member& member) {
    PutNumber(kBestSpeedFlags, 2);
    PutNumber(member.isStored ? 0 : Z_DEFLATED, 2);
    PutNumber(kDate, 4);
}

void ZipWriter::PutSizes(const Member& member) {
    PutNumber(member.checksum, 4);
    PutNumber(member.packedSize, 4);
    PutNumber(member.size, 4);
}

void ZipWriter::PutLocalHeader(const Member& member) {
    PutNumber(kLocalHeader, 4);
    PutNumber(kVersion, 2);
    PutMethodAndDate(member);
    PutSizes(member);
    PutNumber(member.name.size(), 2);
    PutNumber(0, 2); // nothing more
    Put(member.name);
}

bool ZipWriter::Add(const std::string& name, bool stored, const std::function<void(ByteSink*)>& write) {
    if (!error_.empty()) { return false; }
    if (name.size() > kLargest16) { return Fail("the name of a member is too long"); }
    Member& member = members_.emplace_back();
    member.name = name;
    member.offset = position_;
    member.isStored = stored;
    PutLocalHeader(member);
    {
        MemberSink sink(*this, member);
        write(&sink);
        if (!sink.Close()) { return false; }
    }
    if (member.size >= kLargest32 || member.packedSize >= kLargest32) { return Fail(kTooLarge); }
    // Its header gets what is known only now.
    const std::uint64_t end = position_;
    Flush();
    file_.GoTo(member.offset + kPlaceOfSizes);
    PutSizes(member);
    Flush();
    file_.GoTo(end);
    position_ = end;
    return CheckFile();
}

void ZipWriter::PutDirectoryEntry(const Member& member) {
    const bool isFar = member.offset >= kLargest32;
    PutNumber(kDirectoryEntry, 4);
    PutNumber(0, 2); // made on no system in particular
    PutNumber(isFar ? kLargeVersion : kVersion, 2);
    PutMethodAndDate(member);
    PutSizes(member);
    PutNumber(member.name.size(), 2);
    PutNumber(isFar ? 12 : 0, 2); // bytes after the name
    PutNumber(0, 2);              // no comment
    PutNumber(0, 2);              // the first disk
    PutNumber(member.isText ? 1 : 0, 2);
    PutNumber(0, 4); // no attributes
    PutNumber(isFar ? kLargest32 : member.offset, 4);
    Put(member.name);
    if (isFar) {
        PutNumber(1, 2); // what follows are numbers of 64 bits
        PutNumber(8, 2);
        PutNumber(member.offset, 8);
    }
}

void ZipWriter::PutLargeEnd(std::uint64_t start, std::uint64_t size) {
    const std::uint64_t place = position_;
    PutNumber(kLargeEnd, 4);
    PutNumber(44, 8); // bytes to follow
    PutNumber(kLargeVersion, 2);
    PutNumber(kLargeVersion, 2);
    PutNumber(0, 4); // the first disk, twice
    PutNumber(0, 4);
    PutNumber(members_.size(), 8); // on this disk, and in all
    PutNumber(members_.size(), 8);
    PutNumber(size, 8);
    PutNumber(start, 8);
    PutNumber(kLargeEndPlace, 4);
    PutNumber(0, 4); // the first disk
    PutNumber(place, 8);
    PutNumber(1, 4); // disks
}

void ZipWriter::PutEnd(std::uint64_t start, std::uint64_t size) {
    const std::uint64_t count = std::min<std::uint64_t>(members_.size(), kLargest16);
    PutNumber(kEnd, 4);
    PutNumber(0, 2); // the first disk, twice
    PutNumber(0, 2);
    PutNumber(count, 2); // on this disk, and in all
    PutNumber(count, 2);
    PutNumber(std::min(size, kLargest32), 4);
    PutNumber(std::min(start, kLargest32), 4);
    PutNumber(0, 2); // no comment
}

bool ZipWriter::Close() {
    if (!error_.empty()) { file_.Drop(); }
    if (!file_.IsOpen()) { return error_.empty(); }
    const std::uint64_t start = position_;
    for (const Member& member : members_) { PutDirectoryEntry(member); }
    const std::uint64_t size = position_ - start;
    if (members_.size() > kLargest16 || start >= kLargest32 || size >= kLargest32) {
        PutLargeEnd(start, size);
    }
    PutEnd(start, size);
    Flush();
    const int error = file_.Close();
    return error == 0 || Fail(std::strerror(error));
}

} // namespace tarnwick
