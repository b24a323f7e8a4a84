// The link against a real server, over TLS and without.

#include "link/server_link.h"
#include "link/server_requests.h"
#include "recording_port.h"
#include "web_server.h"

#include <cpprest/json.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <limits>
#include <optional>
#include <thread>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kCheck = R"({"Check": "Connexion"})";
constexpr const char* kRegister = R"({"action":"register","sender":"3d viewer"})";
constexpr const char* kCertificate = TARNWICK_CERTIFICATES "/server.pem";
constexpr const char* kKey = TARNWICK_CERTIFICATES "/server.key";

class ServerLinkTest : public ::testing::Test {
protected:
    ServerLinkTest() {
        setenv("SSL_CERT_FILE", TARNWICK_CERTIFICATES "/authority.pem", 1);
        unsetenv("Velquist_user");
    }
    ~ServerLinkTest() override {
        link.reset();
        unsetenv("Velquist_ws_URI");
    }

    void Make() { link.emplace(port); }
    static void SetUri(const std::string& uri) { setenv("Velquist_ws_URI", uri.c_str(), 1); }
    static std::string UriOf(const WebServer& server, const std::string& scheme = "ws") {
        return scheme + "://127.0.0.1:" + std::to_string(server.Port());
    }
    void Connect(const WebServer& server) {
        SetUri(UriOf(server));
        if (!link) { Make(); }
        link->OnConnect();
    }
    // What a press of Connect logs.
    std::string LogOfConnect() {
        ::testing::internal::CaptureStderr();
        link->OnConnect();
        return ::testing::internal::GetCapturedStderr();
    }

    RecordingPort port;
    std::optional<ServerLink> link;
};

TEST_F(ServerLinkTest, ConnectSendsTheCheckAndTheRegistration) {
    const auto server = WebServer::Plain();
    Connect(*server);
    EXPECT_TRUE(link->connected);
    ASSERT_TRUE(server->WaitForMessages(2));
    EXPECT_THAT(server->Messages(), ElementsAre(kCheck, kRegister));
    EXPECT_THAT(port.Done(), ElementsAre("text Connected"));
}

TEST_F(ServerLinkTest, ConnectsOverTlsToAServerThatATrustedAuthorityVouchesFor) {
    const auto server = WebServer::Tls(kCertificate, kKey);
    Make();
    SetUri(UriOf(*server, "wss"));
    EXPECT_EQ(LogOfConnect(), "");
    EXPECT_TRUE(link->connected);
    ASSERT_TRUE(server->WaitForMessages(2));
    EXPECT_THAT(server->Messages(), ElementsAre(kCheck, kRegister));
}

TEST_F(ServerLinkTest, AServerThatNobodyVouchesForIsNoServer) {
    const auto server = WebServer::Tls(kCertificate, kKey);
    setenv("SSL_CERT_FILE", "/dev/null", 1);
    Make();
    SetUri(UriOf(*server, "wss"));
    EXPECT_THAT(LogOfConnect(), ::testing::MatchesRegex("No server available\n.*TLS handshake failed\n"));
    EXPECT_FALSE(link->connected);
    EXPECT_THAT(port.Done(), IsEmpty());
}

TEST_F(ServerLinkTest, ASecondPressRegistersAgainOnTheSameConnection) {
    const auto server = WebServer::Plain();
    Connect(*server);
    link->OnConnect();
    ASSERT_TRUE(server->WaitForMessages(4));
    EXPECT_THAT(server->Messages(), ElementsAre(kCheck, kRegister, kCheck, kRegister));
    EXPECT_EQ(server->Connections(), 1);
    EXPECT_THAT(port.Done(), ElementsAre("text Connected"));
}

TEST_F(ServerLinkTest, TheRegistrationIsAnswered) {
    const auto server = WebServer::Plain([](const std::string& text) {
        return text == kRegister ? std::string(R"({"action":"registered","uuid":"57aa"})") : std::string();
    });
    Connect(*server);
    ASSERT_TRUE(port.WaitForCount(4));
    EXPECT_THAT(port.Done(), ElementsAre("text Connected", "text Connected", "clipboard 57aa",
                                         StartsWith("box Connect: 3D Viewer session UUID:\n\n")));
}

TEST_F(ServerLinkTest, TheUserOfTheEnvironmentGoesIntoNoMessage) {
    setenv("Velquist_user", "someone@example.org", 1);
    const auto server = WebServer::Plain();
    Connect(*server);
    ASSERT_TRUE(server->WaitForMessages(2));
    EXPECT_THAT(server->Messages(), ElementsAre(kCheck, kRegister));
}

TEST_F(ServerLinkTest, AnUnsetOrEmptyUriIsTheBuiltInOne) {
    Make();
    unsetenv("Velquist_ws_URI");
    const std::string unset = LogOfConnect();
    SetUri("");
    EXPECT_EQ(LogOfConnect(), unset);
    // Nothing listens at the port of the built-in one here.
    EXPECT_EQ(unset, "No server available\nset_fail_handler: 2: Underlying Transport Error\n");
}

TEST_F(ServerLinkTest, BadUrisFailWithTheLibrarysWords) {
    Make();
    const std::pair<const char*, const char*> rows[] = {
        {"http://127.0.0.1:1", "URI scheme must be 'ws' or 'wss'"},
        {"ws://127.0.0.1:1/#part", "WebSocket URI must not contain fragment identifiers"},
        {"ws:", "URI must contain a hostname."},
        {"ws://127.0.0.1:1", "set_fail_handler: 2: Underlying Transport Error"},
        {"ws://no-such-host.invalid:1", "set_fail_handler: 2: Underlying Transport Error"},
    };
    for (const auto& [uri, words] : rows) {
        SetUri(uri);
        EXPECT_EQ(LogOfConnect(), std::string("No server available\n") + words + "\n") << uri;
        EXPECT_FALSE(link->connected);
    }
    for (const char* const uri : {"ws://%zz", "ws://a b", "%n%s%n%s"}) {
        SetUri(uri);
        EXPECT_THAT(LogOfConnect(), StartsWith("No server available\n")) << uri;
        EXPECT_FALSE(link->connected);
    }
    EXPECT_THAT(port.Done(), IsEmpty());
}

TEST_F(ServerLinkTest, AServerThatGoesAwayDuringTheHandshakeIsNoServer) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), length), 0);
    ASSERT_EQ(listen(listener, 4), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length), 0);
    std::thread going([listener] {
        for (int i = 0; i < 2; ++i) { close(accept(listener, nullptr, nullptr)); }
    });
    Make();
    for (const char* const scheme : {"ws", "wss"}) {
        SetUri(std::string(scheme) + "://127.0.0.1:" + std::to_string(ntohs(address.sin_port)));
        EXPECT_THAT(LogOfConnect(), StartsWith("No server available\n")) << scheme;
        EXPECT_FALSE(link->connected);
    }
    going.join();
    close(listener);
}

TEST_F(ServerLinkTest, AfterAFailureAPressConnectsOnceAServerIsThere) {
    Make();
    SetUri("ws://127.0.0.1:1");
    EXPECT_THAT(LogOfConnect(), StartsWith("No server available\n"));
    EXPECT_THAT(LogOfConnect(), StartsWith("No server available\n"));
    const auto server = WebServer::Plain();
    SetUri(UriOf(*server));
    EXPECT_EQ(LogOfConnect(), "");
    EXPECT_TRUE(link->connected);
    EXPECT_TRUE(server->WaitForMessages(2));
}

TEST_F(ServerLinkTest, AConnectionThatIsLostStaysLost) {
    auto server = WebServer::Plain();
    Connect(*server);
    ASSERT_TRUE(server->WaitForMessages(2));
    server.reset();
    std::string log;
    for (int i = 0; i < 200 && log.empty(); ++i) {
        log = LogOfConnect();
    } // the loss takes its time to arrive
    EXPECT_THAT(log, StartsWith("No server available\n"));
    EXPECT_TRUE(link->connected);
    const auto another = WebServer::Plain();
    SetUri(UriOf(*another));
    EXPECT_THAT(LogOfConnect(), StartsWith("No server available\n"));
    EXPECT_EQ(another->Connections(), 0);
    link->OnClose();
}

TEST_F(ServerLinkTest, ClosingWithoutAConnectionDoesNotFail) {
    Make();
    ::testing::internal::CaptureStderr();
    link->OnClose();
    link->OnClose();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(ServerLinkTest, ClosingEndsTheConnection) {
    const auto server = WebServer::Plain();
    Connect(*server);
    link->OnClose();
    EXPECT_TRUE(server->WaitForCloses(1));
}

TEST_F(ServerLinkTest, TheEndOfTheProgramEndsTheConnection) {
    const auto server = WebServer::Plain();
    Connect(*server);
    link.reset();
    EXPECT_TRUE(server->WaitForCloses(1));
}

TEST_F(ServerLinkTest, WhatTheServerSaysAtOnceIsHeard) {
    const auto server = WebServer::Plain([](const std::string& text) {
        return text == kCheck ? std::string(R"({"Load":"first.stp"})") : std::string();
    });
    Connect(*server);
    EXPECT_TRUE(port.WaitForCount(3));
    EXPECT_THAT(port.Done(), ElementsAre("text Connected", "load first.stp", "invalidate"));
}

TEST_F(ServerLinkTest, TenThousandMessagesAreHandledInTheirOrder) {
    const auto server = WebServer::Plain();
    Connect(*server);
    for (int i = 0; i < 10000; ++i) { server->SendText(R"({"Load":")" + std::to_string(i) + R"("})"); }
    ASSERT_TRUE(port.WaitForCount(20001));
    const std::vector<std::string> done = port.Done();
    for (std::size_t i = 0; i < 10000; ++i) { ASSERT_EQ(done[2 * i + 1], "load " + std::to_string(i)); }
}

TEST_F(ServerLinkTest, JunkOfEveryKindIsSurvived) {
    const auto server = WebServer::Plain();
    Connect(*server);
    ASSERT_TRUE(server->WaitForMessages(2));
    const std::string good[] = {R"({"Load":"http://h/a.stp","x":"y"})", R"({"Check": "Connexion"})",
                                R"({"action":"registered","uuid":"1234"})"};
    server->SendText("");
    server->SendText(std::string(1000000, 'x'));
    server->SendText(R"({"Load":")" + std::string(1000000, 'x'));
    server->SendText(R"({"Load":")" + std::string(1000000, 'y') + '"');
    server->SendText(std::string(1000, '\0'));
    server->SendText(std::string(100000, '"'));
    server->SendText(std::string(100000, '{'));
    server->SendText("%n%s%n%s");
    for (const std::string& text : good) {
        server->SendBinary(text);
        for (std::size_t length = 0; length <= text.size(); ++length) {
            server->SendText(text.substr(0, length));
        }
        for (std::size_t i = 0; i < text.size(); ++i) {
            std::string damaged = text;
            for (const char c : {'"', ',', ':', '\0', '\\', '%'}) {
                damaged[i] = c;
                server->SendText(damaged);
            }
        }
    }
    server->SendText(R"({"Load":"the end"})");
    EXPECT_TRUE(port.WaitFor("load the end"));
    link->OnConnect();
    EXPECT_TRUE(server->WaitForMessages(4));
}

TEST_F(ServerLinkTest, TheServerMayGoWhileItsMessagesAreHandled) {
    auto server = WebServer::Plain();
    Connect(*server);
    for (int i = 0; i < 1000; ++i) { server->SendText(R"({"Check"})"); }
    EXPECT_TRUE(port.WaitForCount(2));
    server.reset();
    link->OnClose();
}

TEST_F(ServerLinkTest, TheLinkMayGoWhileMessagesArrive) {
    const auto server = WebServer::Plain();
    Connect(*server);
    for (int i = 0; i < 1000; ++i) { server->SendText(R"({"Check"})"); }
    EXPECT_TRUE(port.WaitForCount(2));
    link->OnClose();
    link.reset();
    EXPECT_TRUE(server->WaitForCloses(1));
}

TEST_F(ServerLinkTest, AMaterialIsAskedForThePickedContainer) {
    const auto server = WebServer::Plain();
    Connect(*server);
    link->OnAddMaterial({.path = "/m/p.stp", .selectedExactContainerId = 77, .selectedContainerType = 2});
    link->OnAddMaterial({.path = "/m/p.stp", .selectedExactContainerId = -8, .selectedContainerType = 1});
    link->OnAddMaterial({});
    ASSERT_TRUE(server->WaitForMessages(5));
    const std::vector<std::string> messages = server->Messages();
    EXPECT_EQ(messages[2], R"({"Id":77,"Type":"Shell","Url":"p.stp","action":"add_mat"})");
    EXPECT_EQ(messages[3], R"({"Id":-8,"Type":"Solid","Url":"p.stp","action":"add_mat"})");
    EXPECT_EQ(messages[4], R"({"Id":0,"Type":"","Url":"","action":"add_mat"})");
}

TEST_F(ServerLinkTest, AFileNameGoesOutAsValidTextWhateverItsBytes) {
    const auto server = WebServer::Plain();
    Connect(*server);
    link->OnAddMaterial({.path = "/m/t\xFC\"\\\n\x01.stp"});
    link->OnAddMaterial({.path = "/m/t\xC3\xBC.stp"});
    ASSERT_TRUE(server->WaitForMessages(4));
    EXPECT_THAT(server->Messages()[2], HasSubstr("\"Url\":\"t\xC3\xBC\\\"\\\\\\n\\u0001.stp\""));
    EXPECT_THAT(server->Messages()[3], HasSubstr("\"Url\":\"t\xC3\xBC.stp\""));
}

TEST(ServerRequestsTest, HaveTheBytesThatALibraryWritesOfWhatItReadsInThem) {
    std::string every = "/m/";
    for (int c = 1; c < 256; ++c) {
        if (c != '/') { every += static_cast<char>(c); }
    }
    const Selection selections[] = {{},
                                    {.path = every.c_str()},
                                    {.path = "p.stp",
                                     .selectedExactContainerId = std::numeric_limits<std::int32_t>::min(),
                                     .selectedContainerType = 1}};
    for (const Selection& selection : selections) {
        const std::string request = MaterialRequest(selection);
        EXPECT_EQ(web::json::value::parse(request).serialize(), request);
    }
    EXPECT_EQ(web::json::value::parse(RegisterRequest()).serialize(), RegisterRequest());
}

TEST_F(ServerLinkTest, AMaterialWithoutAConnectionIsLoggedAsConnectDoes) {
    Make();
    ::testing::internal::CaptureStderr();
    link->OnAddMaterial({});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "No server available\nClient not connected.\n");
}

TEST_F(ServerLinkTest, APmiStartsTheBrowserAndLogsThePick) {
    Make();
    ::testing::internal::CaptureStderr();
    link->OnAddPmi({.path = "/m/p%s.stp", .rootName = "ROOT", .selectedText = "#1234"});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Call XML viewer : Edit PMI\n  File: /m/p%s.stp\n  Product: ROOT  Face: #1234\n");
    ASSERT_EQ(port.Programs().size(), 1u);
    EXPECT_THAT(port.Programs()[0],
                ElementsAre("chromium", "google-chrome", StartsWith("--user-data-dir=/"),
                            "--disable-web-security", ::testing::EndsWith("&Id=1234&Type=face&Url=p%s.stp")));
    ::testing::internal::CaptureStderr();
    link->OnAddPmi({});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Call XML viewer : Edit PMI\n  File: (null)\n  Product: (null)  Face: \n");
}

} // namespace
} // namespace tarnwick::test
