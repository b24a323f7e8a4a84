#include "exchange/file_bytes.h"

#include "platform/files.h"
#include "platform/opened_file.h"
#include "text/lower_case.h"
#include "text/zip_input.h"

#include <minizip/unzip.h>
#include <xxhash.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

namespace tarnwick {

namespace {

std::string TextOf(const XXH128_hash_t& hash) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%016llx%016llx", static_cast<unsigned long long>(hash.high64),
                  static_cast<unsigned long long>(hash.low64));
    return text.data();
}

// Bytes that come piece by piece into a block that doubles.
class GrowingBytes {
public:
    explicit GrowingBytes(std::size_t most) : most_(most) {}

    // Where the next `*room` bytes go; null where there is no memory or no more is allowed.
    char* Room(std::size_t atLeast, std::size_t* room) {
        if (size_ + atLeast > capacity_ && !Grow(std::max(size_ + atLeast, 2 * capacity_))) {
            return nullptr;
        }
        *room = capacity_ - size_;
        return data_.get() + size_;
    }
    void Take(std::size_t count) { size_ += count; }

    // The bytes, with the padding after them.
    void MoveTo(FileBytes* bytes) {
        std::memset(data_.get() + size_, 0, kBytesPadding);
        bytes->data = std::move(data_);
        bytes->size = size_;
    }

private:
    bool Grow(std::size_t capacity) {
        capacity = std::min(capacity, most_);
        if (capacity <= size_) { return false; }
        std::unique_ptr<char[]> data(new (std::nothrow) char[capacity + kBytesPadding]);
        if (data == nullptr) { return false; }
        if (size_ > 0) { std::memcpy(data.get(), data_.get(), size_); }
        data_ = std::move(data);
        capacity_ = capacity;
        return true;
    }

    const std::size_t most_;
    std::unique_ptr<char[]> data_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

bool IsGzip(std::string_view text) {
    return text.starts_with("\x1F\x8B");
}
bool IsZlib(std::string_view text) {
    if (text.size() < 2 || (text[0] & 0x0F) != 8 || static_cast<unsigned char>(text[0]) > 0x7F) {
        return false;
    }
    return (static_cast<unsigned char>(text[0]) * 256 + static_cast<unsigned char>(text[1])) % 31 == 0;
}
bool IsZip(std::string_view text) {
    return text.starts_with("PK\x03\x04");
}

constexpr int kZlibOrGzip = 15 + 32; // told apart by their first bytes
constexpr int kBare = -15;           // a stream of neither, as in archives

// A stream that is damaged or cut gives what came before.
FileBytes Inflate(std::string_view packed, int kind, std::size_t most) {
    FileBytes bytes;
    z_stream stream{};
    if (inflateInit2(&stream, kind) != Z_OK) {
        bytes.error = kNotEnoughMemory;
        return bytes;
    }
    GrowingBytes out(most);
    const char* next = packed.data();
    std::size_t left = packed.size();
    int state = Z_OK;
    while (state == Z_OK) {
        std::size_t room = 0;
        char* const target = out.Room(std::min<std::size_t>(4 * packed.size() + 65536, 1 << 20), &room);
        if (target == nullptr) {
            bytes.error = kNotEnoughMemory;
            inflateEnd(&stream);
            return bytes;
        }
        constexpr std::size_t kMost = std::numeric_limits<unsigned>::max() / 2;
        stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(next));
        stream.avail_in = static_cast<unsigned>(std::min(left, kMost));
        stream.next_out = reinterpret_cast<Bytef*>(target);
        stream.avail_out = static_cast<unsigned>(std::min(room, kMost));
        const unsigned offered = stream.avail_out;
        state = inflate(&stream, Z_NO_FLUSH);
        out.Take(offered - stream.avail_out);
        if (state == Z_MEM_ERROR) {
            bytes.error = kNotEnoughMemory;
            inflateEnd(&stream);
            return bytes;
        }
        const char* const after = reinterpret_cast<const char*>(stream.next_in);
        left -= static_cast<std::size_t>(after - next);
        next = after;
        if (state == Z_STREAM_END && left > 0 && IsGzip({next, left})) { state = inflateReset(&stream); }
    }
    if (state != Z_STREAM_END) { bytes.error = "its compressed stream is damaged or cut"; }
    inflateEnd(&stream);
    out.MoveTo(&bytes);
    return bytes;
}

bool EndsWithAny(std::string name, std::initializer_list<const char*> ends) {
    name = LowerCase(std::move(name));
    return std::any_of(ends.begin(), ends.end(), [&](const char* end) { return name.ends_with(end); });
}

// Where a member of an archive stands in it, as it is packed.
struct PackedMember {
    std::uint64_t begin = 0;
    std::uint64_t size = 0;
    bool isStored = false;
};

class ZipDirectory {
public:
    explicit ZipDirectory(const std::string& path) : file_(path.c_str()), input_(file_) {
        errno = 0;
        zlib_filefunc64_def functions = input_.Functions();
        if (file_.IsOpen()) { zip_.reset(unzOpen2_64("", &functions)); }
    }

    // Calls take(name) with each member in turn, until it says to stop. False where the directory can't be
    // read.
    template <class Take>
    bool ForEachMember(Take take) {
        if (zip_ == nullptr) { return false; }
        std::array<char, 1024> name{};
        int state = unzGoToFirstFile(zip_.get());
        for (; state == UNZ_OK; state = unzGoToNextFile(zip_.get())) {
            if (unzGetCurrentFileInfo64(zip_.get(), nullptr, name.data(), name.size() - 1, nullptr, 0,
                                        nullptr, 0) != UNZ_OK) {
                return false;
            }
            if (take(std::string_view(name.data()))) { return true; }
        }
        return state == UNZ_END_OF_LIST_OF_FILE;
    }

    bool Find(const std::string& name, PackedMember* member) {
        unz_file_info64 info{};
        int method = 0;
        if (zip_ == nullptr || unzLocateFile(zip_.get(), name.c_str(), 1) != UNZ_OK ||
            unzGetCurrentFileInfo64(zip_.get(), &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK ||
            unzOpenCurrentFile2(zip_.get(), &method, nullptr, 1) != UNZ_OK) {
            return false;
        }
        *member = {unzGetCurrentFileZStreamPos64(zip_.get()), info.compressed_size, method == 0};
        return true;
    }

private:
    struct Close {
        void operator()(void* zip) const { unzClose(zip); }
    };
    const OpenedFile file_;
    ZipInput input_;
    std::unique_ptr<void, Close> zip_;
};

// Why an archive can't be read, after a call of ZipDirectory that failed.
const char* ArchiveError() {
    return errno == ENOMEM ? kNotEnoughMemory : "the archive can't be read";
}

FileBytes Unpack(std::string_view packed, bool isStored, std::size_t most) {
    FileBytes bytes;
    if (!isStored) {
        bytes = Inflate(packed, kBare, most);
        if (bytes.IsRead() && !bytes.error.empty()) { bytes.error = "its member in the archive is damaged"; }
        return bytes;
    }
    GrowingBytes out(most);
    std::size_t room = 0;
    char* const target = out.Room(packed.size() + 1, &room);
    if (target == nullptr || room < packed.size()) {
        bytes.error = kNotEnoughMemory;
        return bytes;
    }
    if (!packed.empty()) { std::memcpy(target, packed.data(), packed.size()); }
    out.Take(packed.size());
    out.MoveTo(&bytes);
    return bytes;
}

bool IsStepName(std::string_view name) {
    return EndsWithAny(std::string(name),
                       {".stp", ".step", ".p21", ".stpx", ".xml", ".stpnc", ".stpz", ".stpxz", ".stp.gz"});
}

// The first member that has a name of a STEP file, or else the first of all. `archive` is the whole file.
FileBytes ReadFirstMember(const std::string& path, std::string_view archive, std::size_t most) {
    ZipDirectory zip(path);
    std::string first;
    const bool isListed = zip.ForEachMember([&first](std::string_view name) {
        const bool isStep = IsStepName(name);
        if (isStep || (first.empty() && !name.ends_with('/'))) { first = name; }
        return isStep;
    });
    FileBytes bytes;
    PackedMember member;
    if (!isListed || first.empty() || !zip.Find(first, &member)) {
        bytes.error = ArchiveError();
        return bytes;
    }
    const std::uint64_t begin = std::min<std::uint64_t>(member.begin, archive.size());
    return Unpack(archive.substr(begin, member.size), member.isStored, most);
}

} // namespace

FileBytes ReadFileBytes(const std::string& path, std::size_t most) {
    FileBytes bytes;
    errno = 0;
    const OpenedFile file(path.c_str());
    if (!file.IsOpen()) {
        bytes.error = errno != 0 ? std::strerror(errno) : "it is no regular file";
        return bytes;
    }
    if (file.Size() > most) {
        bytes.error = kNotEnoughMemory;
        return bytes;
    }
    const auto size = static_cast<std::size_t>(file.Size());
    bytes.data.reset(new (std::nothrow) char[size + kBytesPadding]);
    if (bytes.data == nullptr) {
        bytes.error = kNotEnoughMemory;
        return bytes;
    }
    int error = 0;
    bytes.size = file.ReadAt(0, bytes.data.get(), size, &error);
    if (bytes.size < size) {
        bytes.error = error != 0 ? std::strerror(error) : "it became shorter while it was read";
    }
    std::memset(bytes.data.get() + bytes.size, 0, kBytesPadding);
    bytes.digest = TextOf(XXH3_128bits(bytes.data.get(), bytes.size));
    const bool isZip = IsZip(bytes.Text());
    if (!isZip && !IsGzip(bytes.Text()) && !IsZlib(bytes.Text())) { return bytes; }
    FileBytes unpacked =
        isZip ? ReadFirstMember(path, bytes.Text(), most) : Inflate(bytes.Text(), kZlibOrGzip, most - size);
    unpacked.digest = std::move(bytes.digest);
    return unpacked;
}

StepMembers StepMembersOf(const std::string& path) {
    StepMembers members;
    std::array<char, 4> start{};
    int error = 0;
    {
        const OpenedFile file(path.c_str());
        if (!file.IsOpen() || file.ReadAt(0, start.data(), start.size(), &error) < start.size() ||
            !IsZip({start.data(), start.size()})) {
            return members;
        }
    }
    const bool isListed = ZipDirectory(path).ForEachMember([&members](std::string_view name) {
        if (IsStepName(name) && CanNameFile(name)) { members.names.emplace_back(name); }
        return false;
    });
    if (!isListed) { members.error = ArchiveError(); }
    return members;
}

FileBytes ReadMemberBytes(const std::string& archive, const std::string& member, std::size_t most) {
    FileBytes bytes;
    PackedMember place;
    if (!ZipDirectory(archive).Find(member, &place)) {
        bytes.error = ArchiveError();
        return bytes;
    }
    const OpenedFile file(archive.c_str());
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(place.size, file.Size()));
    const std::unique_ptr<char[]> packed(size <= most ? new (std::nothrow) char[size + kBytesPadding]
                                                      : nullptr);
    if (packed == nullptr) {
        bytes.error = kNotEnoughMemory;
        return bytes;
    }
    int error = 0;
    const std::size_t got = file.ReadAt(place.begin, packed.get(), size, &error);
    bytes = Unpack({packed.get(), got}, place.isStored, most);
    if (error != 0) { bytes.error = std::strerror(error); }
    if (!bytes.IsRead()) { return bytes; }
    std::string digest = TextOf(XXH3_128bits(bytes.data.get(), bytes.size));
    if (IsGzip(bytes.Text()) || IsZlib(bytes.Text())) {
        bytes = Inflate(bytes.Text(), kZlibOrGzip, most - std::min(most, bytes.size));
    }
    bytes.digest = std::move(digest);
    return bytes;
}

std::string DigestOfFile(const std::string& path) {
    const OpenedFile file(path.c_str());
    XXH3_state_t* const state = file.IsOpen() ? XXH3_createState() : nullptr;
    if (state == nullptr) { return {}; }
    XXH3_128bits_reset(state);
    constexpr std::size_t kBlock = 1 << 20;
    const std::unique_ptr<char[]> block(new (std::nothrow) char[kBlock]);
    std::uint64_t done = 0;
    while (block != nullptr && done < file.Size()) {
        int error = 0;
        const std::size_t got = file.ReadAt(done, block.get(), kBlock, &error);
        if (got == 0) { break; }
        XXH3_128bits_update(state, block.get(), got);
        done += got;
    }
    const XXH128_hash_t hash = XXH3_128bits_digest(state);
    XXH3_freeState(state);
    return done == file.Size() ? TextOf(hash) : std::string{};
}

} // namespace tarnwick
