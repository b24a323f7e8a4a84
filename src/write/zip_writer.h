#pragma once

#include "write/byte_sink.h"

#include <functional>
#include <memory>
#include <string>

// Writes a ZIP archive member by member.
namespace tarnwick {

class ZipOutput;

class ZipWriter {
public:
    explicit ZipWriter(const std::string& path);
    // Drops what wasn't closed.
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    // A member, deflated unless it is to be stored; `write` is called once with a sink for its content.
    bool Add(const std::string& name, bool stored, const std::function<void(ByteSink*)>& write);
    // Writes the directory and gives the archive its name; false when any byte was lost, and then Error()
    // says why.
    bool Close();
    const std::string& Error() const { return error_; }

private:
    bool Check(bool done);

    std::unique_ptr<ZipOutput> output_;
    void* zip_;
    std::string error_;
};

} // namespace tarnwick
