// The built viewer and a real server, over TLS.

#include "models.h"
#include "viewer_process.h"
#include "web_server.h"

#include <gmock/gmock.h>

#include <QFile>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ViewerLinkTest : public ::testing::Test {
protected:
    static std::unique_ptr<WebServer> Serve(WebServer::Answer answer = {}) {
        return WebServer::Tls(TARNWICK_CERTIFICATES "/server.pem", TARNWICK_CERTIFICATES "/server.key",
                              std::move(answer));
    }
    static QStringList Environment(const WebServer& server) {
        return {QString("Velquist_ws_URI=wss://localhost:%1").arg(server.Port()),
                "SSL_CERT_FILE=" TARNWICK_CERTIFICATES "/authority.pem", "XDG_CACHE_HOME="};
    }
    void PressConnect(ViewerProcess& viewer) const {
        viewer.Click(qRound(140 * scale_), qRound(708 * scale_));
    }

    const double scale_ =
        qEnvironmentVariableIsSet("QT_SCALE_FACTOR") ? qEnvironmentVariable("QT_SCALE_FACTOR").toDouble() : 1;
};

TEST_F(ViewerLinkTest, ConnectRegistersAndTheIdentifierCanBePasted) {
    const auto server = Serve([](const std::string& text) {
        return text.find("register") != std::string::npos
                   ? std::string(R"({"action":"registered","uuid":"9f2c"})")
                   : std::string();
    });
    ViewerProcess viewer({}, Environment(*server));
    ASSERT_TRUE(viewer.IsOpen());
    PressConnect(viewer);
    ASSERT_TRUE(server->WaitForMessages(2));
    EXPECT_THAT(server->Messages(),
                ElementsAre(R"({"Check": "Connexion"})", R"({"action":"register","sender":"3d viewer"})"));
    EXPECT_FALSE(viewer.WaitForDialog("Connect").isEmpty());
    EXPECT_THAT(viewer.Console("UUID"), HasSubstr("3D Viewer session UUID: 9f2c\n"));
    EXPECT_EQ(viewer.Clipboard(), "9f2c");
    viewer.Key("Return");
    EXPECT_EQ(viewer.Close(), 0);
    EXPECT_TRUE(server->WaitForCloses(1));
}

TEST_F(ViewerLinkTest, ALoadOrderOfTheServiceIsShown) {
    const auto server = Serve();
    server->Serve("/models/served.stp", PlateText());
    ViewerProcess viewer({}, Environment(*server));
    ASSERT_TRUE(viewer.IsOpen());
    PressConnect(viewer);
    ASSERT_TRUE(server->WaitForMessages(2));
    server->SendText(R"({"Load":"https://localhost:)" + std::to_string(server->Port()) +
                     R"(/models/served.stp"})");
    ASSERT_TRUE(viewer.WaitForTitle("served.stp - Tarnwick"));
    EXPECT_TRUE(QFile::exists(viewer.Home() + "/.cache/tarnwick/downloads/served.stp"));
    const QImage picture = viewer.Snapshot("served");
    // In the red quarter of the plate.
    EXPECT_EQ(picture.pixelColor(qRound(picture.width() * 0.4), qRound(picture.height() * 0.45)),
              QColor(244, 0, 0));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerLinkTest, WithoutAServerTheConsoleSaysSo) {
    ViewerProcess viewer({}, {"Velquist_ws_URI=http://localhost:1"});
    ASSERT_TRUE(viewer.IsOpen());
    PressConnect(viewer);
    EXPECT_THAT(viewer.Console("scheme"),
                HasSubstr("No server available\nURI scheme must be 'ws' or 'wss'\n"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerLinkTest, ClosingDuringAFloodOfMessagesEndsWithStatusZero) {
    const auto server = Serve();
    ViewerProcess viewer({}, Environment(*server));
    ASSERT_TRUE(viewer.IsOpen());
    PressConnect(viewer);
    ASSERT_TRUE(server->WaitForMessages(2));
    for (int i = 0; i < 10000; ++i) { server->SendText(R"({"Check"})"); }
    EXPECT_EQ(viewer.Close(), 0);
}

} // namespace
} // namespace tarnwick::test
