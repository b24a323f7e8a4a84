// The window of the console channel.

#include "app/console_window.h"
#include "app/eye_text.h"
#include "platform/console.h"
#include "waits.h"

#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTextBlock>

#include <thread>

namespace tarnwick::test {
namespace {

// Keeps what the tests print off the terminal.
class ConsoleWindowTest : public ::testing::Test {
protected:
    ConsoleWindowTest() { ::testing::internal::CaptureStderr(); }
    ~ConsoleWindowTest() override { ::testing::internal::GetCapturedStderr(); }
    // Of those that have an end.
    QString LastLine() const { return console.document()->lastBlock().previous().text(); }
    ConsoleWindow console;
};

TEST_F(ConsoleWindowTest, LinesOfTheConsoleChannelArriveInOrder) {
    ConsolePrint("Start TraiteSTEPFile\n");
    ConsolePrint("half a ");
    ConsolePrint("line\n");
    ExpectSoon([&] { return console.toPlainText(); }, "Start TraiteSTEPFile\nhalf a line\n");
    ConsolePrint("more\n");
    ExpectSoon([&] { return console.toPlainText(); }, "Start TraiteSTEPFile\nhalf a line\nmore\n");
    EXPECT_TRUE(console.isReadOnly());
}

TEST_F(ConsoleWindowTest, OtherThreadsMayPrint) {
    std::thread other([] {
        for (int i = 0; i < 100; ++i) { ConsolePrint("%d\n", i); }
    });
    other.join();
    ExpectSoon([&] { return console.document()->findBlockByNumber(99).text(); }, "99");
}

TEST_F(ConsoleWindowTest, TheLastTenThousandLinesAreKept) {
    for (int i = 0; i < 25000; ++i) { ConsolePrint("line %d\n", i); }
    ExpectSoon([&] { return LastLine(); }, "line 24999");
    EXPECT_LE(console.blockCount(), 10000);
    EXPECT_GE(console.document()->firstBlock().text().mid(5).toInt(), 15000);
}

TEST_F(ConsoleWindowTest, ItFollowsItsEndUntilItIsScrolledUp) {
    console.resize(400, 200);
    console.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&console, kPatience));
    for (int i = 0; i < 200; ++i) { ConsolePrint("line %d\n", i); }
    ExpectSoon([&] { return LastLine(); }, "line 199");
    QScrollBar* const bar = console.verticalScrollBar();
    EXPECT_GT(bar->maximum(), 3);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(3);
    ConsolePrint("one more\n");
    ExpectSoon([&] { return LastLine(); }, "one more");
    EXPECT_EQ(bar->value(), 3);
}

TEST_F(ConsoleWindowTest, NothingArrivesAfterItsEnd) {
    { ConsoleWindow second; }
    ConsolePrint("nobody listens\n");
    QTest::qWait(20);
    EXPECT_EQ(console.toPlainText(), "");
}

TEST(EyeText, IsUtf8WhereThatIsValidAndElseLatin1) {
    EXPECT_EQ(EyeText("Stra\xc3\x9f\x65"), QString::fromUtf8("Stra\xc3\x9f\x65"));
    EXPECT_EQ(EyeText("Stra\xdf\x65"), QString::fromLatin1("Stra\xdf\x65"));
    EXPECT_EQ(EyeText(""), "");
    EXPECT_EQ(EyeText("cut \xc3"), QString::fromLatin1("cut \xc3"));
}

} // namespace
} // namespace tarnwick::test
