#include "link/server_requests.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

std::string UrlOf(const std::string& path) {
    const std::string request = MaterialRequest({.path = path.c_str()});
    const std::string start = R"({"Id":0,"Type":"","Url":")";
    const std::string end = R"(","action":"add_mat"})";
    EXPECT_TRUE(request.starts_with(start) && request.ends_with(end)) << request;
    return request.substr(start.size(), request.size() - start.size() - end.size());
}

TEST(ServerRequests, HaveTheFormThatTheServiceKnows) {
    EXPECT_EQ(CheckRequest(), R"({"Check": "Connexion"})");
    EXPECT_EQ(RegisterRequest(), R"({"action":"register","sender":"3d viewer"})");
    EXPECT_EQ(MaterialRequest(
                  {.path = "/m/p.stp", .selectedExactContainerId = 2147483647, .selectedContainerType = 2}),
              R"({"Id":2147483647,"Type":"Shell","Url":"p.stp","action":"add_mat"})");
    EXPECT_EQ(MaterialRequest({.selectedExactContainerId = -8, .selectedContainerType = 1}),
              R"({"Id":-8,"Type":"Solid","Url":"","action":"add_mat"})");
}

TEST(ServerRequests, EscapeWhatATextMayNotHave) {
    EXPECT_EQ(UrlOf("/m/\"\\\b\f\n\r\t\x01\x0B\x1F\x7F'.stp"),
              "\\\"\\\\\\b\\f\\n\\r\\t\\u0001\\u000B\\u001F\x7F'.stp");
}

TEST(ServerRequests, TakeBytesThatAreNoUtf8ForLatin1) {
    std::string path = "/m/";
    std::string expected;
    for (int c = 0x80; c < 0x100; ++c) {
        path += static_cast<char>(c);
        expected += static_cast<char>(c < 0xC0 ? 0xC2 : 0xC3);
        expected += static_cast<char>(c & 0xBF);
    }
    EXPECT_EQ(UrlOf(path), expected);
    EXPECT_EQ(UrlOf("/m/\xE9\x83\xA8\xF0\x9F\x94\xA9.stp"), "\xE9\x83\xA8\xF0\x9F\x94\xA9.stp");
}

} // namespace
} // namespace tarnwick::test
