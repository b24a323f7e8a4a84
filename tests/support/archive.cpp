#include "support/archive.h"

#include <gtest/gtest.h>
#include <minizip/unzip.h>
#include <minizip/zip.h>
#include <zlib.h>

namespace tarnwick::test {

void WriteArchive(const std::string& path, const std::vector<Member>& members) {
    zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    ASSERT_NE(zip, nullptr);
    for (const Member& member : members) {
        const auto* const data = reinterpret_cast<const unsigned char*>(member.content.data());
        const uInt size = static_cast<uInt>(member.content.size());
        const uLong crc = crc32(crc32(0, nullptr, 0), data, size);
        zip_fileinfo info{};
        ASSERT_EQ(zipOpenNewFileInZip3_64(zip, member.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                          member.method, Z_DEFAULT_COMPRESSION, 0, -MAX_WBITS, 8, 0,
                                          member.password, crc, 0),
                  ZIP_OK);
        ASSERT_EQ(zipWriteInFileInZip(zip, data, size), ZIP_OK);
        ASSERT_EQ(zipCloseFileInZip(zip), ZIP_OK);
    }
    ASSERT_EQ(zipClose(zip, nullptr), ZIP_OK);
}

std::vector<std::string> MemberNames(const std::string& path) {
    std::vector<std::string> names;
    unzFile zip = unzOpen64(path.c_str());
    for (int result = unzGoToFirstFile(zip); result == UNZ_OK; result = unzGoToNextFile(zip)) {
        char name[256];
        unzGetCurrentFileInfo64(zip, nullptr, name, sizeof name, nullptr, 0, nullptr, 0);
        names.emplace_back(name);
    }
    unzClose(zip);
    return names;
}

} // namespace tarnwick::test
