#include "faults/findings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <unistd.h>

namespace tarnwick::faults {

namespace {

// The frames of a program's own code by address.
using FrameNames = std::map<std::uintptr_t, std::string>;

// "tarnwick::Arena::Allocate(unsigned long)" without what stands in parentheses.
std::string ShortName(const std::string& name) {
    std::string text;
    int depth = 0;
    for (const char c : name) {
        if (c == '<' || c == '(') { ++depth; }
        if (depth == 0) { text += c; }
        if (c == '>' || c == ')') { --depth; }
    }
    return text;
}

FrameNames NamesOf(const std::string& program, const std::set<std::uintptr_t>& addresses) {
    FrameNames names;
    const std::string list =
        (std::filesystem::temp_directory_path() / ("tarnwick-faults-" + std::to_string(getpid()))).string();
    {
        std::ofstream file(list);
        for (const std::uintptr_t address : addresses) { file << std::hex << "0x" << address << '\n'; }
    }
    // With "-i" the functions that were taken into another stand in lines of their own; "-a" tells them
    // apart.
    const std::string command = "addr2line -a -i -f -C -e '" + program + "' < '" + list + "' 2>/dev/null";
    std::FILE* const pipe = popen(command.c_str(), "r");
    char* line = nullptr;
    std::size_t room = 0;
    std::uintptr_t address = 0;
    std::string function;
    while (pipe != nullptr && getline(&line, &room, pipe) > 0) {
        std::string text = line;
        if (!text.empty() && text.back() == '\n') { text.pop_back(); }
        if (text.starts_with("0x")) {
            address = std::strtoull(text.c_str(), nullptr, 16);
            function.clear();
        } else if (function.empty()) {
            function = text;
        } else {
            const std::size_t start = text.find("/src/");
            std::string place = start != std::string::npos ? text.substr(start + 1) : "";
            if (const std::size_t after = place.find(' '); after != std::string::npos) {
                place.resize(after);
            }
            std::string& all = names[address];
            all += (all.empty() ? "" : "\n") + ShortName(function) + (place.empty() ? "" : " " + place);
            function.clear();
        }
    }
    std::free(line);
    if (pipe != nullptr) { pclose(pipe); }
    std::filesystem::remove(list);
    return names;
}

// The frames of the project's own functions.
std::vector<std::string> Stack(const std::vector<std::uintptr_t>& frames, const FrameNames& names) {
    std::vector<std::string> stack;
    for (const std::uintptr_t frame : frames) {
        const auto name = names.find(frame);
        if (name == names.end()) { continue; }
        for (const std::string& one : LinesOf(name->second)) {
            const bool own = one.starts_with("tarnwick::") || one.starts_with("main") ||
                             one.find(" src/") != std::string::npos;
            const bool library =
                one.starts_with("std::") || one.starts_with("CLI::") || one.starts_with("nlohmann::");
            if (own && !library) { stack.push_back(one); }
        }
    }
    return stack;
}

std::string Joined(const std::vector<std::string>& stack, std::size_t most, const char* between) {
    std::string text;
    for (std::size_t i = 0; i < stack.size() && i < most; ++i) { text += (i > 0 ? between : "") + stack[i]; }
    return text;
}

const std::string& FailingProgram(const Case& one) {
    return one.other.empty() ? one.program : one.other;
}

} // namespace

const char* NameOf(Fault fault) {
    constexpr const char* names[] = {"none",   "memory",  "arena",  "open",  "read",        "short-read",
                                     "status", "seek",    "map",    "write", "short-write", "close",
                                     "thread", "process", "rename", "mkdir"};
    return names[static_cast<int>(fault)];
}

std::vector<std::uintptr_t> OwnFrames(const Frames& frames, std::uintptr_t base) {
    std::vector<std::uintptr_t> own;
    for (int i = 0; i < frames.count; ++i) {
        const auto address = reinterpret_cast<std::uintptr_t>(frames.address[i]);
        // Libraries are mapped far above the program. One less is within the call.
        if (address > base && address - base < (std::uintptr_t{1} << 32)) {
            own.push_back(address - base - 1);
        }
    }
    return own;
}

std::string FindingsText(const std::vector<Finding>& findings) {
    std::map<std::string, std::set<std::uintptr_t>> addresses;
    for (const Finding& finding : findings) {
        std::set<std::uintptr_t>& own = addresses[FailingProgram(finding.one)];
        own.insert(finding.faultFrames.begin(), finding.faultFrames.end());
        own.insert(finding.crashFrames.begin(), finding.crashFrames.end());
    }
    std::map<std::string, FrameNames> names;
    for (const auto& [program, own] : addresses) { names[program] = NamesOf(program, own); }

    struct Group {
        std::vector<const Finding*> members;
        std::string stack;
    };
    std::map<std::string, Group> groups;
    for (const Finding& finding : findings) {
        const FrameNames& own = names[FailingProgram(finding.one)];
        const std::vector<std::string> crash = Stack(finding.crashFrames, own);
        const std::vector<std::string> fault = Stack(finding.faultFrames, own);
        const std::vector<std::string>& telling = crash.empty() ? fault : crash;
        Group& group = groups[std::string(NameOf(finding.verdict)) + ", " + NameOf(finding.fault) + ": " +
                              Joined(telling, 3, " < ") + (finding.line.empty() ? "" : " | says: ") +
                              WithoutNames(finding.line)];
        if (group.members.empty()) {
            group.stack = "    failed in: " + Joined(fault, 12, "\n            < ") + '\n';
            if (!crash.empty()) {
                group.stack += "    ended in:  " + Joined(crash, 12, "\n            < ") + '\n';
            }
        }
        group.members.push_back(&finding);
    }
    std::vector<const std::pair<const std::string, Group>*> order;
    for (const auto& group : groups) { order.push_back(&group); }
    std::stable_sort(order.begin(), order.end(), [](const auto* a, const auto* b) {
        return a->second.members.size() > b->second.members.size();
    });
    std::string text;
    for (const auto* const group : order) {
        const Finding& first = *group->second.members.front();
        text += std::to_string(group->second.members.size()) + " x " + group->first + '\n';
        text += "    e.g. " + first.one.name + (first.allLater ? ", from call " : ", call ") +
                std::to_string(first.at) +
                (first.signal != 0 ? ", signal " + std::to_string(first.signal) : "") + ", status " +
                std::to_string(first.status) + '\n';
        std::map<std::string, int> inputs;
        for (const Finding* const finding : group->second.members) { ++inputs[finding->input]; }
        text += "    over";
        for (const auto& [input, count] : inputs) { text += "  " + input + " " + std::to_string(count); }
        text += '\n' + group->second.stack;
    }
    return text;
}

} // namespace tarnwick::faults
