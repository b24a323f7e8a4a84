// The bytes of a snapshot and the name of its file.

#include "render/snapshot.h"
#include "test_view.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace tarnwick {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class SnapshotTest : public ViewTest {
protected:
    SnapshotTest() {
        folder_ =
            std::filesystem::path(::testing::TempDir()) / ("tarnwick-snapshot-" + std::to_string(::getpid()));
        std::filesystem::create_directories(folder_);
    }
    ~SnapshotTest() override { std::filesystem::remove_all(folder_); }

    std::string Path(const std::string& name) const { return (folder_ / name).string(); }

    // The bytes of a snapshot of a window of this size.
    std::vector<unsigned char> Grab(int width, int height) {
        view.OnSize(OpenGLControl::kRestored, width, height);
        Forget();
        EXPECT_EQ(view.grab_GL(Path("a.bmp").c_str()), 1);
        std::ifstream file(Path("a.bmp"), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static std::uint32_t Number(const std::vector<unsigned char>& bytes, std::size_t offset, int width = 4) {
        std::uint32_t number = 0;
        for (int i = width; i-- > 0;) { number = number << 8 | bytes[offset + static_cast<std::size_t>(i)]; }
        return number;
    }

private:
    std::filesystem::path folder_;
};

TEST_F(SnapshotTest, TheHeaderIsThatOfA24BitBitmap) {
    const std::vector<unsigned char> bytes = Grab(640, 480);
    ASSERT_EQ(bytes.size(), 921656u);
    EXPECT_EQ(bytes[0], 'B');
    EXPECT_EQ(bytes[1], 'M');
    EXPECT_EQ(Number(bytes, 2), 921656u);
    EXPECT_EQ(Number(bytes, 6), 0u);
    EXPECT_EQ(Number(bytes, 10), 54u);
    EXPECT_EQ(Number(bytes, 14), 40u);
    EXPECT_EQ(Number(bytes, 18), 640u);
    EXPECT_EQ(Number(bytes, 22), 480u);
    EXPECT_EQ(Number(bytes, 26, 2), 1u);
    EXPECT_EQ(Number(bytes, 28, 2), 24u);
    EXPECT_EQ(Number(bytes, 30), 0u);
    EXPECT_EQ(Number(bytes, 34), 921602u);
    EXPECT_EQ(Number(bytes, 38), 2835u);
    EXPECT_EQ(Number(bytes, 42), 2835u);
    EXPECT_EQ(Number(bytes, 46), 0u);
    EXPECT_EQ(Number(bytes, 50), 0u);
}

TEST_F(SnapshotTest, RowsFollowTheHeaderAndTwoZeroBytesFollowThem) {
    const std::vector<unsigned char> bytes = Grab(640, 480);
    EXPECT_EQ(bytes[54], 7); // what the front buffer holds
    EXPECT_EQ(bytes[54 + 921600 - 1], 7);
    EXPECT_EQ(bytes[bytes.size() - 2], 0);
    EXPECT_EQ(bytes[bytes.size() - 1], 0);
}

TEST_F(SnapshotTest, AnOddWidthIsPaddedByPixelsAndTheRestIsZero) {
    const std::vector<unsigned char> bytes = Grab(641, 3);
    ASSERT_EQ(bytes.size(), 54u + 3 * 644 * 3 + 2);
    EXPECT_EQ(Number(bytes, 34), 3u * 644 * 3 + 2);
    // Rows of 1924 bytes: 3 * 641 = 1923, filled up to a multiple of four.
    EXPECT_EQ(bytes[54 + 3 * 1924 - 1], 7);
    for (std::size_t i = 54 + 3 * 1924; i < bytes.size(); ++i) { ASSERT_EQ(bytes[i], 0) << i; }
    EXPECT_EQ(Grab(642, 2).size(), 54u + 3 * 644 * 2 + 2);
    EXPECT_EQ(Grab(643, 2).size(), 54u + 3 * 644 * 2 + 2);
    EXPECT_EQ(Grab(1, 1).size(), 54u + 3 * 4 * 1 + 2);
}

TEST_F(SnapshotTest, TheFrontBufferIsReadAndTheReadBufferPutBack) {
    Grab(640, 480);
    EXPECT_THAT(TakeCalls(),
                ElementsAre("glGetIntegerv(GL_VIEWPORT)", "glPixelStorei(GL_PACK_ALIGNMENT, 4)",
                            "glPixelStorei(GL_PACK_ROW_LENGTH, 0)", "glPixelStorei(GL_PACK_SKIP_ROWS, 0)",
                            "glPixelStorei(GL_PACK_SKIP_PIXELS, 0)", "glPixelStorei(GL_PACK_SWAP_BYTES, 1)",
                            "glGetIntegerv(GL_READ_BUFFER)", "glReadBuffer(GL_FRONT)",
                            "glReadPixels(0, 0, 640, 480, GL_BGR_EXT, GL_UNSIGNED_BYTE)",
                            "glReadBuffer(GL_BACK)"));
}

TEST_F(SnapshotTest, AFrontBufferThatCannotBeReadIsDrawnAgainIntoTheBackBuffer) {
    gl_recorder::SetFrontByte(0);
    const std::vector<unsigned char> bytes = Grab(640, 480);
    EXPECT_EQ(bytes[54], 9); // what the back buffer holds
    const Calls calls = TakeCalls();
    EXPECT_THAT(calls, Not(Contains("swap")));
    EXPECT_EQ(calls.back(), "glReadBuffer(GL_BACK)");
    EXPECT_EQ(gl_recorder::PushedMatrices(), 0u);
}

TEST_F(SnapshotTest, WhatOfTheViewportLiesOutsideOfTheWindowIsNotReadAndIsZero) {
    window.size = {620, 330};
    const std::vector<unsigned char> bytes = Grab(640, 480);
    const Calls calls = TakeCalls();
    EXPECT_THAT(calls, Contains("glPixelStorei(GL_PACK_ROW_LENGTH, 640)"));
    EXPECT_THAT(calls, Contains("glReadPixels(0, 0, 620, 330, GL_BGR_EXT, GL_UNSIGNED_BYTE)"));
    ASSERT_EQ(bytes.size(), 921656u); // and the file is as large as ever
    EXPECT_EQ(bytes[bytes.size() - 3], 0);
}

TEST_F(SnapshotTest, FailsWhereTheDiskIsFull) {
    if (!std::filesystem::exists("/dev/full")) { GTEST_SKIP() << "no device that is always full"; }
    for (const int size : {4, 400}) { // all in the stream's buffer, and more than that
        view.OnSize(OpenGLControl::kRestored, size, size);
        EXPECT_EQ(view.grab_GL("/dev/full"), 0) << size;
    }
}

TEST_F(SnapshotTest, AFileThatCannotBeOpenedIsToldOnStandardOutput) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(view.grab_GL(Path("absent/a.bmp").c_str()), 0);
    std::fflush(stdout);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "[Error] : grab_GL(), Cannot open " + Path("absent/a.bmp") + " for writting.\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(SnapshotTest, AnEarlierFileIsOverwritten) {
    EXPECT_EQ(Grab(640, 480).size(), 921656u);
    EXPECT_EQ(Grab(64, 48).size(), 54u + 3 * 64 * 48 + 2);
}

TEST(SnapshotPath, IsTheLoadedNameWithAnotherExtension) {
    EXPECT_EQ(SnapshotPath("/pictures", "/models/part.stpz"), "/pictures/part.bmp");
    EXPECT_EQ(SnapshotPath("/pictures", "part.stp"), "/pictures/part.bmp");
    EXPECT_EQ(SnapshotPath("/pictures", "/models.d/a.b.stp"), "/pictures/a.b.bmp");
}

TEST(SnapshotPath, BeforeAnyLoadIsToto) {
    EXPECT_EQ(SnapshotPath("/pictures", ""), "/pictures/toto.bmp");
}

TEST(SnapshotPath, ANameWithoutADotGetsTheExtensionBehindIt) {
    EXPECT_EQ(SnapshotPath("/pictures.d", "/models.d/part"), "/pictures.d/part.bmp");
}

TEST(SnapshotPath, AFolderInPlaceOfANameIsToto) {
    EXPECT_EQ(SnapshotPath("/pictures", "/models/"), "/pictures/toto.bmp");
}

} // namespace
} // namespace tarnwick
