#include "write/zip_writer.h"

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

ZipWriter::ZipWriter(const std::string& path) : zip_(zipOpen64(path.c_str(), APPEND_STATUS_CREATE)) {
    Check(zip_ != nullptr);
}

ZipWriter::~ZipWriter() {
    Close();
}

// The reason is that of the first failure; those after it only follow from it.
bool ZipWriter::Check(bool done) {
    if (!done && error_.empty()) { error_ = errno != 0 ? std::strerror(errno) : "the archive is too large"; }
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
    }
    return error_.empty();
}

} // namespace tarnwick
