// The dialog, its link and a real server: what a user and the service do to each other.

#include "app/dialog_link.h"
#include "dialog_fixture.h"
#include "formats/load_commands.h"
#include "web_server.h"

#include <gmock/gmock.h>

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTcpServer>

#include <sys/resource.h>

#include <csignal>
#include <functional>
#include <memory>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kRegister = R"({"action":"register","sender":"3d viewer"})";

struct Asked {
    std::string path;
    std::string rootName;
    bool useThreads;
};
std::vector<Asked> asked;

constexpr LoadCommands kNoting{
    .loadStpxFile =
        [](SceneView&, const char* path, const char* rootName, bool useThreads) {
            asked.push_back({path, rootName != nullptr ? rootName : "(null)", useThreads});
        },
};

class DialogLinkTest : public DialogFixture {
protected:
    DialogLinkTest() {
        asked.clear();
        unsetenv("XDG_CACHE_HOME");
        unsetenv("Velquist_ws_URI");
        setenv("SSL_CERT_FILE", TARNWICK_CERTIFICATES "/authority.pem", 1);
    }
    ~DialogLinkTest() override { link.reset(); }

    void OpenLinked(const LoadCommands& commands = kLoadCommands) {
        Open("", commands);
        link.emplace(*dialog);
    }
    void Press(const char* number) { QTest::mouseClick(Get<QPushButton>(number), Qt::LeftButton); }
    void Connect(const WebServer& server) {
        setenv("Velquist_ws_URI", ("ws://127.0.0.1:" + std::to_string(server.Port())).c_str(), 1);
        if (!dialog) { OpenLinked(); }
        Press("1002");
    }
    std::string LinkText() { return Get<QLabel>("1009")->text().toStdString(); }
    static std::string Url(const WebServer& server, const std::string& path) {
        return "http://127.0.0.1:" + std::to_string(server.Port()) + path;
    }
    static std::string LoadOrder(const std::string& value) { return R"({"Load":")" + value + R"("})"; }
    bool WaitForPath(const std::string& path) {
        return QTest::qWaitFor([&] { return dialog->CurrentPath() == path; }, kPatience);
    }
    QString Downloads() const { return folder_.filePath(".cache/tarnwick/downloads"); }
    std::string Downloaded(const std::string& name) const { return Downloads().toStdString() + '/' + name; }
    // Does `what` to the box that the link shows next, and closes it.
    void WhenBoxIsOpen(std::function<void(const QMessageBox&)> what) {
        WhenModal([this, what = std::move(what)](QWidget& window) {
            auto* const box = qobject_cast<QMessageBox*>(&window);
            ASSERT_NE(box, nullptr);
            what(*box);
            ++boxes_;
            box->accept();
        });
    }
    bool WaitForBoxes(int count) {
        return QTest::qWaitFor([&] { return boxes_ >= count; }, kPatience);
    }

    std::optional<DialogLink> link;

private:
    int boxes_ = 0;
};

TEST_F(DialogLinkTest, APressOfConnectConnectsAndSaysSo) {
    const auto server = WebServer::Plain();
    Connect(*server);
    EXPECT_EQ(LinkText(), "Connected");
    ASSERT_TRUE(server->WaitForMessages(2));
    EXPECT_THAT(server->Messages(), ElementsAre(R"({"Check": "Connexion"})", kRegister));
}

TEST_F(DialogLinkTest, AFailedPressChangesNothingAndMayBeRepeated) {
    setenv("Velquist_ws_URI", "ws://127.0.0.1:1", 1);
    OpenLinked();
    ::testing::internal::CaptureStderr();
    Press("1002");
    Press("1002");
    EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                HasSubstr("No server available\nset_fail_handler: 2: Underlying Transport Error\n"));
    EXPECT_EQ(LinkText(), "0");
    const auto server = WebServer::Plain();
    Connect(*server);
    EXPECT_EQ(LinkText(), "Connected");
}

TEST_F(DialogLinkTest, TheRegistrationFillsTheClipboardAndShowsABox) {
    const auto server = WebServer::Plain([](const std::string& text) {
        return text == kRegister ? std::string(R"({"action":"registered","uuid":"57aa-%s"})") : std::string();
    });
    WhenBoxIsOpen([this](const QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "Connect");
        EXPECT_EQ(box.text(),
                  "3D Viewer session UUID:\n\nThe UUID is in the clipboard; paste it in the HTML viewer");
        EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
        EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
        EXPECT_EQ(box.parentWidget(), &*dialog);
        EXPECT_EQ(LinkText(), "Connected");
        EXPECT_EQ(QGuiApplication::clipboard()->text(), "57aa-%s");
    });
    Connect(*server);
    EXPECT_TRUE(WaitForBoxes(1));
}

TEST_F(DialogLinkTest, WhileTheBoxIsOpenNoFurtherMessageIsHandled) {
    const auto server = WebServer::Plain();
    Connect(*server);
    WhenBoxIsOpen([this](const QMessageBox&) {
        QTest::qWait(300);
        EXPECT_EQ(dialog->CurrentPath(), "");
    });
    server->SendText(R"({"action":"registered","uuid":"1"})");
    server->SendText(LoadOrder(Plate()));
    EXPECT_TRUE(WaitForBoxes(1));
    EXPECT_TRUE(WaitForPath(Plate()));
}

TEST_F(DialogLinkTest, ACheckSetsTheTextAgain) {
    const auto server = WebServer::Plain();
    Connect(*server);
    dialog->SetPickText("Material: steel  ");
    server->SendText(R"({"Check": "Connexion"})");
    ExpectSoon([this] { return LinkText(); }, "Connected");
}

TEST_F(DialogLinkTest, ALoadOrderShowsTheFile) {
    const auto server = WebServer::Plain();
    Connect(*server);
    const std::string plate = Plate();
    server->SendText(LoadOrder(plate));
    ASSERT_TRUE(WaitForPath(plate));
    ExpectSoon([this] { return dialog->windowTitle(); }, "plate.stp - Tarnwick");
    EXPECT_THAT(Get<QLabel>("1008")->text().toStdString(), HasSubstr("Nb Triangles: 8 "));
    ExpectColourSoon(kRed, 244, 0, 0);
}

TEST_F(DialogLinkTest, ALoadOrderMayNameAProductAndIsReadWithThreads) {
    const auto server = WebServer::Plain();
    OpenLinked(kNoting);
    Connect(*server);
    server->SendText(LoadOrder("/models of mine/a.stpx PUMP"));
    server->SendText(LoadOrder("/b.stpx"));
    ASSERT_TRUE(WaitForPath("/b.stpx"));
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].path, "/models of mine/a.stpx");
    EXPECT_EQ(asked[0].rootName, "PUMP");
    EXPECT_EQ(asked[0].useThreads, 1);
    EXPECT_EQ(asked[1].rootName, "(null)");
}

TEST_F(DialogLinkTest, OrdersThatArriveDuringALoadAreCarriedOutInTheirOrder) {
    const auto server = WebServer::Plain();
    OpenLinked(kNoting);
    Connect(*server);
    for (int i = 0; i < 100; ++i) { server->SendText(LoadOrder(std::to_string(i) + ".stpx")); }
    ASSERT_TRUE(WaitForPath("99.stpx"));
    ASSERT_EQ(asked.size(), 100u);
    for (std::size_t i = 0; i < 100; ++i) { ASSERT_EQ(asked[i].path, std::to_string(i) + ".stpx"); }
}

TEST_F(DialogLinkTest, AnEmptyLoadOrderLoadsNothing) {
    const auto server = WebServer::Plain();
    Connect(*server);
    server->SendText(R"({"Load": "/a.stp"})");
    server->SendText(LoadOrder(Plate()));
    ASSERT_TRUE(WaitForPath(Plate()));
}

TEST_F(DialogLinkTest, AUrlIsDownloadedIntoAFolderForTheUserAlone) {
    const auto server = WebServer::Plain();
    server->Serve("/d/served.stp", PlateText());
    Connect(*server);
    server->SendText(LoadOrder(Url(*server, "/d/served.stp")));
    ASSERT_TRUE(WaitForPath(Downloaded("served.stp")));
    ExpectSoon([this] { return dialog->View().loaded.drawnTriangles; }, 8);
    QFile file(QString::fromStdString(Downloaded("served.stp")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), PlateText());
    for (const QString& folder : {Downloads(), folder_.filePath(".cache/tarnwick")}) {
        EXPECT_EQ(QFileInfo(folder).permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther),
                  QFile::Permissions());
    }
}

TEST_F(DialogLinkTest, AnHttpsUrlIsDownloadedWhoeverVouchesForIt) {
    const auto server = WebServer::Plain();
    const auto files =
        WebServer::Tls(TARNWICK_CERTIFICATES "/server.pem", TARNWICK_CERTIFICATES "/server.key");
    files->Serve("/served.stp", PlateText());
    setenv("SSL_CERT_FILE", "/dev/null", 1);
    Connect(*server);
    server->SendText(LoadOrder("https://127.0.0.1:" + std::to_string(files->Port()) + "/served.stp"));
    ASSERT_TRUE(WaitForPath(Downloaded("served.stp")));
    ExpectSoon([this] { return dialog->View().loaded.drawnTriangles; }, 8);
}

TEST_F(DialogLinkTest, AFolderWithBlanksAndDotsHoldsDownloadsAsWell) {
    const std::string cache = folder_.filePath("a.b c/cache").toStdString();
    setenv("XDG_CACHE_HOME", cache.c_str(), 1);
    const auto server = WebServer::Plain();
    server->Serve("/served.stp", PlateText());
    Connect(*server);
    server->SendText(LoadOrder(Url(*server, "/served.stp")));
    EXPECT_TRUE(WaitForPath(cache + "/tarnwick/downloads/served.stp"));
    ExpectSoon([this] { return dialog->View().loaded.drawnTriangles; }, 8);
    unsetenv("XDG_CACHE_HOME");
}

TEST_F(DialogLinkTest, AFailedDownloadIsAFileThatIsNotThere) {
    const auto server = WebServer::Plain();
    Connect(*server);
    server->SendText(LoadOrder("http://127.0.0.1:1/gone.stp"));
    ASSERT_TRUE(WaitForPath(Downloaded("gone.stp")));
    ExpectSoon([this] { return dialog->windowTitle().contains("gone.stp"); }, true);
    EXPECT_EQ(dialog->View().loaded.drawnTriangles, 0);
}

// For as long as it lives, no file may grow beyond so many bytes, as on a disk that is full there. Programs
// that are started in that time are bound too.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        former_ = std::signal(SIGXFSZ, SIG_IGN); // the writer is told instead
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        most_ = limit.rlim_cur;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = most_;
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, former_);
    }

private:
    rlim_t most_ = 0;
    void (*former_)(int) = nullptr;
};

TEST_F(DialogLinkTest, ADownloadThatFillsTheDiskIsADamagedFileAndNothingElse) {
    constexpr rlim_t kRoom = 8192;
    std::string text = PlateText();
    text.insert(text.find("DATA;"), "/* " + std::string(2 * kRoom, '-') + " */\n");
    const auto server = WebServer::Plain();
    server->Serve("/full.stp", text);
    Connect(*server);
    {
        const FullDisk disk(kRoom);
        server->SendText(LoadOrder(Url(*server, "/full.stp")));
        ASSERT_TRUE(WaitForPath(Downloaded("full.stp")));
    }
    EXPECT_LE(QFileInfo(QString::fromStdString(Downloaded("full.stp"))).size(), static_cast<qint64>(kRoom));
    EXPECT_EQ(dialog->View().loaded.drawnTriangles, 0);
    server->SendText(LoadOrder(Url(*server, "/full.stp")));
    ExpectSoon([this] { return dialog->View().loaded.drawnTriangles; }, 8);
}

TEST_F(DialogLinkTest, AHostileUrlIsOneArgumentOfTheDownloadAndNothingElse) {
    const auto server = WebServer::Plain();
    Connect(*server);
    const std::string owned = folder_.filePath("owned").toStdString();
    ::testing::internal::CaptureStderr();
    for (const std::string& name : {";touch${IFS}" + owned + ";x.stp", "$(touch${IFS}" + owned + ")y.stp",
                                    "`touch\t" + owned + "`z.stp", std::string("%n%s%100000d.stp"),
                                    std::string("|cat>w.stp"), std::string("'v.stp")}) {
        server->SendText(LoadOrder(Url(*server, "/d/" + name)));
    }
    server->SendText(LoadOrder(Url(*server, "/../../../../u.stp")));
    server->SendText(LoadOrder(Url(*server, "/d/..")));
    server->SendText(LoadOrder(Url(*server, "/d/\" touch " + owned)));
    server->SendText(LoadOrder(Plate()));
    EXPECT_TRUE(WaitForPath(Plate()));
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(log, HasSubstr("/d/%n%s%100000d.stp -o %n%s%100000d.stp  --output-dir "));
    EXPECT_THAT(log, HasSubstr("<E> Download: no file name in the URL " + Url(*server, "/d/..") + "\n"));
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(owned)));
    // Whatever was downloaded lies in the folder, and there is nothing beside it.
    const QDir above(folder_.filePath(".cache/tarnwick"));
    EXPECT_EQ(above.entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList("downloads"));
    EXPECT_FALSE(QFileInfo::exists("u.stp"));
    EXPECT_TRUE(QFileInfo::exists(Downloads() + "/u.stp"));
}

TEST_F(DialogLinkTest, ClosingTheDialogEndsADownload) {
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    const auto server = WebServer::Plain();
    Connect(*server);
    server->SendText(LoadOrder("http://127.0.0.1:" + std::to_string(silent.serverPort()) + "/a.stp"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return silent.hasPendingConnections(); }, kPatience));
    dialog->done(0);
    link.reset();
    EXPECT_EQ(dialog->CurrentPath(), "");
    EXPECT_TRUE(server->WaitForCloses(1));
}

TEST_F(DialogLinkTest, ClosingTheDialogEndsTheConnectionAndTheMessagesThatWait) {
    const auto server = WebServer::Plain();
    Connect(*server);
    for (int i = 0; i < 1000; ++i) { server->SendText(R"({"Check"})"); }
    dialog->done(0);
    link.reset();
    EXPECT_TRUE(server->WaitForCloses(1));
}

TEST_F(DialogLinkTest, ClosingTheDialogWithoutAConnectionDoesNotFail) {
    OpenLinked();
    dialog->done(0);
    link.reset();
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(DialogLinkTest, TheServerMayGoWhileTheBoxIsOpen) {
    auto server = WebServer::Plain();
    Connect(*server);
    WhenBoxIsOpen([&](const QMessageBox&) { server.reset(); });
    server->SendText(R"({"action":"registered","uuid":"1"})");
    EXPECT_TRUE(WaitForBoxes(1));
    Press("1002"); // fails, or finds the connection still there
    Load(Plate());
    EXPECT_EQ(dialog->CurrentPath(), Plate());
}

TEST_F(DialogLinkTest, AddPmiStartsTheBrowserAtThePickedFace) {
    const std::string arguments = folder_.filePath("arguments").toStdString();
    const std::string browser =
        Write("chromium", "#!/bin/sh\nprintf '%s\\n' \"$@\" >'" + arguments + ".new'\nmv '" + arguments +
                              ".new' '" + arguments + "'\n");
    QFile::setPermissions(QString::fromStdString(browser),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder_.path()) + ':' + path);
    OpenLinked();
    Load(Plate());
    Click(kRed);
    dialog->View().selectedText = "#`touch owned`\"%n"; // as a product of this name would leave it
    Get<QPushButton>("1003")->click();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return QFileInfo::exists(QString::fromStdString(arguments)); }, kPatience));
    QFile file(QString::fromStdString(arguments));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines[0].startsWith("--user-data-dir=/")) << lines[0].toStdString();
    EXPECT_EQ(lines[1], "--disable-web-security");
    EXPECT_TRUE(lines[2].endsWith("&action=add_pmi&Id=`touch owned`\"%n&Type=face&Url=plate.stp"))
        << lines[2].toStdString();
    qputenv("PATH", path);
}

TEST_F(DialogLinkTest, AddMaterialAsksForThePickedSolid) {
    const auto server = WebServer::Plain();
    Connect(*server);
    Load(Plate());
    Click(kRed);
    Get<QPushButton>("1014")->click();
    ASSERT_TRUE(server->WaitForMessages(3));
    EXPECT_EQ(server->Messages()[2], R"({"Id":91,"Type":"Solid","Url":"plate.stp","action":"add_mat"})");
}

TEST_F(DialogLinkTest, AddMaterialWithoutAConnectionIsLogged) {
    OpenLinked();
    ::testing::internal::CaptureStderr();
    Get<QPushButton>("1014")->click();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "No server available\nClient not connected.\n");
}

} // namespace
} // namespace tarnwick::test
