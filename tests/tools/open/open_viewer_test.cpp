// The built program on a display: it becomes the viewer.

#include "app/models.h"
#include "app/viewer_process.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <QString>

#include <filesystem>

namespace tarnwick::test {
namespace {

class OpenViewer : public testing::Test {
protected:
    QStringList Environment() const {
        return {"XDG_CACHE_HOME=" + QString::fromStdString(folder_.Path("cache"))};
    }
    static QString Q(const std::string& text) { return QString::fromStdString(text); }

    TempFolder folder_;
};

TEST_F(OpenViewer, ShowsAFileOfAnotherName) {
    ViewerProcess viewer({Q(folder_.Write("plate.step", PlateText()))}, Environment());
    ASSERT_TRUE(viewer.IsOpen());
    EXPECT_TRUE(viewer.WaitForTitle("plate.stp - Tarnwick"));
    EXPECT_TRUE(std::filesystem::exists(folder_.Path("cache/tarnwick/prepared")));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(OpenViewer, ShowsWhatTheViewerTakesAsItIs) {
    ViewerProcess viewer({Q(folder_.Write("my plate.1.stp", PlateText()))}, Environment());
    ASSERT_TRUE(viewer.IsOpen());
    EXPECT_TRUE(viewer.WaitForTitle("my plate.1.stp - Tarnwick"));
    EXPECT_FALSE(std::filesystem::exists(folder_.Path("cache")));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(OpenViewer, EndsWithStatus1WhereNothingCame) {
    ViewerProcess window({Q(folder_.Write("notes.step", "notes\n"))}, Environment());
    ASSERT_TRUE(window.IsOpen());
    EXPECT_TRUE(window.WaitForTitle("Opening notes.step"));
    window.Key("Escape");
    EXPECT_EQ(window.WaitForEnd(), 1);
}

} // namespace
} // namespace tarnwick::test
