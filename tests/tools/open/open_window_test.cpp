// The window that says how far a file is, and what is missing of it.

#include "tools/open/open_window.h"

#include "app/waits.h"
#include "mesher/solid_text.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

#include <atomic>
#include <filesystem>
#include <optional>
#include <string>

namespace tarnwick::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class OpenWindowTest : public testing::Test {
protected:
    OpenWindowTest() {
        options_.folder = folder_.Path("out");
        options_.jobs = 1;
    }

    // A program in the place of the geometry kernel's that never answers.
    void UseSilentKernel() {
        options_.meshProgram = folder_.Write("kernel", "#!/bin/sh\nexec sleep 1000\n");
        std::filesystem::permissions(options_.meshProgram, std::filesystem::perms::owner_all);
    }
    std::string WriteSolids(const char* name = "solids.step") {
        SolidText solids(kContext + 1);
        solids.AddCube(1);
        return folder_.Write(name, ExchangeText(ContextText() + solids.Text()));
    }

    // Opens a file; `seen` is called with the window when it is on the screen and `name` is visible in it.
    template <class Seen>
    std::string Open(const std::string& file, const char* name, Seen seen) {
        tools::OpenWindow window(file, options_, &cancelled_);
        QTimer look;
        bool isSeen = false;
        QObject::connect(&look, &QTimer::timeout, &window, [&] {
            const auto* const control = window.findChild<QWidget*>(name);
            if (isSeen || !window.isVisible() || !control->isVisible()) { return; }
            isSeen = true;
            seen(window);
        });
        look.start(10);
        std::string path = window.Run();
        EXPECT_TRUE(isSeen);
        return path;
    }
    static QString Text(const QWidget& window, const char* name) {
        return window.findChild<QLabel*>(name)->text();
    }
    static void Click(const QWidget& window, const char* name) {
        QTest::mouseClick(window.findChild<QPushButton*>(name), Qt::LeftButton);
    }
    bool HasUnfinished() const {
        if (!std::filesystem::exists(options_.folder)) { return false; }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(options_.folder)) {
            if (entry.path().filename().string().starts_with(".tarnwick-")) { return true; }
        }
        return false;
    }

    TempFolder folder_;
    prepare::PrepareOptions options_;
    std::atomic<bool> cancelled_{false};
};

TEST_F(OpenWindowTest, WhatIsWholeOpensWithoutAWord) {
    const std::string path = folder_.Write("part.step", SmallPartText());
    tools::OpenWindow window(path, options_, &cancelled_);
    EXPECT_EQ(window.Run(), folder_.Path("out/part.stp"));
}

TEST_F(OpenWindowTest, WhatTheViewerShowsWholeIsNotPrepared) {
    const std::string path = folder_.Write("part.stp", SmallPartText());
    tools::OpenWindow window(path, options_, &cancelled_);
    EXPECT_EQ(window.Run(), path);
    EXPECT_FALSE(std::filesystem::exists(options_.folder));
}

TEST_F(OpenWindowTest, SaysHowFarItIsWhileItWorks) {
    UseSilentKernel();
    Open(WriteSolids(), "bar", [this](const QWidget& window) {
        EXPECT_EQ(window.windowTitle(), "Opening solids.step");
        EXPECT_EQ(Text(window, "what"), "Preparing solids.step");
        ExpectSoon([&] { return Text(window, "left"); }, QString("0 of 1 parts"));
        EXPECT_EQ(window.findChild<QProgressBar*>("bar")->maximum(), 1);
        EXPECT_FALSE(window.findChild<QPushButton*>("open")->isVisible());
        Click(window, "cancel");
    });
}

TEST_F(OpenWindowTest, CancelOpensNothingAndLeavesNothingHalfWritten) {
    UseSilentKernel();
    const std::string path =
        Open(WriteSolids(), "bar", [](const QWidget& window) { Click(window, "cancel"); });
    EXPECT_EQ(path, "");
    EXPECT_TRUE(cancelled_);
    EXPECT_FALSE(HasUnfinished());
    EXPECT_FALSE(std::filesystem::exists(folder_.Path("out/solids.stp")));
}

TEST_F(OpenWindowTest, EscapeAndTheTitleBarCancel) {
    UseSilentKernel();
    const std::string solids = WriteSolids();
    EXPECT_EQ(Open(solids, "bar", [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); }), "");
    cancelled_ = false;
    EXPECT_EQ(Open(solids, "bar", [](QWidget& window) { window.close(); }), "");
}

TEST_F(OpenWindowTest, ASignalCancels) {
    UseSilentKernel();
    EXPECT_EQ(Open(WriteSolids(), "bar", [this](const QWidget&) { cancelled_ = true; }), "");
}

TEST_F(OpenWindowTest, SaysWhatIsMissingBeforeItOpens) {
    // A triangle, and a block, whose shape nobody makes.
    const std::string both = P21Text({
        "#1=PRODUCT('P','P','',(#9));",
        "#2=PRODUCT_DEFINITION_FORMATION('','',#1);",
        "#3=PRODUCT_DEFINITION('','',#2,#9);",
        "#4=PRODUCT_DEFINITION_SHAPE('','',#3);",
        "#5=SHAPE_REPRESENTATION('',(#10,#12),#9);",
        "#6=SHAPE_DEFINITION_REPRESENTATION(#4,#5);",
        "#10=BLOCK('',#11,1.,1.,1.);",
        "#12=TRIANGULATED_FACE('',#13,3,((0.,0.,1.)),$,(),((1,2,3)));",
        "#13=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.)));",
    });
    const std::string path = Open(folder_.Write("both.step", both), "missing", [](const QWidget& window) {
        EXPECT_EQ(Text(window, "what"), "Some of the shape of both.step is missing:");
        const auto* const list = window.findChild<QListWidget*>("missing");
        ASSERT_EQ(list->count(), 1);
        EXPECT_THAT(list->item(0)->text().toStdString(),
                    HasSubstr("P: #10: a BLOCK is described by how it is made"));
        EXPECT_FALSE(window.findChild<QWidget*>("bar")->isVisible());
        Click(window, "open");
    });
    EXPECT_EQ(path, folder_.Path("out/both.stp"));
}

TEST_F(OpenWindowTest, SaysWhyThereIsNothing) {
    const std::string path = Open(folder_.Write("notes.step", "notes\n"), "what", [](const QWidget& window) {
        EXPECT_EQ(Text(window, "what"),
                  "notes.step can't be shown: it is neither an ISO 10303-21 file nor STEP XML.");
        EXPECT_FALSE(window.findChild<QWidget*>("open")->isVisible());
        EXPECT_FALSE(window.findChild<QWidget*>("missing")->isVisible());
        EXPECT_EQ(window.findChild<QPushButton*>("cancel")->text(), "Close");
        Click(window, "cancel");
    });
    EXPECT_EQ(path, "");
}

TEST_F(OpenWindowTest, ASignalEndsItWhileItSaysWhatIsMissing) {
    const std::string notes = folder_.Write("notes.step", "notes\n");
    EXPECT_EQ(Open(notes, "what", [this](const QWidget&) { cancelled_ = true; }), "");
}

TEST_F(OpenWindowTest, ANameIsTextAndNothingElse) {
    Open(folder_.Write("<b>a<br> [*] %s.step", "notes\n"), "what", [](const QWidget& window) {
        EXPECT_EQ(window.windowTitle(), "Opening <b>a<br> [*][*] %s.step");
        EXPECT_EQ(window.findChild<QLabel*>("what")->textFormat(), Qt::PlainText);
        Click(window, "cancel");
    });
}

} // namespace
} // namespace tarnwick::test
