#include "zip_bundle.h"

#include <algorithm>
#include <cstdlib>
#include <minizip/zip.h>
#include <zlib.h>

namespace tarnwick::fuzz {

void WriteZip(const std::string& path, std::string_view bundle) {
    zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    if (zip == nullptr) { std::abort(); }
    for (int members = 0; bundle.starts_with("@@") && members < 12; ++members) {
        const std::size_t end = std::min(bundle.find('\n'), bundle.size());
        std::string name(bundle.substr(2, std::min<std::size_t>(end - 2, 300)));
        const bool isStored = name.starts_with("=");
        if (isStored) { name.erase(0, 1); }
        bundle.remove_prefix(std::min(end + 1, bundle.size()));
        const std::size_t size = std::min(bundle.find("\n@@"), bundle.size());
        zip_fileinfo info{};
        zipOpenNewFileInZip64(zip, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                              isStored ? 0 : Z_DEFLATED, 1, 0);
        zipWriteInFileInZip(zip, bundle.data(), static_cast<unsigned>(size));
        zipCloseFileInZip(zip);
        bundle.remove_prefix(std::min(size + 1, bundle.size()));
    }
    zipClose(zip, nullptr);
}

} // namespace tarnwick::fuzz
