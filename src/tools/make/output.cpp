// Opening, writing and closing a file.
#include "tools/make/output.h"

#include <cstdio>

namespace tarnwick::make {

bool WriteFile(const std::string& path, bool compress, const std::function<void(P21Writer*)>& write) {
    std::unique_ptr<ByteSink> sink = OpenFile(path, compress);
    if (sink->Error().empty()) {
        P21Writer writer(sink.get());
        write(&writer);
    }
    if (sink->Close()) return true;
    std::fprintf(stderr, "tarnwick-make: can't write %s: %s\n", path.c_str(), sink->Error().c_str());
    return false;
}

} // namespace tarnwick::make
