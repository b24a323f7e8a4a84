#pragma once

#include <memory>
#include <string>
#include <string_view>

// Where written bytes go: a file, plain or compressed, or a string.
namespace tarnwick {

class ByteSink {
public:
    virtual ~ByteSink() = default;
    virtual void Write(std::string_view bytes) = 0;
    // Ends the output; false when any byte was lost, and then Error() says why. A file gets its name only
    // here: what isn't closed is dropped.
    virtual bool Close() = 0;
    virtual std::string Error() const { return {}; }
};

class StringSink : public ByteSink {
public:
    explicit StringSink(std::string* out) : out_(*out) {}
    void Write(std::string_view bytes) override { out_ += bytes; }
    bool Close() override { return true; }

private:
    std::string& out_;
};

// A sink for a file, compressed as a zlib stream if wanted. Never null: where the file can't be opened,
// Close() says so.
std::unique_ptr<ByteSink> OpenFile(const std::string& path, bool compress);

} // namespace tarnwick
