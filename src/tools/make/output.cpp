#include "tools/make/output.h"

#include "text/one_line.h"

#include <cstdio>
#include <memory>

namespace tarnwick::make {

bool WriteP21(const std::string& path, bool compress, const std::function<void(P21Writer*)>& write) {
    return WriteFile(path, compress, [&](ByteSink* sink) {
        P21Writer writer(sink);
        write(&writer);
    });
}

bool WriteFile(const std::string& path, bool compress, const std::function<void(ByteSink*)>& write) {
    const std::unique_ptr<ByteSink> sink = OpenFile(path, compress);
    if (sink->Error().empty()) { write(sink.get()); }
    if (sink->Close()) { return true; }
    SayUnwritable(path, sink->Error());
    return false;
}

void SayUnwritable(const std::string& path, const std::string& why) {
    std::fprintf(stderr, "tarnwick-make: can't write %s: %s\n", OneLine(path).Text(), why.c_str());
}

} // namespace tarnwick::make
