#include "xml/stpx_scan.h"

#include "platform/console.h"
#include "platform/text_block.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>

namespace tarnwick {
namespace {

struct Scanned {
    explicit Scanned(std::string_view text) {
        char* const copy = block.Get(text.size());
        std::memcpy(copy, text.data(), text.size());
        PrepareText(copy, text.size());
        start = copy;
        scan = {copy, copy + text.size(), "test.stpx"};
    }
    std::ptrdiff_t Position() const { return scan.at - start; }
    TextBlock block;
    const char* start;
    StpxScan scan;
};

// The moves one by one, as a plain walk over a string: what the scanner is compared with.
struct PlainScan {
    std::string text;
    std::size_t at = 0;
    std::string tag = {}, id = {}, uid = {}, xsiType = {};

    bool GoTo(char c) {
        at = text.find(c, at);
        return at != std::string::npos;
    }
    bool Name() {
        if (!GoTo('<')) { return false; }
        const std::size_t start = at;
        while (at < text.size() && text[at] != ' ' && text[at] != '\n' && text[at] != '>') { ++at; }
        tag = text.substr(start, at - start);
        return at < text.size();
    }
    bool TagName() {
        if (!Name()) { return false; }
        tag = tag.substr(0, 90).c_str();
        return true;
    }
    bool TagWithAttributes() {
        id = uid = xsiType = "";
        if (!Name() || tag.size() >= 112) { return false; }
        tag = tag.c_str();
        if (text[at] == '>') { return true; }
        for (;;) {
            if (text[at] == '/') { return true; }
            while (at < text.size() && (text[at] == ' ' || text[at] == '\t' || text[at] == '\n')) { ++at; }
            const std::size_t name = at;
            if (at >= text.size() || !GoTo('=') || !GoTo('"')) { return false; }
            const std::size_t value = ++at;
            if (!GoTo('"')) { return false; }
            const std::string content = text.substr(value, at - value);
            std::string* field = nullptr;
            if (text.compare(name, 3, "id=") == 0 || text.compare(name, 3, "id ") == 0) { field = &id; }
            if (text.compare(name, 3, "uid") == 0) { field = &uid; }
            if (text.compare(name, 8, "xsi:type") == 0) { field = &xsiType; }
            if (field != nullptr) {
                if (content.size() >= 112) { return false; }
                *field = content;
            }
            ++at;
            while (at < text.size() && text[at] == ' ') { ++at; }
            if (at >= text.size()) { return false; }
            if (text[at] == '>') { return true; }
        }
    }
};

void ExpectSameScan(const std::string& text) {
    Scanned scanned(text);
    PlainScan plain{text};
    for (int i = 0;; ++i) {
        const bool byName = i % 3 == 2;
        const bool expected = byName ? plain.TagName() : plain.TagWithAttributes();
        const bool actual = byName ? ScanTagName(&scanned.scan) : ScanTagWithAttributes(&scanned.scan);
        ASSERT_EQ(actual, expected) << text;
        if (!expected) {
            ASSERT_NE(scanned.scan.problem, nullptr);
            return;
        }
        ASSERT_EQ(scanned.Position(), static_cast<std::ptrdiff_t>(plain.at)) << text;
        ASSERT_EQ(scanned.scan.tag, plain.tag) << text;
        if (!byName) {
            ASSERT_EQ(scanned.scan.id, plain.id) << text;
            ASSERT_EQ(scanned.scan.uid, plain.uid) << text;
            ASSERT_EQ(scanned.scan.xsiType, plain.xsiType) << text;
        }
    }
}

TEST(ScanTagName, StopsBehindTheNameAndKeeps90Characters) {
    Scanned scanned("abc <Name attr=\"x\">");
    ASSERT_TRUE(ScanTagName(&scanned.scan));
    EXPECT_EQ(scanned.scan.tag, "<Name");
    EXPECT_EQ(scanned.Position(), 9);
    Scanned longName("<" + std::string(500, 'a') + ">");
    ASSERT_TRUE(ScanTagName(&longName.scan));
    EXPECT_EQ(longName.scan.tag, "<" + std::string(89, 'a'));
    EXPECT_EQ(longName.Position(), 501);
}

TEST(ScanTagWithAttributes, ReadsIdUidAndTypeAndTheLastUidWins) {
    Scanned scanned("<Part uid=\"u1\" id=\"i\"\n xsi:type=\"n0:T\" uidRef=\"u2\" name=\"n\" >");
    ASSERT_TRUE(ScanTagWithAttributes(&scanned.scan));
    EXPECT_EQ(scanned.scan.tag, "<Part");
    EXPECT_EQ(scanned.scan.uid, "u2");
    EXPECT_EQ(scanned.scan.id, "i");
    EXPECT_EQ(scanned.scan.xsiType, "n0:T");
    EXPECT_EQ(*scanned.scan.at, '>');
}

TEST(ScanTagWithAttributes, LeavesAnEmptyTagBehindAnAttributeOnItsSlash) {
    Scanned scanned("<Related uidRef=\"o1\"/><X>");
    ASSERT_TRUE(ScanTagWithAttributes(&scanned.scan));
    EXPECT_EQ(*scanned.scan.at, '/');
    Scanned blank("<Related uidRef=\"o1\"  /><X>");
    ASSERT_TRUE(ScanTagWithAttributes(&blank.scan));
    EXPECT_EQ(*blank.scan.at, '/');
}

TEST(ScanTagWithAttributes, TakesTheSlashOfAnEmptyTagWithoutAttributesIntoTheName) {
    Scanned scanned("<Name/>");
    ASSERT_TRUE(ScanTagWithAttributes(&scanned.scan));
    EXPECT_EQ(scanned.scan.tag, "<Name/");
}

TEST(ScanTagWithAttributes, KeepsACarriageReturnInTheName) {
    Scanned scanned("<Name\r>");
    ASSERT_TRUE(ScanTagWithAttributes(&scanned.scan));
    EXPECT_EQ(scanned.scan.tag, "<Name\r");
}

TEST(ScanTagWithAttributes, SwallowsTheNextAttributeBehindABlankOrALineEndInFrontOfTheTagsEnd) {
    for (const char* const text : {"<A ><B uid=\"x\">", "<A\n><B uid=\"x\">", "<A b=\"\"\n><B uid=\"x\">",
                                   "<A b=\"\"\r\n><B uid=\"x\">", "<A /><B uid=\"x\">"}) {
        Scanned scanned(text);
        ASSERT_TRUE(ScanTagWithAttributes(&scanned.scan)) << text;
        EXPECT_EQ(scanned.scan.tag, "<A");
        EXPECT_EQ(scanned.scan.uid, "") << "the name looked at is that after the white space";
        EXPECT_EQ(scanned.Position(), static_cast<std::ptrdiff_t>(std::strlen(text)) - 1);
    }
}

TEST(ScanTagWithAttributes, TakesAttributesAcrossLineFeedsButNotAcrossCarriageReturns) {
    Scanned lines("<A id=\"1\"\n\t uid=\"2\">");
    ASSERT_TRUE(ScanTagWithAttributes(&lines.scan));
    EXPECT_EQ(lines.scan.uid, "2");
    Scanned returns("<A id=\"1\"\r\n uid=\"2\">");
    ASSERT_TRUE(ScanTagWithAttributes(&returns.scan));
    EXPECT_EQ(returns.scan.uid, "");
}

TEST(ScanTagWithAttributes, KnowsNoSingleQuotesAndNoEntities) {
    Scanned single("<A uid='1' id=\"2\">");
    ASSERT_TRUE(ScanTagWithAttributes(&single.scan));
    EXPECT_EQ(single.scan.uid, "2");
    EXPECT_EQ(single.scan.id, "");
    Scanned entity("<A uid=\"a&amp;b & c\">");
    ASSERT_TRUE(ScanTagWithAttributes(&entity.scan));
    EXPECT_EQ(entity.scan.uid, "a&amp;b & c");
}

TEST(ScanTagWithAttributes, GivesUpAValueOf112CharactersAndTakes111) {
    for (const char* const name : {"uid", "id", "xsi:type"}) {
        Scanned fits("<A " + std::string(name) + "=\"" + std::string(111, 'x') + "\">");
        EXPECT_TRUE(ScanTagWithAttributes(&fits.scan));
        Scanned tooLong("<A " + std::string(name) + "=\"" + std::string(112, 'x') + "\">");
        EXPECT_FALSE(ScanTagWithAttributes(&tooLong.scan));
        EXPECT_NE(tooLong.scan.problem, nullptr);
    }
    Scanned other("<A name=\"" + std::string(5000, 'x') + "\">");
    EXPECT_TRUE(ScanTagWithAttributes(&other.scan));
}

TEST(ScanTagWithAttributes, ReadsDamagedTextsAsThePlainMovesDo) {
    const std::string good = "<Part uid=\"p1\" xsi:type=\"n0:Part\">\n <Id id=\"a\"/>\n"
                             " <Name\r\n>x</Name ><B id = \"1\" uidRef=\"2\"\n/>\n<C/></Part>\n<D uid=\"e\">";
    const std::string letters("<>=\"'/ \n\r\tuid\0a&", 17);
    for (std::size_t cut = 0; cut <= good.size(); ++cut) { ExpectSameScan(good.substr(0, cut)); }
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (const char c : letters) {
            std::string damaged = good;
            damaged[i] = c;
            ExpectSameScan(damaged);
        }
    }
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        const std::size_t pieces = random() % 40;
        static const std::string words[] = {"<Part", "</Part>",        " ",  "uid", "=\"", "\"",
                                            "\n",    "id=\"a\"",       "/>", ">",   "\r",  "\t",
                                            "id ",   "xsi:type=\"b\"", "=",  "<"};
        for (std::size_t k = 0; k < pieces; ++k) { text += words[random() % std::size(words)]; }
        ExpectSameScan(text);
    }
}

std::string ElementText(const std::string& text, std::size_t room = kTextRoom) {
    Scanned scanned(text);
    char buffer[kTextRoom + 8];
    std::string_view value;
    return ReadElementText(&scanned.scan, buffer, room, &value)
               ? std::string(value)
               : std::string("given up: ") + scanned.scan.problem;
}

TEST(ReadElementText, EndsAtTheNextTagAndDecodesOneEntity) {
    EXPECT_EQ(ElementText("<x"), "");
    EXPECT_EQ(ElementText("a b<x"), "a b");
    EXPECT_EQ(ElementText("a &amp; b&amp;<x"), "a & b&");
}

TEST(ReadElementText, GivesUpWhatDoesNotFitAfterDecoding) {
    EXPECT_EQ(ElementText(std::string(207, 'a') + "<"), std::string(207, 'a'));
    EXPECT_TRUE(ElementText(std::string(208, 'a') + "<").starts_with("given up"));
    EXPECT_EQ(ElementText(std::string(206, 'a') + "&amp;<"), std::string(206, 'a') + "&");
    EXPECT_TRUE(ElementText(std::string(207, 'a') + "&amp;<").starts_with("given up"));
    EXPECT_TRUE(ElementText("abc").starts_with("given up"));
    EXPECT_TRUE(ElementText("abc&am").starts_with("given up"));
}

TEST(ReadElementTextDeathTest, NeverGetsPastAnotherAmpersand) {
    EXPECT_EXIT(
        {
            alarm(1);
            ElementText("a &lt; b<x");
        },
        testing::KilledBySignal(SIGALRM), "<E> test.stpx: reading stands still");
}

TEST(ReadElementTextDeathTest, StopsNoOtherThreadAtAnotherAmpersand) {
    EXPECT_EXIT(
        {
            std::atomic<int> lines = 0;
            SetConsoleSink(
                [](void* context, const char*, std::size_t) { ++*static_cast<std::atomic<int>*>(context); },
                &lines);
            std::thread([] { ElementText("a &lt; b<x"); }).detach();
            while (lines == 0) { std::this_thread::yield(); }
            SetConsoleSink(nullptr, nullptr);
            std::exit(lines);
        },
        testing::ExitedWithCode(1), "<E> test.stpx: reading stands still");
}

} // namespace
} // namespace tarnwick
