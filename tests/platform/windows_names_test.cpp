// Names that Windows takes for something else than a file.

#include "platform/files.h"
#include "platform/opened_file.h"
#include "platform/paths.h"
#include "platform/whole_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

TEST(WindowsNamesTest, OfDevicesAreNoFiles) {
    const TempFolder folder;
    for (const char* const name : {"nul", "nul.stp", "NUL .stp", "con.stp", "aux.stpz", "prn", "com1.stp",
                                   "LPT9.txt", "CONIN$", "conout$.stp"}) {
        for (const std::string& path :
             {std::string(name), folder.Path(name), "\\\\.\\" + std::string(name)}) {
            EXPECT_FALSE(OpenedFile(path.c_str()).IsOpen()) << path;
            EXPECT_FALSE(WholeFile(path.c_str()).IsOpen()) << path;
            EXPECT_FALSE(IsRegularFile(path)) << path;
        }
    }
}

TEST(WindowsNamesTest, ThatOnlyBeginLikeADeviceAreFiles) {
    const TempFolder folder;
    for (const char* const name : {"null.stp", "console.stp", "com.stp", "com10.stp", "auxiliary.stp"}) {
        folder.Write(name, "x");
        EXPECT_TRUE(OpenedFile(folder.Path(name).c_str()).IsOpen()) << name;
    }
}

TEST(WindowsNamesTest, WithAColonReachNoStreamAndNoDrive) {
    const TempFolder folder;
    folder.Write("a.stp", "x");
    for (const char* const name :
         {"a.stp:hidden", "a.stp::$DATA", "C:/windows/win.ini", "/C:/windows/win.ini"}) {
        EXPECT_FALSE(OpenedFile(folder.Path(name).c_str()).IsOpen()) << name;
        EXPECT_FALSE(CanNameFile(name)) << name;
    }
}

TEST(WindowsNamesTest, MustBeUtf8) {
    EXPECT_FALSE(CanNameFile("Pr\xFC"
                             "fung.stp"));
    EXPECT_TRUE(CanNameFile("Pr\xC3\xBC"
                            "fung.stp"));
    EXPECT_FALSE(OpenedFile("Pr\xFC"
                            "fung.stp")
                     .IsOpen());
}

TEST(WindowsNamesTest, ArePartedByEitherSeparator) {
    EXPECT_EQ(FolderOf("C:\\m/n\\a.stp"), "C:\\m/n\\");
    EXPECT_EQ(NameOf("C:\\m/n\\a.stp"), "a.stp");
    EXPECT_EQ(NameOf("C:\\m\\n/a.stp"), "a.stp");
}

TEST(WindowsNamesTest, MayHaveEitherSeparatorAndTheLeadOfLongPaths) {
    const TempFolder folder;
    std::string path = folder.Write("a.stp", "x");
    EXPECT_TRUE(OpenedFile(path.c_str()).IsOpen());
    for (char& c : path) { c = c == '/' ? '\\' : c; }
    EXPECT_TRUE(OpenedFile(path.c_str()).IsOpen());
    EXPECT_TRUE(OpenedFile(("\\\\?\\" + path).c_str()).IsOpen());
}

} // namespace
} // namespace tarnwick::test
