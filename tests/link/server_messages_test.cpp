// What each message of the service leads to.

#include "link/server_messages.h"
#include "recording_port.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

using Texts = std::vector<std::string>;

class ServerMessagesTest : public ::testing::Test {
protected:
    // What a message does, and what it logs.
    Texts Do(const std::string& text) {
        RecordingPort port;
        return Do(text, port);
    }
    Texts Do(const std::string& text, RecordingPort& port) {
        ::testing::internal::CaptureStderr();
        OnServerMessage(port, text);
        log_ = ::testing::internal::GetCapturedStderr();
        programs_ = port.Programs();
        return port.Done();
    }

    std::string log_;
    std::vector<Texts> programs_;
};

constexpr const char* kBox =
    "box Connect: 3D Viewer session UUID:\n\nThe UUID is in the clipboard; paste it in the HTML viewer";

TEST_F(ServerMessagesTest, ACheckSetsConnected) {
    for (const char* const text : {R"({"Check": "Connexion"})", R"({"Check"})", R"({"Check")"}) {
        EXPECT_THAT(Do(text), ElementsAre("text Connected")) << text;
        EXPECT_EQ(log_, "");
    }
}

TEST_F(ServerMessagesTest, OtherTextsAreIgnoredWithoutAWord) {
    for (const char* const text :
         {"", "{", "junk", R"({"Check)", R"({"check"})", R"( {"Check"})", R"({ "Load":"a.stp"})",
          R"({"load":"a.stp"})", R"({"action":"registere)", R"({"action": "registered","uuid":"1"})"}) {
        EXPECT_THAT(Do(text), IsEmpty()) << text;
        EXPECT_EQ(log_, "") << text;
    }
}

TEST_F(ServerMessagesTest, ARegistrationPutsItsIdentifierOnTheClipboardAndShowsTheBox) {
    EXPECT_THAT(Do(R"({"action":"registered","uuid":"1234"})"),
                ElementsAre("text Connected", "clipboard 1234", kBox));
    EXPECT_EQ(log_, "3D Viewer session UUID: 1234\n");
}

TEST_F(ServerMessagesTest, AnythingMayFollowTheTwentyOneCharactersOfARegistration) {
    EXPECT_THAT(Do(R"({"action":"registeredly" , x"uuid"zz : zz"12 34"and more)"),
                ElementsAre("text Connected", "clipboard 12 34", kBox));
}

TEST_F(ServerMessagesTest, ARegistrationWithAnotherSecondKeyOnlySaysConnected) {
    for (const char* const text :
         {R"({"action":"registered","id":"1","uuid":"1234"})", R"({"action":"registered","UUID":"1234"})",
          R"({"action":"registered","uuid2":"1234"})", R"({"action":"registered","uui":"1234"})"}) {
        EXPECT_THAT(Do(text), ElementsAre("text Connected")) << text;
        EXPECT_EQ(log_, "") << text;
    }
}

TEST_F(ServerMessagesTest, TheIdentifierAsFirstKeyFailsThePrefix) {
    EXPECT_THAT(Do(R"({"uuid":"1234","action":"registered"})"), IsEmpty());
}

TEST_F(ServerMessagesTest, ABackslashDoesNotKeepAQuoteFromEndingAValue) {
    EXPECT_THAT(Do(R"({"action":"registered","uuid":"12\"34"})"),
                ElementsAre("text Connected", R"(clipboard 12\)", kBox));
    EXPECT_THAT(Do(R"({"Load":"a\"b.stp"})"), ElementsAre(R"(load a\)", "invalidate"));
}

TEST_F(ServerMessagesTest, ARegistrationThatEndsTooSoonIsGivenUpWithOneLine) {
    const std::string good = R"({"action":"registered","uuid":"1234")";
    for (std::size_t length = 21; length < good.size(); ++length) {
        EXPECT_THAT(Do(good.substr(0, length)), ElementsAre("text Connected")) << length;
        EXPECT_THAT(log_, StartsWith("<E> Message of the server: ")) << length;
        EXPECT_EQ(std::count(log_.begin(), log_.end(), '\n'), 1) << length;
    }
    EXPECT_THAT(Do(good), ElementsAre("text Connected", "clipboard 1234", kBox));
}

TEST_F(ServerMessagesTest, ALoadShowsTheFileAndRedraws) {
    EXPECT_THAT(Do(R"({"Load":"/models/a b.stpx PUMP","other":"key"})"),
                ElementsAre("load /models/a b.stpx PUMP", "invalidate"));
    EXPECT_THAT(Do(R"({"Load":"c:\\models\\a.stp"})"),
                ElementsAre(R"(load c:\\models\\a.stp)", "invalidate"));
}

TEST_F(ServerMessagesTest, TheTwoCharactersBehindTheLoadKeyAreNotLookedAt) {
    EXPECT_THAT(Do(R"({"Load"##a.stp"})"), ElementsAre("load a.stp", "invalidate"));
}

TEST_F(ServerMessagesTest, ABlankBehindTheColonGivesAnEmptyValue) {
    EXPECT_THAT(Do(R"({"Load": "a.stp"})"), ElementsAre("load ", "invalidate"));
}

TEST_F(ServerMessagesTest, ALoadThatEndsTooSoonIsGivenUpWithOneLine) {
    const std::string good = R"({"Load":"http://h/a.stp")";
    for (std::size_t length = 7; length < good.size(); ++length) {
        EXPECT_THAT(Do(good.substr(0, length)), IsEmpty()) << length;
        EXPECT_EQ(log_, "<E> Message of the server: the text to load has no end\n") << length;
    }
    EXPECT_THAT(Do(good), ElementsAre("run curl", "load \"/downloads/a.stp\"", "invalidate"));
}

TEST_F(ServerMessagesTest, ANulEndsAMessage) {
    using namespace std::string_literals;
    EXPECT_THAT(Do("{\"Load\":\"a\0.stp\"}"s), IsEmpty());
    EXPECT_THAT(Do("{\"Check\"\0junk"s), ElementsAre("text Connected"));
    EXPECT_THAT(Do("\0{\"Check\""s), IsEmpty());
}

TEST_F(ServerMessagesTest, AUrlIsDownloadedAndLoadedFromTheFolder) {
    EXPECT_THAT(Do(R"({"Load":"https://host:8443/x/y/a.stpz"})"),
                ElementsAre("run curl", "load \"/downloads/a.stpz\"", "invalidate"));
    EXPECT_THAT(programs_, ElementsAre(ElementsAre("curl", "-k", "-X", "GET", "https://host:8443/x/y/a.stpz",
                                                   "-o", "a.stpz", "--output-dir", "/downloads")));
    EXPECT_EQ(log_, "curl -k -X GET https://host:8443/x/y/a.stpz -o a.stpz  --output-dir /downloads\n\n");
}

// A folder of downloads where each download first leaves some bytes.
class DownloadsTest : public ServerMessagesTest {
protected:
    // What is left of a download that ends so.
    bool Leaves(bool succeeds) {
        RecordingPort port;
        port.downloadFolder = folder_.Path("");
        port.downloadFolder.pop_back();
        port.runProgram = [&](const Texts& command) {
            folder_.Write(command.at(6), "ISO-10303-21;");
            return succeeds;
        };
        const std::string load = "load \"" + folder_.Path("a.stp") + '"';
        EXPECT_THAT(Do(R"({"Load":"http://h/a.stp"})", port), ElementsAre("run curl", load, "invalidate"));
        EXPECT_THAT(log_, Not(HasSubstr("<E>")));
        return access(folder_.Path("a.stp").c_str(), F_OK) == 0;
    }

    TempFolder folder_;
};

TEST_F(DownloadsTest, AWholeOneStays) {
    EXPECT_TRUE(Leaves(true));
}

TEST_F(DownloadsTest, OneThatFailedLeavesNothing) {
    EXPECT_FALSE(Leaves(false));
}

TEST_F(DownloadsTest, OneThatFailedDoesNotShowWhatADownloadBeforeItLeft) {
    folder_.Write("a.stp", "former");
    EXPECT_FALSE(Leaves(false));
}

TEST_F(DownloadsTest, WhatIsLeftAndCannotBeRemovedIsNotLoaded) {
    std::filesystem::create_directories(folder_.Path("a.stp/within"));
    RecordingPort port;
    port.downloadFolder = folder_.Path("");
    port.runProgram = [](const Texts&) { return false; };
    EXPECT_THAT(Do(R"({"Load":"http://h/a.stp"})", port), ElementsAre("run curl"));
    EXPECT_THAT(log_, HasSubstr("a.stp is not whole and can't be removed: "));
}

TEST_F(ServerMessagesTest, OnlyTheFirstFourCharactersMakeAUrl) {
    EXPECT_THAT(Do(R"({"Load":"httpd.stp"})"),
                ElementsAre("run curl", "load \"/downloads/ttpd.stp\"", "invalidate"));
    EXPECT_THAT(Do(R"({"Load":"HTTP://h/a.stp"})"), ElementsAre("load HTTP://h/a.stp", "invalidate"));
    EXPECT_THAT(Do(R"({"Load":"htt"})"), ElementsAre("load htt", "invalidate"));
    EXPECT_THAT(Do(R"({"Load":"/http/a.stp"})"), ElementsAre("load /http/a.stp", "invalidate"));
}

TEST_F(ServerMessagesTest, TheNameOfADownloadFollowsTheLastSeparatorOfEitherKind) {
    EXPECT_EQ(DownloadName("http://h/d/a.stp"), "a.stp");
    EXPECT_EQ(DownloadName(R"(http://h/d\a.stp)"), "a.stp");
    EXPECT_EQ(DownloadName(R"(http:\\h\d/a.stp)"), "a.stp");
    EXPECT_EQ(DownloadName("http"), "ttp");
    EXPECT_EQ(DownloadName("http://h/a.stp?v=1&w=2"), "a.stp?v=1&w=2");
    EXPECT_EQ(DownloadName("http://h/a#1.stp"), "a#1.stp");
    EXPECT_EQ(DownloadName("http://[::1]:80/a.stp"), "a.stp");
}

TEST_F(ServerMessagesTest, AUrlWhoseNameIsNoFileOfTheFolderIsRefused) {
    for (const char* const url :
         {"http://h/", "http://h/..", "http://h/.", R"(http://h/a\..)", R"(http://h/a\)", "http://h/-",
          "http://h/{a,../../b}/#1", "http://[::1]/{x}/a#1.stp", "http://h/[1-9]/#1"}) {
        EXPECT_THAT(Do(R"({"Load":")" + std::string(url) + R"("})"), IsEmpty()) << url;
        EXPECT_EQ(log_, "<E> Download: no file name in the URL " + std::string(url) + "\n");
    }
}

TEST_F(ServerMessagesTest, DotsOnTheWayToTheNameDoNotLeaveTheFolder) {
    EXPECT_THAT(Do(R"({"Load":"http://h/../../../etc/passwd"})"),
                ElementsAre("run curl", "load \"/downloads/passwd\"", "invalidate"));
}

TEST_F(ServerMessagesTest, CharactersOfAShellStayPartOfTheOneArgument) {
    const std::string url = "http://h/a;touch /tmp/owned;$(id)`id`&|<>'*?.stp";
    Do(R"({"Load":")" + url + R"("})");
    ASSERT_EQ(programs_.size(), 1u);
    EXPECT_EQ(programs_[0][4], url);
    EXPECT_EQ(programs_[0][6], "owned;$(id)`id`&|<>'*?.stp");
}

TEST_F(ServerMessagesTest, PercentSignsAreLoggedAsTheyStand) {
    Do(R"({"Load":"http://h/%n%s%100000d%x.stp"})");
    EXPECT_THAT(log_,
                StartsWith("curl -k -X GET http://h/%n%s%100000d%x.stp -o %n%s%100000d%x.stp  --output-dir"));
    Do(R"({"action":"registered","uuid":"%s%n"})");
    EXPECT_EQ(log_, "3D Viewer session UUID: %s%n\n");
}

TEST_F(ServerMessagesTest, ALongUrlIsHandledLikeAShortOne) {
    const std::string url = "http://h/" + std::string(100000, 'x') + "/a.stp";
    EXPECT_THAT(Do(R"({"Load":")" + url + R"("})"),
                ElementsAre("run curl", "load \"/downloads/a.stp\"", "invalidate"));
    EXPECT_EQ(programs_[0][4], url);
    EXPECT_THAT(log_, HasSubstr(url));
}

TEST_F(ServerMessagesTest, APairIsReadFromItsPositionOnAndThePositionMoves) {
    const std::string text = R"(x, "k1" : "v1", "" : "")";
    std::size_t position = 2;
    const auto first = ReadKeyValue(text, position);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->key, "k1");
    EXPECT_EQ(first->value, "v1");
    EXPECT_EQ(position, text.find(R"(", "")"));
    ++position;
    const auto second = ReadKeyValue(text, position);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->key, "");
    EXPECT_EQ(second->value, "");
    EXPECT_FALSE(ReadKeyValue(text, position));
    position = text.size() + 5;
    EXPECT_FALSE(ReadKeyValue(text, position));
}

TEST_F(ServerMessagesTest, AColonIsLookedForBehindTheKey) {
    std::size_t position = 0;
    const std::string text = R"(:"a:b"x"no":"v")"; // the quotes before the colon are passed over
    const auto pair = ReadKeyValue(text, position);
    ASSERT_TRUE(pair);
    EXPECT_EQ(pair->key, "a:b");
    EXPECT_EQ(pair->value, "v");
}

} // namespace
} // namespace tarnwick::test
