// Files that are something else than files, and files that change while they are read.

#include "formats/load_commands.h"
#include "support/assembly_text.h"
#include "support/loaded_file.h"
#include "support/loaded_view.h"
#include "support/p21_text.h"
#include "support/sanitized.h"
#include "support/temp_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace tarnwick::test {
namespace {

// A top file, a sub-assembly and four parts of two triangles each.
struct Machine {
    Machine() {
        AssemblyText top;
        const int root = top.Product("root");
        const int sub = top.Product("sub");
        top.Use(root, sub);
        top.File(sub, "sub.stp");
        AssemblyText lower;
        const int lowerRoot = lower.Product("sub");
        for (int i = 0; i < 4; ++i) {
            const int part = lower.Product("part " + std::to_string(i));
            lower.Use(lowerRoot, part);
            lower.File(part, Part(i));
        }
        sub_ = lower.Text();
        path = folder.Write("top.stp", top.Text());
        Restore();
    }
    static std::string Part(int i) { return "part" + std::to_string(i) + ".stp"; }
    void Restore() const {
        folder.Write("sub.stp", sub_);
        for (int i = 0; i < 4; ++i) { folder.Write(Part(i), PlateText(2)); }
    }

    TempFolder folder;
    std::string path;

private:
    std::string sub_;
};

TEST(ChangingFiles, OfAnotherKindAreUnread) {
    const Machine machine;
    const auto place = [&machine](int i) { return machine.folder.Path(Machine::Part(i)); };
    for (int i = 0; i < 3; ++i) { std::remove(place(i).c_str()); }
    ASSERT_EQ(mkdir(place(0).c_str(), 0700), 0);
    ASSERT_EQ(mkfifo(place(1).c_str(), 0600), 0);
    ASSERT_EQ(symlink(place(2).c_str(), place(2).c_str()), 0);
    for (const bool useThreads : {0, 1}) {
        const LoadedFile load(machine.path, useThreads);
        EXPECT_EQ(load.session.loaded.drawnTriangles, 2);
        ASSERT_EQ(load.session.loaded.unreadFiles.size(), 3u);
        for (const UnreadFile& file : load.session.loaded.unreadFiles) {
            EXPECT_STREQ(file.reason, "can't be opened") << file.path;
        }
    }
    for (int i = 0; i < 2; ++i) {
        const LoadedFile load(place(i));
        EXPECT_EQ(load.result, 1);
        EXPECT_EQ(load.session.loaded.unreadFiles.size(), 1u);
    }
}

// For as long as it lives, the process has the rights of nobody if it has those of root, who may read all.
class WithoutRootRights {
public:
    WithoutRootRights() {
        constexpr uid_t kNobody = 65534;
        if (isRoot_ && seteuid(kNobody) != 0) { ADD_FAILURE() << "root can't become nobody"; }
    }
    WithoutRootRights(const WithoutRootRights&) = delete;
    WithoutRootRights& operator=(const WithoutRootRights&) = delete;
    ~WithoutRootRights() {
        if (isRoot_ && seteuid(0) != 0) { std::abort(); }
    }

private:
    const bool isRoot_ = geteuid() == 0;
};

TEST(ChangingFiles, WithoutRightsAreUnread) {
    const Machine machine;
    const std::string part = machine.folder.Path(Machine::Part(0));
    ASSERT_EQ(chmod(machine.folder.Path("").c_str(), 0755), 0);
    ASSERT_EQ(chmod(part.c_str(), 0), 0);
    const WithoutRootRights rights;
    const LoadedFile load(machine.path, 1);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 6);
    ASSERT_EQ(load.session.loaded.unreadFiles.size(), 1u);
}

TEST(ChangingFiles, ThatVanishGrowAndShrinkWhileTheyAreReadEndNothingElse) {
    const Machine machine;
    const std::string good = ReportOf(machine.path, 0);
    std::atomic<bool> done{false};
    std::thread other([&] {
        for (unsigned i = 0; !done; ++i) {
            const std::string name =
                machine.folder.Path(i % 5 == 4 ? "sub.stp" : Machine::Part(static_cast<int>(i % 5)));
            switch (i % 7) {
            case 0:
            case 3:
                truncate(name.c_str(), static_cast<off_t>(i % 700));
                break;
            case 1:
                std::remove(name.c_str());
                break;
            case 2:
                truncate(name.c_str(), 100000);
                break;
            default:
                machine.Restore();
                break;
            }
        }
    });
    int loads = 0;
    {
        const LogCapture log;
        SceneView view;
        for (; loads < (kSanitized ? 200 : 1000); ++loads) {
            LoadStepFile(view, machine.path.c_str(), loads % 2);
            if (view.loaded.drawnTriangles > 8) { break; }
        }
    }
    done = true;
    other.join();
    EXPECT_EQ(loads, kSanitized ? 200 : 1000);
    machine.Restore();
    EXPECT_EQ(ReportOf(machine.path, 1), good);
}

} // namespace
} // namespace tarnwick::test
