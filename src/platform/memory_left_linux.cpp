#include "platform/memory_left.h"
#include "platform/memory_sources.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tarnwick {

namespace {

constexpr std::uint64_t kEndless = UINT64_MAX;

// A small text of the system on the stack: a stream would ask for memory.
class SystemText {
public:
    [[gnu::format(printf, 2, 3)]] explicit SystemText(const char* format, ...) {
        char path[4096];
        std::va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(path, sizeof path, format, arguments);
        va_end(arguments);
        const int file =
            length >= 0 && length < static_cast<int>(sizeof path) ? open(path, O_RDONLY | O_CLOEXEC) : -1;
        if (file < 0) { return; }
        std::size_t size = 0;
        ssize_t got = 0;
        while ((got = read(file, text_ + size, sizeof text_ - 1 - size)) > 0) {
            size += static_cast<std::size_t>(got);
        }
        close(file);
        text_[size] = '\0';
    }

    const char* Start() const { return text_; }
    bool IsEmpty() const { return text_[0] == '\0'; }

    // The number of the line that begins with `key`; false when there is none.
    bool Find(const char* key, std::uint64_t* number) const {
        const std::size_t length = std::strlen(key);
        for (const char* line = text_; line != nullptr && *line != '\0';) {
            if (std::strncmp(line, key, length) == 0) { return ReadNumber(line + length, number); }
            line = std::strchr(line, '\n');
            if (line != nullptr) { ++line; }
        }
        return false;
    }

    // A number, or false for the "max" of no limit.
    static bool ReadNumber(const char* text, std::uint64_t* number) {
        char* end = nullptr;
        *number = std::strtoull(text, &end, 10);
        return end != text;
    }

private:
    char text_[8192] = {};
};

// `left` less a part of the whole that others need.
std::uint64_t LessReserve(std::uint64_t left, std::uint64_t whole) {
    const std::uint64_t reserve = whole / 32;
    return left > reserve ? left - reserve : 0;
}

std::uint64_t MachineLeft(const char* processes) {
    const SystemText text("%s/meminfo", processes);
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    std::uint64_t available = 0;
    if (text.Find("MemTotal:", &total) && text.Find("MemFree:", &free)) {
        if (!text.Find("MemAvailable:", &available)) { available = free; }
        return LessReserve(std::max(free, available) << 10, total << 10);
    }
    struct sysinfo info;
    if (sysinfo(&info) != 0) { return kEndless; }
    return LessReserve(std::uint64_t{info.freeram} * info.mem_unit,
                       std::uint64_t{info.totalram} * info.mem_unit);
}

std::uint64_t AddressSpaceLeft(const char* processes) {
    struct rlimit limit;
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) { return kEndless; }
    const SystemText text("%s/self/statm", processes);
    std::uint64_t pages = 0;
    if (!SystemText::ReadNumber(text.Start(), &pages)) { return kEndless; }
    const std::uint64_t used = pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    return used < limit.rlim_cur ? LessReserve(limit.rlim_cur - used, limit.rlim_cur) : 0;
}

// What the files of one version of control groups are called.
struct GroupNames {
    const char* root; // below the folder of all groups
    const char* limit;
    const char* used;
    const char* droppable[2]; // lines of memory.stat
};

constexpr GroupNames kVersion1{"/memory",
                               "memory.limit_in_bytes",
                               "memory.usage_in_bytes",
                               {"total_inactive_file ", "total_active_file "}};
constexpr GroupNames kVersion2{"", "memory.max", "memory.current", {"inactive_file ", "active_file "}};

// What one group leaves; `folder` ends before a "/".
std::uint64_t GroupLeft(const GroupNames& names, const char* folder) {
    std::uint64_t limit = 0;
    std::uint64_t used = 0;
    if (!SystemText::ReadNumber(SystemText("%s/%s", folder, names.limit).Start(), &limit) ||
        !SystemText::ReadNumber(SystemText("%s/%s", folder, names.used).Start(), &used)) {
        return kEndless;
    }
    const SystemText statistics("%s/memory.stat", folder);
    for (const char* const line : names.droppable) {
        std::uint64_t bytes = 0;
        if (statistics.Find(line, &bytes)) { used -= std::min(used, bytes); }
    }
    return used < limit ? LessReserve(limit - used, limit) : 0;
}

// The least that a group and those around it leave. Within a container the path may be one of the machine
// outside; the container's own group is the root then.
std::uint64_t GroupsLeft(const GroupNames& names, const char* controlGroups, const char* path,
                         std::size_t pathLength) {
    char folder[4096];
    const int length = std::snprintf(folder, sizeof folder, "%s%s%.*s", controlGroups, names.root,
                                     static_cast<int>(pathLength), path);
    const std::size_t root = std::strlen(controlGroups) + std::strlen(names.root);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof folder) { return kEndless; }
    std::uint64_t left = kEndless;
    for (;;) {
        left = std::min(left, GroupLeft(names, folder));
        char* const last = std::strrchr(folder + root, '/');
        if (last == nullptr) { return left; }
        *last = '\0';
    }
}

// Whether "cpu,memory" has "memory".
bool HasMemory(const char* controllers, const char* end) {
    constexpr std::size_t length = 6;
    for (const char* p = controllers; p < end;) {
        const char* const comma = std::find(p, end, ',');
        if (comma - p == length && std::strncmp(p, "memory", length) == 0) { return true; }
        p = comma < end ? comma + 1 : end;
    }
    return false;
}

std::uint64_t ControlGroupsLeft(const MemorySources& sources) {
    const SystemText text("%s/self/cgroup", sources.processes);
    std::uint64_t left = kEndless;
    // Lines of "NUMBER:CONTROLLERS:PATH"; version 2 has number 0 and no controllers.
    for (const char* line = text.Start(); *line != '\0';) {
        const char* end = std::strchr(line, '\n');
        if (end == nullptr) { end = line + std::strlen(line); }
        const char* const first = std::find(line, end, ':');
        const char* const second = first < end ? std::find(first + 1, end, ':') : end;
        if (second < end) {
            const char* const path = second + 1;
            const auto length = static_cast<std::size_t>(end - path);
            if (second == first + 1) {
                left = std::min(left, GroupsLeft(kVersion2, sources.controlGroups, path, length));
            } else if (HasMemory(first + 1, second)) {
                left = std::min(left, GroupsLeft(kVersion1, sources.controlGroups, path, length));
            }
        }
        line = *end != '\0' ? end + 1 : end;
    }
    return left;
}

} // namespace

std::uint64_t MemoryLeft(const MemorySources& sources) {
    return std::min(
        {MachineLeft(sources.processes), AddressSpaceLeft(sources.processes), ControlGroupsLeft(sources)});
}

std::uint64_t MemoryLeft() {
    return MemoryLeft(MemorySources{});
}

} // namespace tarnwick
