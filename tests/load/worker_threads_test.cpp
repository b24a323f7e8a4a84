// The five workers of an assembly load: what they print, that any number of them gives the same scene, and
// that a load doesn't wait for one that never started.

#include "load/generated_assembly.h"
#include "load/step_driver.h"
#include "load/unread_files.h"
#include "platform/helpers.h"
#include "support/assembly_text.h"
#include "support/capture.h"
#include "support/loaded_file.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <thread>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) { lines.push_back(line); }
    return lines;
}

// So many parts, all under one root.
std::string WriteParts(const TempFolder& folder, int parts, int triangles = 1) {
    AssemblyText text;
    const int top = text.Product("top");
    for (int i = 0; i < parts; ++i) {
        const std::string name = "part" + std::to_string(i);
        const int part = text.Product(name);
        text.Use(top, part, At(i, 0, 0));
        text.File(part, name + ".stp");
        folder.Write(name + ".stp", PlateText(triangles));
    }
    return folder.Write("top.stp", text.Text());
}

// Gives a thread more stack than there is address space, so that none can be started while it lives.
class NoNewThreads {
public:
    NoNewThreads() {
        pthread_getattr_default_np(&before_);
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, std::size_t{1} << 52);
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }
    NoNewThreads(const NoNewThreads&) = delete;
    NoNewThreads& operator=(const NoNewThreads&) = delete;
    ~NoNewThreads() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }
    static bool CanStartOne() {
        try {
            std::thread([] {}).join();
            return true;
        } catch (const std::system_error&) { return false; }
    }

private:
    pthread_attr_t before_;
};

TEST(WorkerThreads, SayEachOnceThatTheyHaveEnded) {
    const TempFolder folder;
    const std::string path = WriteParts(folder, 60);
    for (int round = 0; round < 20; ++round) {
        const LoadedFile load(path, 1);
        std::vector<std::string> lines = LinesOf(load.console);
        ASSERT_EQ(lines.size(), 7u) << load.console;
        EXPECT_EQ(lines.front(), "Start TraiteSTEPFile");
        EXPECT_EQ(lines.back(), "Number of files=0  ; Number of parts=60 ");
        std::sort(lines.begin() + 1, lines.end() - 1);
        EXPECT_THAT(
            std::vector<std::string>(lines.begin() + 1, lines.end() - 1),
            ElementsAre("End thread 1", "End thread 2", "End thread 3", "End thread 4", "End thread 5"));
        EXPECT_EQ(load.session.loaded.drawnTriangles, 60);
    }
}

TEST(WorkerThreads, EndAtOnceWhereThereIsNothingToRead) {
    const TempFolder folder;
    AssemblyText text;
    text.Use(text.Product("top"), text.Product("leaf"));
    const LoadedFile load(folder.Write("top.stp", text.Text()), 1);
    EXPECT_EQ(LinesOf(load.console).size(), 7u);
    EXPECT_EQ(load.session.loaded.rootName, "top");
}

TEST(WorkerThreads, TakeAnyNumberThatIsNotNullForYes) {
    const TempFolder folder;
    const std::string path = WriteParts(folder, 1);
    EXPECT_EQ(LinesOf(LoadedFile(path, -1).console).size(), 7u);
    EXPECT_TRUE(LoadedFile(path, true).session.useThreads);
}

TEST(WorkerThreads, ReadEachEntryOnce) {
    const TempFolder folder;
    const std::string path = WriteParts(folder, 1500);
    const LoadedFile load(path, 1);
    EXPECT_EQ(load.session.partCount, 1500);
    EXPECT_EQ(load.session.tree.queue.Count().claimed, 1500);
    EXPECT_EQ(load.session.tree.queue.Capacity(), 2000);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 1500);
    std::set<const void*> meshes;
    for (std::int32_t i = 0; i < load.session.loaded.drawList->count; ++i) {
        meshes.insert(load.session.loaded.drawList->items[i]->meshes);
    }
    EXPECT_EQ(meshes.size(), 1500u);
}

TEST(WorkerThreads, GiveTheSameReportTwoHundredTimes) {
    // An assembly with sub-assemblies that name the same products, so that the order of their merging shows.
    const TempFolder folder;
    AssemblyText top;
    const int root = top.Product("top");
    for (int s = 0; s < 8; ++s) {
        const std::string name = "sub" + std::to_string(s);
        const int sub = top.Product(name);
        top.Use(root, sub, At(10 * s, 0, 0));
        top.File(sub, name + ".stp");
        AssemblyText text(1 + 100 * s);
        const int subRoot = text.Product(name);
        for (int p = 0; p < 6; ++p) {
            // Every sub-assembly has its own idea of where a shared part lies.
            const std::string part = "part" + std::to_string((s + p) % 10);
            const int definition = text.Product(part);
            text.Use(subRoot, definition, At(0, p, 0));
            text.File(definition, part + " of " + name + ".stp");
            folder.Write(part + " of " + name + ".stp", PlateText(1 + s));
        }
        folder.Write(name + ".stp", text.Text());
    }
    const std::string path = folder.Write("top.stp", top.Text());
    const std::string alone = ReportOf(path, 0);
    ASSERT_NE(alone.find("part9"), std::string::npos);
    for (int round = 0; round < 200; ++round) { ASSERT_EQ(ReportOf(path, 1), alone) << "round " << round; }
}

// A part of so many plates, each a face in a shell of its own, and about 60 characters for each triangle.
std::string ManyPlates(int plates, int triangles) {
    std::vector<std::string> lines;
    std::string items;
    for (int i = 0; i < plates; ++i) {
        const std::string number = std::to_string(1000 + 10 * i);
        const std::string list = "#" + std::to_string(1001 + 10 * i);
        const std::string face = "#" + std::to_string(1002 + 10 * i);
        std::string points;
        std::string indices;
        for (int k = 0; k < triangles; ++k) {
            const std::string x = std::to_string(k * 7919 % 1000) + '.' + std::to_string(i);
            points += (k > 0 ? ",(" : "(") + x + ",1.25,0.5),(" + x + ",-2.5,1.),(3.,4.,5.)";
            const int first = 3 * k + 1;
            indices += (k > 0 ? ",(" : "(") + std::to_string(first) + "," + std::to_string(first + 1) + "," +
                       std::to_string(first + 2) + ")";
        }
        lines.push_back(list + "=COORDINATES_LIST(''," + std::to_string(3 * triangles) + ",(" + points +
                        "));");
        lines.push_back(face + "=TRIANGULATED_FACE(''," + list + "," + std::to_string(3 * triangles) +
                        ",$,$,$,(" + indices + "));");
        lines.push_back("#" + number + "=TESSELLATED_SHELL('',(" + face + "),$);");
        items += (i > 0 ? ",#" : "#") + number;
    }
    return PartText("(" + items + ")", lines);
}

TEST(WorkerThreads, TakePartInTheReadingOfALargeFile) {
    const std::string large = ManyPlates(300, 300);
    ASSERT_GT(large.size(), Helpers::kLeastBytes);
    const TempFolder folder;
    AssemblyText text;
    const int top = text.Product("top");
    for (const std::string name : {"small", "large"}) {
        const int part = text.Product(name);
        text.Use(top, part);
        text.File(part, name + ".stp");
    }
    folder.Write("small.stp", PlateText(1));
    folder.Write("large.stp", large);
    for (const std::string& path : {folder.Write("top.stp", text.Text()), folder.Path("large.stp")}) {
        const std::string alone = ReportOf(path, 0);
        for (int round = 0; round < 5; ++round) { ASSERT_TRUE(ReportOf(path, 1) == alone) << path; }
    }
}

// For as long as it lives, the thread and those that it starts run on one core.
class OneCore {
public:
    OneCore() {
        sched_getaffinity(0, sizeof former_, &former_);
        int core = 0;
        while (!CPU_ISSET(core, &former_)) { ++core; }
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(core, &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    OneCore(const OneCore&) = delete;
    OneCore& operator=(const OneCore&) = delete;
    ~OneCore() { sched_setaffinity(0, sizeof former_, &former_); }

private:
    cpu_set_t former_;
};

TEST(WorkerThreads, EndWithoutHelpToOthersOnOneCore) {
    const TempFolder folder;
    const std::string path = WriteParts(folder, 30);
    const std::string alone = ReportOf(path, 0);
    const OneCore guard;
    ASSERT_EQ(Helpers::FreeCores(), 0);
    EXPECT_EQ(ReportOf(path, 1), alone);
    EXPECT_EQ(LinesOf(LoadedFile(path, 1).console).size(), 7u);
}

TEST(WorkerThreads, TakeUpWhatASubAssemblyAddsWhileTheyRun) {
    // A chain of files, each of which is known only when the one above has been read.
    const TempFolder folder;
    for (int i = 0; i < 200; ++i) {
        AssemblyText text;
        const int parent = text.Product("level" + std::to_string(i));
        const int child = text.Product("level" + std::to_string(i + 1));
        const int part = text.Product("part" + std::to_string(i));
        text.Use(parent, child, At(1, 0, 0));
        text.Use(parent, part, At(0, 1, 0));
        text.File(child, "level" + std::to_string(i + 1) + ".stp");
        text.File(part, "part.stp");
        folder.Write("level" + std::to_string(i) + ".stp", text.Text());
    }
    folder.Write("level200.stp", PlateText(1));
    folder.Write("part.stp", PlateText(1));
    for (int round = 0; round < 5; ++round) {
        const LoadedFile load(folder.Path("level0.stp"), 1);
        EXPECT_EQ(load.session.partCount, 201);
        EXPECT_EQ(load.session.loaded.drawList->count, 201);
        EXPECT_EQ(load.session.loaded.drawnTriangles, 201);
    }
}

TEST(WorkerThreads, TellProgressOnTheThreadOfTheLoadOnly) {
    const TempFolder folder;
    const std::string path = WriteParts(folder, 300);
    LoadedScene loaded = NewScene();
    LoadSession session(loaded);
    std::set<std::thread::id> threads;
    std::int32_t lastRead = 0;
    std::int32_t lastKnown = 0;
    bool backwards = false;
    session.progress = [&](std::int32_t read, std::int32_t known) {
        threads.insert(std::this_thread::get_id());
        backwards = backwards || read < lastRead || known < lastKnown || read > known;
        lastRead = read;
        lastKnown = known;
    };
    {
        const LogCapture log;
        TraiteSTEPFile(session, path.c_str(), 1);
    }
    EXPECT_THAT(threads, ElementsAre(std::this_thread::get_id()));
    EXPECT_FALSE(backwards);
    EXPECT_EQ(lastKnown, 300);
}

TEST(WorkerThreads, ThatCannotBeStartedAreNotWaitedFor) {
    const TempFolder folder;
    const std::string path = WriteParts(folder, 30);
    const std::string alone = ReportOf(path, 0);
    const NoNewThreads guard;
    if (NoNewThreads::CanStartOne()) { GTEST_SKIP() << "threads start whatever stack they ask for"; }
    const LoadedFile load(path, 1);
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\nNumber of files=0  ; Number of parts=30 \n");
    EXPECT_EQ(load.session.loaded.drawnTriangles, 30);
    EXPECT_EQ(ReportOf(path, 1), alone);
}

TEST(WorkerThreads, ThatCannotAllBeStartedLeaveTheWorkToTheOthers) {
    if (geteuid() != 0) { GTEST_SKIP() << "needs a user without other processes"; }
    const TempFolder folder;
    // Parts that keep the first thread busy while the others are asked for.
    const std::string path = WriteParts(folder, 30, 20000);
    std::filesystem::permissions(folder.Path(""), std::filesystem::perms::all);
    std::fflush(nullptr);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // A user that nobody else is, who may have two threads beside the first.
        const rlimit limit{3, 3};
        if (setrlimit(RLIMIT_NPROC, &limit) != 0 || setresuid(54321, 54321, 54321) != 0) { _exit(77); }
        alarm(20);
        std::string console;
        std::int32_t triangles = 0;
        {
            const LoadedFile load(path, 1);
            console = load.console;
            triangles = load.session.loaded.drawnTriangles;
        }
        const bool some = console.find("End thread 1\n") != std::string::npos;
        const bool all = console.find("End thread 5\n") != std::string::npos;
        _exit(triangles != 30 * 20000 ? 1 : all ? 77 : some ? 0 : 2);
    }
    int state = 0;
    waitpid(child, &state, 0);
    ASSERT_TRUE(WIFEXITED(state)) << "signal " << WTERMSIG(state);
    if (WEXITSTATUS(state) == 77) { GTEST_SKIP() << "the limit has no effect here"; }
    EXPECT_EQ(WEXITSTATUS(state), 0);
}

} // namespace
} // namespace tarnwick::test
