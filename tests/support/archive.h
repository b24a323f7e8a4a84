#pragma once

#include <string>
#include <vector>

namespace tarnwick::test {

// One member that goes into an archive, by zlib's deflate (8) or stored (0).
struct Member {
    std::string name;
    std::string content;
    int method = 8;
    const char* password = nullptr;
};

// Writes a ZIP archive of these members, in this order.
void WriteArchive(const std::string& path, const std::vector<Member>& members);

// The names of an archive's members, in the order of its directory.
std::vector<std::string> MemberNames(const std::string& path);

} // namespace tarnwick::test
