#include "write/byte_sink.h"

#include "platform/whole_file.h"

#include <zlib.h>

#include <cstring>
#include <vector>

namespace tarnwick {

namespace {

class FileSink : public ByteSink {
public:
    explicit FileSink(const std::string& path) : file_(path.c_str()) {}

    void Write(std::string_view bytes) override { file_.Write(bytes.data(), bytes.size()); }
    bool Close() override { return file_.Close() == 0; }
    std::string Error() const override {
        return file_.Error() != 0 ? std::strerror(file_.Error()) : std::string();
    }

private:
    WholeFile file_;
};

class ZlibSink : public ByteSink {
public:
    explicit ZlibSink(std::unique_ptr<ByteSink> next) : next_(std::move(next)), block_(1 << 18) {
        open_ = deflateInit(&stream_, Z_DEFAULT_COMPRESSION) == Z_OK;
    }
    ~ZlibSink() override {
        if (open_) { deflateEnd(&stream_); }
    }
    ZlibSink(const ZlibSink&) = delete;
    ZlibSink& operator=(const ZlibSink&) = delete;

    void Write(std::string_view bytes) override {
        constexpr std::size_t kBlock = 1 << 30; // the length is an unsigned of 32 bits
        while (!bytes.empty()) {
            const std::string_view head = bytes.substr(0, kBlock);
            // zlib's input pointer isn't const, but it only reads.
            stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(head.data()));
            stream_.avail_in = static_cast<uInt>(head.size());
            Deflate(Z_NO_FLUSH);
            bytes.remove_prefix(head.size());
        }
    }
    bool Close() override {
        if (open_) {
            stream_.avail_in = 0;
            Deflate(Z_FINISH);
            deflateEnd(&stream_);
            open_ = false;
            closed_ = true;
        }
        return closed_ && next_->Close();
    }
    std::string Error() const override {
        const bool noMemory = !open_ && !closed_;
        return noMemory ? "out of memory" : next_->Error();
    }

private:
    void Deflate(int flush) {
        if (!open_) { return; }
        do {
            stream_.next_out = block_.data();
            stream_.avail_out = static_cast<uInt>(block_.size());
            deflate(&stream_, flush);
            next_->Write({reinterpret_cast<const char*>(block_.data()), block_.size() - stream_.avail_out});
        } while (stream_.avail_out == 0);
    }

    std::unique_ptr<ByteSink> next_;
    std::vector<Bytef> block_;
    z_stream stream_{};
    bool open_ = false;
    bool closed_ = false;
};

} // namespace

std::unique_ptr<ByteSink> OpenFile(const std::string& path, bool compress) {
    std::unique_ptr<ByteSink> sink = std::make_unique<FileSink>(path);
    if (compress) { sink = std::make_unique<ZlibSink>(std::move(sink)); }
    return sink;
}

} // namespace tarnwick
