// The memory that is left, told by folders that look like those of the system.

#include "platform/memory_left.h"
#include "platform/memory_sources.h"
#include "platform/pages.h"
#include "support/sanitized.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace tarnwick::test {
namespace {

constexpr std::uint64_t kKilobyte = 1024;

class MemoryLeftTest : public testing::Test {
protected:
    MemoryLeftTest() {
        MakeFolder("proc");
        MakeFolder("proc/self");
        MakeFolder("groups");
        // 32 GB of memory, of which 8 are free and 16 can be had.
        folder_.Write("proc/meminfo", "MemTotal:       32000000 kB\n"
                                      "MemFree:         8000000 kB\n"
                                      "MemAvailable:   16000000 kB\n");
    }

    std::uint64_t Left() const {
        const std::string processes = folder_.Path("proc");
        const std::string groups = folder_.Path("groups");
        return MemoryLeft({processes.c_str(), groups.c_str()});
    }
    void Group(const std::string& folder, const std::string& limit, const std::string& used,
               const std::string& statistics = "") {
        MakeFolder("groups" + folder);
        folder_.Write("groups" + folder + "/memory.max", limit + "\n");
        folder_.Write("groups" + folder + "/memory.current", used + "\n");
        folder_.Write("groups" + folder + "/memory.stat", statistics);
    }
    void GroupOfVersion1(const std::string& folder, const std::string& limit, const std::string& used,
                         const std::string& statistics = "") {
        MakeFolder("groups" + folder);
        folder_.Write("groups" + folder + "/memory.limit_in_bytes", limit + "\n");
        folder_.Write("groups" + folder + "/memory.usage_in_bytes", used + "\n");
        folder_.Write("groups" + folder + "/memory.stat", statistics);
    }

    void MakeFolder(const std::string& name) { std::filesystem::create_directories(folder_.Path(name)); }

    static constexpr std::uint64_t kOfTheMachine = (16000000 - 32000000 / 32) * kKilobyte;
    TempFolder folder_;
};

TEST_F(MemoryLeftTest, IsWhatTheMachineCanGiveLessItsReserve) {
    EXPECT_EQ(Left(), kOfTheMachine);
}

TEST_F(MemoryLeftTest, IsWhatIsFreeWhereNoEstimateIsGiven) {
    folder_.Write("proc/meminfo", "MemTotal: 32000000 kB\nMemFree: 8000000 kB\n");
    EXPECT_EQ(Left(), (8000000 - 1000000) * kKilobyte);
}

TEST_F(MemoryLeftTest, IsNothingWhereLessThanTheReserveIsLeft) {
    folder_.Write("proc/meminfo", "MemTotal: 32000000 kB\nMemFree: 1000 kB\nMemAvailable: 2000 kB\n");
    EXPECT_EQ(Left(), 0u);
}

TEST_F(MemoryLeftTest, IsWhatTheControlGroupLeaves) {
    folder_.Write("proc/self/cgroup", "0::/user/viewer\n");
    MakeFolder("groups/user");
    Group("/user/viewer", "3200000", "1000000");
    EXPECT_EQ(Left(), 3200000u - 1000000u - 100000u);
}

TEST_F(MemoryLeftTest, CountsCopiesOfFilesInTheGroupAsFree) {
    folder_.Write("proc/self/cgroup", "0::/viewer\n");
    Group("/viewer", "3200000", "3000000",
          "anon 1000000\nfile 2000000\ninactive_file 400000\nactive_file 600000\n");
    EXPECT_EQ(Left(), 3200000u - 2000000u - 100000u);
}

TEST_F(MemoryLeftTest, IsTheLeastOfAllGroupsAbove) {
    folder_.Write("proc/self/cgroup", "0::/outer/inner\n");
    Group("/outer", "6400000", "6000000");
    Group("/outer/inner", "max", "1000");
    EXPECT_EQ(Left(), 6400000u - 6000000u - 200000u);
}

TEST_F(MemoryLeftTest, TakesTheRootWhereThePathIsOneOfTheMachineOutside) {
    folder_.Write("proc/self/cgroup", "0::/docker/abc\n");
    Group("", "3200000", "100000");
    EXPECT_EQ(Left(), 3200000u - 100000u - 100000u);
}

TEST_F(MemoryLeftTest, IsNotLimitedByAGroupWithoutALimit) {
    folder_.Write("proc/self/cgroup", "0::/viewer\n");
    Group("/viewer", "max", "1000");
    EXPECT_EQ(Left(), kOfTheMachine);
}

TEST_F(MemoryLeftTest, IsNothingInAGroupThatIsFull) {
    folder_.Write("proc/self/cgroup", "0::/viewer\n");
    Group("/viewer", "3200000", "3200000");
    EXPECT_EQ(Left(), 0u);
}

TEST_F(MemoryLeftTest, KnowsControlGroupsOfVersion1) {
    folder_.Write("proc/self/cgroup", "5:cpuset:/elsewhere\n4:cpu,memory:/viewer\n1:name=systemd:/viewer\n");
    MakeFolder("groups/memory");
    GroupOfVersion1("/memory/viewer", "3200000", "3000000",
                    "inactive_file 7\ntotal_inactive_file 500000\ntotal_active_file 500000\n");
    EXPECT_EQ(Left(), 3200000u - 2000000u - 100000u);
    folder_.Write("proc/self/cgroup", "4:memory:/docker/abc\n");
    GroupOfVersion1("/memory", "6400000", "200000");
    EXPECT_EQ(Left(), 6400000u - 200000u - 200000u);
}

TEST_F(MemoryLeftTest, IsNotLimitedByTheEndlessLimitOfVersion1) {
    folder_.Write("proc/self/cgroup", "4:memory:/\n");
    MakeFolder("groups/memory");
    GroupOfVersion1("/memory", "9223372036854771712", "1000");
    EXPECT_EQ(Left(), kOfTheMachine);
}

TEST_F(MemoryLeftTest, TakesNoHarmFromTextsThatAreOdd) {
    for (const char* const text :
         {"", ":", "::", "0::", "0::\n", "0:memory\n", "4:memory:", "\n\n", "0::relative"}) {
        folder_.Write("proc/self/cgroup", text);
        EXPECT_EQ(Left(), kOfTheMachine) << text;
    }
    folder_.Write("proc/self/cgroup", "0::/" + std::string(5000, 'a') + "\n");
    EXPECT_EQ(Left(), kOfTheMachine);
}

TEST_F(MemoryLeftTest, IsWhatTheAddressSpaceLeaves) {
    if (kSanitized) { GTEST_SKIP() << "a sanitizer needs more address space than any limit leaves"; }
    // 1000 pages are taken, as this says.
    folder_.Write("proc/self/statm", "1000 500 300 10 0 200 0\n");
    const pid_t child = fork();
    if (child == 0) {
        const rlimit limit{std::uint64_t{3200} << 20, std::uint64_t{3200} << 20};
        setrlimit(RLIMIT_AS, &limit);
        const std::uint64_t expected =
            (std::uint64_t{3100} << 20) - 1000 * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
        _exit(Left() == expected ? 0 : 1);
    }
    int state = 0;
    waitpid(child, &state, 0);
    EXPECT_EQ(state, 0);
}

TEST_F(MemoryLeftTest, IsLeftForASmallBlockAndNotForAllThatThereCouldBe) {
    EXPECT_TRUE(IsMemoryLeft(1));
    EXPECT_FALSE(IsMemoryLeft(SIZE_MAX / 2));
}

} // namespace
} // namespace tarnwick::test
