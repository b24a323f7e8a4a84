#include "write/zip_writer.h"

#include "platform/whole_file.h"

#include <minizip/zip.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tarnwick {

namespace {

class MemberSink : public ByteSink {
public:
    explicit MemberSink(zipFile zip) : zip_(zip) {}

    void Write(std::string_view bytes) override {
        constexpr std::size_t kBlock = 1 << 30; // the length is an unsigned of 32 bits
        while (whole_ && !bytes.empty()) {
            const std::string_view head = bytes.substr(0, kBlock);
            whole_ = zipWriteInFileInZip(zip_, head.data(), static_cast<unsigned>(head.size())) == ZIP_OK;
            bytes.remove_prefix(head.size());
        }
    }
    bool Close() override { return whole_; }

private:
    zipFile zip_;
    bool whole_ = true;
};

} // namespace

// What the library writes an archive by. It looks at few of the failures: the file keeps the first.
class ZipOutput {
public:
    explicit ZipOutput(const std::string& path) : file_(path.c_str()) { block_.reserve(kBlock); }
    ZipOutput(const ZipOutput&) = delete;
    ZipOutput& operator=(const ZipOutput&) = delete;

    // They refer to this object.
    zlib_filefunc64_def Functions() {
        zlib_filefunc64_def functions{};
        functions.opaque = this;
        functions.zopen64_file = [](void* opaque, const void*, int) {
            return Of(opaque).file_.IsOpen() ? opaque : nullptr;
        };
        functions.zread_file = [](void*, void*, void*, uLong) { return uLong{0}; };
        functions.zwrite_file = [](void*, void* stream, const void* bytes, uLong count) {
            return Of(stream).Write(static_cast<const char*>(bytes), count);
        };
        functions.ztell64_file = [](void*, void* stream) { return ZPOS64_T{Of(stream).position_}; };
        functions.zseek64_file = [](void*, void* stream, ZPOS64_T offset, int origin) {
            return Of(stream).Seek(offset, origin);
        };
        functions.zclose_file = [](void*, void*) { return 0; };
        functions.zerror_file = [](void*, void* stream) { return Of(stream).file_.Error(); };
        return functions;
    }

    int Close() {
        Flush();
        return file_.Close();
    }
    int Error() const { return file_.Error(); }

private:
    static constexpr std::size_t kBlock = std::size_t{1} << 16;

    static ZipOutput& Of(void* stream) { return *static_cast<ZipOutput*>(stream); }

    uLong Write(const char* bytes, uLong count) {
        if (block_.size() + count > kBlock) { Flush(); }
        if (count > kBlock) {
            file_.Write(bytes, count);
        } else {
            block_.append(bytes, count);
        }
        position_ += count;
        end_ = std::max(end_, position_);
        return file_.Error() == 0 ? count : 0;
    }
    long Seek(std::uint64_t offset, int origin) {
        Flush();
        if (origin == ZLIB_FILEFUNC_SEEK_CUR) { offset += position_; }
        if (origin == ZLIB_FILEFUNC_SEEK_END) { offset += end_; }
        position_ = offset;
        file_.GoTo(offset);
        return file_.Error() == 0 ? 0 : -1;
    }
    void Flush() {
        file_.Write(block_.data(), block_.size());
        block_.clear();
    }

    WholeFile file_;
    std::string block_; // the library writes many small pieces
    std::uint64_t position_ = 0;
    std::uint64_t end_ = 0;
};

ZipWriter::ZipWriter(const std::string& path) : output_(std::make_unique<ZipOutput>(path)) {
    zlib_filefunc64_def functions = output_->Functions();
    errno = 0;
    zip_ = zipOpen2_64(path.c_str(), APPEND_STATUS_CREATE, nullptr, &functions);
    Check(zip_ != nullptr);
}

ZipWriter::~ZipWriter() {
    if (zip_ != nullptr) { zipClose(zip_, nullptr); }
}

// The reason is that of the first failure; those after it only follow from it.
bool ZipWriter::Check(bool done) {
    if (!done && error_.empty()) {
        const int error = output_->Error() != 0 ? output_->Error() : errno;
        error_ = error != 0 ? std::strerror(error) : "the archive is too large";
    }
    return done;
}

bool ZipWriter::Add(const std::string& name, bool stored, const std::function<void(ByteSink*)>& write) {
    if (!error_.empty()) { return false; }
    zip_fileinfo info{};
    info.tmz_date.tm_mday = 1; // a constant: the same options must give the same bytes
    info.tmz_date.tm_year = 2024;
    // Best speed: packing is most of the work of a large archive, and how tight it is matters to no reader.
    errno = 0;
    if (!Check(zipOpenNewFileInZip64(zip_, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                     stored ? 0 : Z_DEFLATED, Z_BEST_SPEED, 0) == ZIP_OK)) {
        return false;
    }
    MemberSink sink(zip_);
    write(&sink);
    const bool whole = Check(sink.Close());
    return Check(zipCloseFileInZip(zip_) == ZIP_OK) && whole;
}

bool ZipWriter::Close() {
    if (zip_ != nullptr) {
        errno = 0;
        Check(zipClose(zip_, nullptr) == ZIP_OK);
        zip_ = nullptr;
        if (error_.empty()) { Check(output_->Close() == 0); }
        output_.reset(); // what isn't closed is dropped
    }
    return error_.empty();
}

} // namespace tarnwick
