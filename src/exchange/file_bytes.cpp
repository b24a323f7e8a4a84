#include "exchange/file_bytes.h"

#include "text/opened_file.h"

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

constexpr const char* kNoMemory = "there is not enough memory for it";
constexpr const char* kNoArchive = "the archive can't be read";

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

// A stream that is damaged or cut gives what came before.
FileBytes Inflate(std::string_view packed, std::size_t most) {
    FileBytes bytes;
    z_stream stream{};
    if (inflateInit2(&stream, 15 + 32) != Z_OK) { // tells gzip from zlib
        bytes.error = kNoMemory;
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
            bytes.error = kNoMemory;
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
        const char* const behind = reinterpret_cast<const char*>(stream.next_in);
        left -= static_cast<std::size_t>(behind - next);
        next = behind;
        if (state == Z_STREAM_END && left > 0 && IsGzip({next, left})) { state = inflateReset(&stream); }
    }
    if (state != Z_STREAM_END) { bytes.error = "its compressed stream is damaged or cut"; }
    inflateEnd(&stream);
    out.MoveTo(&bytes);
    return bytes;
}

bool EndsWithAny(std::string name, std::initializer_list<const char*> ends) {
    for (char& c : name) { c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
    return std::any_of(ends.begin(), ends.end(), [&](const char* end) { return name.ends_with(end); });
}

class ZipReader {
public:
    explicit ZipReader(const std::string& path) : zip_(unzOpen64(path.c_str())) {}

    // Calls take(name) with each member in turn, until it says to stop. False where the directory is damaged.
    template <class Take>
    bool ForEachMember(Take take) {
        if (zip_ == nullptr) { return false; }
        std::array<char, 1024> name{};
        int state = unzGoToFirstFile(zip_.get());
        for (; state == UNZ_OK; state = unzGoToNextFile(zip_.get())) {
            unz_file_info64 info{};
            if (unzGetCurrentFileInfo64(zip_.get(), &info, name.data(), name.size() - 1, nullptr, 0, nullptr,
                                        0) != UNZ_OK) {
                return false;
            }
            if (take(std::string_view(name.data()))) { return true; }
        }
        return state == UNZ_END_OF_LIST_OF_FILE;
    }

    FileBytes Read(const std::string& member, std::size_t most) {
        FileBytes bytes;
        bytes.member = member;
        if (zip_ == nullptr || unzLocateFile(zip_.get(), member.c_str(), 1) != UNZ_OK ||
            unzOpenCurrentFile(zip_.get()) != UNZ_OK) {
            bytes.error = kNoArchive;
            return bytes;
        }
        GrowingBytes out(most);
        for (;;) {
            std::size_t room = 0;
            char* const target = out.Room(1 << 16, &room);
            if (target == nullptr) {
                bytes.error = kNoMemory;
                return bytes;
            }
            const int got = unzReadCurrentFile(zip_.get(), target,
                                               static_cast<unsigned>(std::min<std::size_t>(room, 1 << 24)));
            if (got <= 0) {
                if (got < 0) { bytes.error = "its member in the archive is damaged"; }
                break;
            }
            out.Take(static_cast<std::size_t>(got));
        }
        out.MoveTo(&bytes);
        return bytes;
    }

private:
    struct Close {
        void operator()(void* zip) const { unzClose(zip); }
    };
    std::unique_ptr<void, Close> zip_;
};

bool IsStepName(std::string_view name) {
    return EndsWithAny(std::string(name),
                       {".stp", ".step", ".p21", ".stpx", ".xml", ".stpnc", ".stpz", ".stpxz", ".stp.gz"});
}

// The first member that has a name of a STEP file, or else the first of all.
FileBytes ReadFirstMember(const std::string& path, std::size_t most) {
    ZipReader zip(path);
    std::string first;
    zip.ForEachMember([&first](std::string_view name) {
        const bool isStep = IsStepName(name);
        if (isStep || (first.empty() && !name.ends_with('/'))) { first = name; }
        return isStep;
    });
    FileBytes bytes;
    bytes.error = kNoArchive;
    return first.empty() ? std::move(bytes) : zip.Read(first, most);
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
        bytes.error = kNoMemory;
        return bytes;
    }
    const auto size = static_cast<std::size_t>(file.Size());
    bytes.data.reset(new (std::nothrow) char[size + kBytesPadding]);
    if (bytes.data == nullptr) {
        bytes.error = kNoMemory;
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
    FileBytes unpacked = isZip ? ReadFirstMember(path, most) : Inflate(bytes.Text(), most - size);
    unpacked.digest = std::move(bytes.digest);
    return unpacked;
}

std::vector<std::string> StepMembersOf(const std::string& path) {
    std::array<char, 4> start{};
    int error = 0;
    {
        const OpenedFile file(path.c_str());
        if (!file.IsOpen() || file.ReadAt(0, start.data(), start.size(), &error) < start.size() ||
            !IsZip({start.data(), start.size()})) {
            return {};
        }
    }
    std::vector<std::string> members;
    ZipReader(path).ForEachMember([&members](std::string_view name) {
        if (IsStepName(name)) { members.emplace_back(name); }
        return false;
    });
    return members;
}

FileBytes ReadMemberBytes(const std::string& archive, const std::string& member, std::size_t most) {
    FileBytes bytes = ZipReader(archive).Read(member, most);
    if (!bytes.IsRead()) { return bytes; }
    std::string digest = TextOf(XXH3_128bits(bytes.data.get(), bytes.size));
    if (IsGzip(bytes.Text()) || IsZlib(bytes.Text())) {
        bytes = Inflate(bytes.Text(), most - std::min(most, bytes.size));
        bytes.member = member;
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
