#include "archive/stpa_archive.h"

#include "platform/console.h"
#include "platform/within_memory.h"
#include "text/inflate_bytes.h"
#include "text/one_line.h"
#include "text/zip_input.h"

#include <minizip/unzip.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tarnwick {

namespace {

constexpr std::size_t kMemberNameRoom = 256;
constexpr std::uint64_t kMostInflation = 1032; // deflate packs no tighter, whatever a record claims
constexpr std::size_t kTextReserve = 0x40000;
constexpr std::size_t kStoredReserve = 9;
constexpr unsigned char kGzipHead[10] = {0x1F, 0x8B, 8, 0, 0, 0, 0, 0, 0, 13};
constexpr std::uint64_t kStored = 0;
constexpr std::uint64_t kDeflated = 8;
constexpr std::uint32_t kEncryptedFlag = 1;

constexpr const char* kNoMember = "isn't a member of the archive";
constexpr const char* kNoRecord = "can't be read, its record in the archive is damaged";
constexpr const char* kForeignMethod = "is packed by a method that isn't known here";
constexpr const char* kEncrypted = "is encrypted";
constexpr const char* kTooLarge = "is too large";
constexpr const char* kCantBeRead = "can't be read";

void SayCantBeRead(int error) {
    ConsolePrint("<E> the archive can't be read: %s\n", std::strerror(error));
}

} // namespace

ZipArchive::ZipArchive(const char* path) {
    constexpr std::size_t kPathRoom = 255;
    std::string name(path, strnlen(path, kPathRoom));
    const auto open = [this](const char* opened) {
        file_.emplace(opened);
        if (!file_->IsOpen()) {
            if (failure_ == 0) { failure_ = file_->Failure(); }
            return false;
        }
        input_ = std::make_unique<ZipInput>(*file_);
        zlib_filefunc64_def functions = input_->Functions();
        errno = 0;
        zip_.reset(unzOpen2_64(opened, &functions));
        if (zip_ == nullptr && errno != 0) { failure_ = errno; }
        return zip_ != nullptr;
    };
    if (!open(path)) {
        name += ".zip";
        open(name.c_str());
    }
    if (zip_ == nullptr) {
        const OneLine shown(path);
        OutputPrint("Cannot open %s or %s.zip\n", shown.Text(), shown.Text());
        return;
    }
    ConsolePrint("%s opened\n", OneLine(name).Text());
    IndexArchive(name.c_str());
}

ZipArchive::~ZipArchive() = default;

void ZipArchive::CloseZip::operator()(void* zip) const {
    unzClose(zip);
}

void ZipArchive::IndexArchive(const char* name) {
    int failure = 0;
    const auto succeeds = [&failure](int result) {
        if (result != UNZ_OK) { failure = errno; }
        return result == UNZ_OK;
    };
    errno = 0;
    for (bool there = succeeds(unzGoToFirstFile(zip_.get())); there;
         errno = 0, there = succeeds(unzGoToNextFile(zip_.get()))) {
        char buffer[kMemberNameRoom];
        unz_file_info64 info{};
        unz64_file_pos position{};
        if (!succeeds(
                unzGetCurrentFileInfo64(zip_.get(), &info, buffer, sizeof buffer, nullptr, 0, nullptr, 0))) {
            break;
        }
        unzGetFilePos64(zip_.get(), &position); // reads nothing
        if (info.size_filename >= kMemberNameRoom) {
            ConsolePrint("<E> %s: a member's name has %zu characters or more, it is left out\n",
                         OneLine(name).Text(), kMemberNameRoom);
            continue;
        }
        const std::string& kept = names_.emplace_back(buffer);
        members_.Add(kept, {position.pos_in_zip_directory, position.num_of_file});
    }
    if (failure != 0) {
        ConsolePrint("<E> %s: its directory can't be read on: %s\n", OneLine(name).Text(),
                     std::strerror(failure));
    }
}

// Why the library failed, by errno, which was 0 before; an error of the system is told on the console.
const char* ZipArchive::WhyFailed() {
    switch (errno) {
    case 0:
        return kNoRecord;
    case ENOMEM:
        return kNeedsMemory;
    default:
        SayCantBeRead(errno);
        return kCantBeRead;
    }
}

// Makes a member the current one. Returns what is wrong with it, or null.
const char* ZipArchive::GoTo(const ZipEntry& entry, MemberInfo* member) {
    const unz64_file_pos position{entry.centralOffset, entry.memberIndex};
    errno = 0;
    unz_file_info64 info{};
    if (unzGoToFilePos64(zip_.get(), &position) != UNZ_OK ||
        unzGetCurrentFileInfo64(zip_.get(), &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
        return WhyFailed();
    }
    *member = {info.compressed_size, info.uncompressed_size, info.compression_method,
               (info.flag & kEncryptedFlag) != 0};
    return nullptr;
}

// Sets *offset to where the current member's bytes begin. Returns what is wrong with it, such as a local
// header that doesn't match its record, or null.
const char* ZipArchive::FindData(std::uint64_t* offset) {
    int method;
    int level;
    errno = 0;
    if (unzOpenCurrentFile2(zip_.get(), &method, &level, 1) != UNZ_OK) { return WhyFailed(); }
    *offset = unzGetCurrentFileZStreamPos64(zip_.get());
    unzCloseCurrentFile(zip_.get());
    return nullptr;
}

// How many bytes of a member the file has from `offset` on.
std::size_t ZipArchive::BytesThere(const MemberInfo& info, std::uint64_t offset) const {
    const std::uint64_t left = file_->Size() > offset ? file_->Size() - offset : 0;
    return static_cast<std::size_t>(std::min(info.compressedSize, left));
}

// Reads the current member and puts the head of a gzip file before it. `buffer` has room for the head and for
// as many of the member's bytes as there can be in the file. Fails only when memory runs out or the system
// can't read; whatever else is wrong shows when the bytes are inflated.
const char* ZipArchive::GetBufferCurrentFile(const MemberInfo& info, unsigned char* buffer,
                                             std::uint32_t* size) {
    std::uint64_t offset = 0;
    std::size_t read = 0;
    const char* problem = FindData(&offset);
    if (problem == nullptr) {
        int error = 0;
        read = file_->ReadAt(offset, buffer + sizeof kGzipHead, BytesThere(info, offset), &error);
        if (error != 0) {
            SayCantBeRead(error);
            problem = kCantBeRead;
        }
    }
    if (problem == kNeedsMemory || problem == kCantBeRead) { return problem; }
    if (read == 0) { OutputPrint("error %d with zipfile in unzGetBufferCurrentFile\n", UNZ_BADZIPFILE); }
    std::memcpy(buffer, kGzipHead, sizeof kGzipHead);
    *size = static_cast<std::uint32_t>(read + sizeof kGzipHead);
    return nullptr;
}

ZipArchive::Packed ZipArchive::ReadPacked(const char* name) {
    Packed packed;
    MemberInfo info{};
    const ZipEntry* const entry = members_.Find(name);
    if (entry == nullptr) {
        packed.oddity = kNoMember;
        return packed;
    }
    packed.oddity = GoTo(*entry, &info);
    if (packed.oddity != nullptr) { return packed; }
    const std::uint64_t room = std::min(info.compressedSize, file_->Size()) + 100;
    if (room > kLargestText) {
        packed.oddity = kTooLarge;
        return packed;
    }
    packed.data = std::make_unique_for_overwrite<unsigned char[]>(static_cast<std::size_t>(room));
    packed.oddity = GetBufferCurrentFile(info, packed.data.get(), &packed.size);
    if (packed.oddity != nullptr) {
        packed.data.reset();
    } else if (info.encrypted) {
        packed.oddity = kEncrypted;
    } else if (info.method == kStored) {
        packed.oddity = "is stored without compression, which a part in an archive can't be";
    } else if (info.method != kDeflated) {
        packed.oddity = kForeignMethod;
    }
    return packed;
}

char* ZipArchive::ReadMember(const char* name, TextMemory& memory, std::size_t* size, const char** problem) {
    *size = 0;
    const ZipEntry* const entry = members_.Find(name);
    if (entry == nullptr) {
        *problem = kNoMember;
        return nullptr;
    }
    MemberInfo info{};
    *problem = GoTo(*entry, &info);
    if (*problem != nullptr) { return nullptr; }
    // The record claims more than a text may have.
    if (std::min(info.compressedSize, file_->Size()) > kLargestText ||
        info.uncompressedSize > kLargestText - kTextReserve) {
        *problem = kTooLarge;
        return nullptr;
    }
    switch (info.method) {
    case kStored:
        return ReadStored(info, memory, size, problem);
    case kDeflated:
        return ReadDeflated(info, memory, size, problem);
    default:
        *problem = kForeignMethod;
        return nullptr;
    }
}

char* ZipArchive::ReadStored(const MemberInfo& info, TextMemory& memory, std::size_t* size,
                             const char** problem) {
    std::uint64_t offset = 0;
    *problem = FindData(&offset);
    if (*problem != nullptr) { return nullptr; }
    const std::size_t there = BytesThere(info, offset);
    if (there > info.uncompressedSize + kStoredReserve) {
        *problem = info.encrypted ? kEncrypted : "can't be read, it is stored with more bytes than it has";
        return nullptr;
    }
    char* const text = memory.text.Get(there + 1);
    if (text == nullptr) {
        *problem = kNeedsMemory;
        return nullptr;
    }
    int error = 0;
    *size = file_->ReadAt(offset, text, there, &error);
    if (error != 0) {
        SayCantBeRead(error);
        *problem = kCantBeRead;
        return nullptr;
    }
    text[*size] = '\0';
    return text;
}

char* ZipArchive::ReadDeflated(const MemberInfo& info, TextMemory& memory, std::size_t* size,
                               const char** problem) {
    const std::size_t claimed = static_cast<std::size_t>(info.uncompressedSize);
    const std::uint64_t packedRoom = std::min(info.compressedSize, file_->Size()) + 100;
    // What the record claims, but no more than can come out of as many bytes.
    const std::size_t room =
        static_cast<std::size_t>(std::min(info.uncompressedSize, packedRoom * kMostInflation)) + kTextReserve;
    auto* const packed =
        reinterpret_cast<unsigned char*>(memory.compressed.Get(static_cast<std::size_t>(packedRoom)));
    char* const text = memory.text.Get(room);
    if (packed == nullptr || text == nullptr) {
        *problem = kNeedsMemory;
        return nullptr;
    }
    std::uint32_t packedSize = 0;
    *problem = GetBufferCurrentFile(info, packed, &packedSize);
    if (*problem != nullptr) { return nullptr; }
    const std::optional<std::size_t> whole = InflateBytes(packed, packedSize, text, room, true);
    if (!whole) {
        *problem = kNeedsMemory;
        return nullptr;
    }
    const std::size_t inflated = *whole;
    // The text is as long as the record says; a longer one gets a NUL there.
    text[inflated] = '\0';
    if (claimed < inflated) { text[claimed] = '\0'; }
    *size = inflated;
    return text;
}

} // namespace tarnwick
