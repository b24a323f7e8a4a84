#include "faults/program_run.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>

namespace tarnwick::faults {

namespace {

constexpr int kPlanNumber = 200; // of the plan's file in the program

[[noreturn]] void Stop(const char* what) {
    std::perror(what);
    std::exit(3);
}

int NewMemoryFile(const char* name) {
    const int file = memfd_create(name, MFD_CLOEXEC);
    if (file < 0) { Stop("memfd_create"); }
    return file;
}

// Blots out the number in front of `from`, with the blanks before it.
void BlotNumber(std::string* text, std::size_t* from) {
    std::size_t start = *from;
    while (start > 0 && std::string("0123456789. ").find((*text)[start - 1]) != std::string::npos) {
        --start;
    }
    text->replace(start, *from - start, " *");
    *from = start + 2;
}

} // namespace

std::string WithoutTimes(std::string text) {
    for (const std::string told : {" (was there already)", "\"unchanged\":true,", "\"unchanged\":false,"}) {
        for (std::size_t at = 0; (at = text.find(told, at)) != std::string::npos;) {
            text.erase(at, told.size());
        }
    }
    for (const char* const after : {" s -> ", ",\"cancelled\""}) {
        for (std::size_t at = 0; (at = text.find(after, at)) != std::string::npos; ++at) {
            BlotNumber(&text, &at);
        }
    }
    for (std::size_t at = 0; (at = text.find("CPU tot:", at)) != std::string::npos;) {
        std::size_t end = text.find("s ", at);
        if (end == std::string::npos) { break; }
        BlotNumber(&text, &end);
        at = end;
    }
    return text;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

Runner::Runner(std::string preload, std::filesystem::path folder)
    : preload_(std::move(preload)), folder_(std::move(folder)), planFile_(NewMemoryFile("plan")),
      outputFile_(NewMemoryFile("output")), errorFile_(NewMemoryFile("errors")) {
    if (ftruncate(planFile_, sizeof(Plan)) != 0) { Stop("ftruncate"); }
    void* const record = mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED, planFile_, 0);
    if (record == MAP_FAILED) { Stop("mmap"); }
    plan_ = static_cast<Plan*>(record);
    std::filesystem::create_directories(folder_);
}

Runner::~Runner() {
    munmap(plan_, sizeof(Plan));
    for (const int file : {planFile_, outputFile_, errorFile_}) { close(file); }
    std::filesystem::remove_all(folder_);
}

void Runner::ClearFolder() {
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        std::filesystem::remove_all(entry.path());
    }
}

// What a program said or wrote names files in folders that are others in each run.
std::string Runner::WithoutFolders(std::string text) const {
    for (const std::string& folder : {folder_.string(), folder_.parent_path().string()}) {
        for (std::size_t at = 0; (at = text.find(folder + '/', at)) != std::string::npos;) {
            text.erase(at, folder.size() + 1);
        }
    }
    return text;
}

std::string Runner::TakeText(int file) {
    const off_t size = lseek(file, 0, SEEK_END);
    std::string text(static_cast<std::size_t>(size), '\0');
    if (pread(file, text.data(), text.size(), 0) != size) { Stop("pread"); }
    return WithoutFolders(std::move(text));
}

Ending Runner::Run(const Case& one, Fault fault, std::int64_t at, bool allLater) {
    new (plan_) Plan{};
    plan_->fault = fault;
    plan_->at = at;
    plan_->allLater = allLater ? 1 : 0;
    plan_->ofOthers = one.other.empty() ? 0 : 1;
    ClearFolder();
    if (!one.before.empty()) {
        std::filesystem::copy(one.before, folder_, std::filesystem::copy_options::recursive);
    }
    for (const int file : {outputFile_, errorFile_}) {
        if (ftruncate(file, 0) != 0 || lseek(file, 0, SEEK_SET) != 0) { Stop("ftruncate"); }
    }
    std::vector<std::string> words{one.program};
    for (std::string word : one.arguments) {
        const std::size_t place = word.find("%o");
        if (place != std::string::npos) { word.replace(place, 2, folder_.string()); }
        words.push_back(std::move(word));
    }
    // Blocks that are freed are filled, so that nothing reads them unnoticed.
    std::vector<std::string> settings{
        "LD_PRELOAD=" + preload_, kPlanVariable + ("=" + std::to_string(kPlanNumber)), "LC_ALL=C",
        "MALLOC_PERTURB_=165", "XDG_CACHE_HOME=" + (folder_ / "cache").string()};
    settings[0] += one.preloaded.empty() ? "" : ":" + one.preloaded;
    std::vector<char*> argv;
    for (std::string& word : words) { argv.push_back(word.data()); }
    argv.push_back(nullptr);
    std::vector<char*> environment;
    for (std::string& setting : settings) { environment.push_back(setting.data()); }
    environment.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outputFile_, 1);
    posix_spawn_file_actions_adddup2(&actions, errorFile_, 2);
    posix_spawn_file_actions_adddup2(&actions, planFile_, kPlanNumber);
    pid_t child = 0;
    const int error =
        posix_spawn(&child, one.program.c_str(), &actions, nullptr, argv.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) { Stop(one.program.c_str()); }

    Ending ending;
    // The C library has no function for this in C++.
    pollfd end{static_cast<int>(syscall(SYS_pidfd_open, child, 0)), POLLIN, 0};
    if (end.fd < 0) { Stop("pidfd_open"); }
    if (poll(&end, 1, one.milliseconds) == 0) {
        ending.hangs = true;
        kill(child, SIGKILL);
    }
    close(end.fd);
    int state = 0;
    waitpid(child, &state, 0);
    if (WIFSIGNALED(state)) { ending.signal = WTERMSIG(state); }
    if (WIFEXITED(state)) { ending.status = WEXITSTATUS(state); }
    ending.output = TakeText(outputFile_);
    ending.errors = TakeText(errorFile_);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_)) {
        if (!entry.is_regular_file()) { continue; }
        std::ifstream file(entry.path(), std::ios::binary);
        ending.files[entry.path().lexically_relative(folder_).string()] =
            WithoutFolders({std::istreambuf_iterator<char>(file), {}});
    }
    return ending;
}

} // namespace tarnwick::faults
