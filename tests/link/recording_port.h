// A dialog that only notes what the link does to it.
#pragma once

#include "link/link_port.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace tarnwick::test {

class RecordingPort : public LinkPort {
public:
    std::vector<std::string> Done() {
        const std::lock_guard<std::mutex> hold(lock_);
        return done_;
    }
    std::vector<std::vector<std::string>> Programs() {
        const std::lock_guard<std::mutex> hold(lock_);
        return programs_;
    }
    // These wait for some seconds, and tell whether it has been done.
    bool WaitFor(const std::string& what) {
        std::unique_lock<std::mutex> hold(lock_);
        return changed_.wait_for(hold, kPatience,
                                 [&] { return std::find(done_.begin(), done_.end(), what) != done_.end(); });
    }
    bool WaitForCount(std::size_t count) {
        std::unique_lock<std::mutex> hold(lock_);
        return changed_.wait_for(hold, kPatience, [&] { return done_.size() >= count; });
    }

    bool SetLinkText(const std::string& text) override { return Note("text " + text); }
    bool CopyToClipboard(const std::string& text) override { return Note("clipboard " + text); }
    bool ShowMessage(const std::string& caption, const std::string& text) override {
        return Note("box " + caption + ": " + text);
    }
    bool Load(const std::string& arguments) override { return Note("load " + arguments); }
    bool Invalidate() override { return Note("invalidate"); }
    bool RunProgram(const std::vector<std::string>& command) override {
        {
            const std::lock_guard<std::mutex> hold(lock_);
            programs_.push_back(command);
        }
        Note("run " + command.front());
        return runProgram ? runProgram(command) : true;
    }
    void StartProgram(const std::vector<std::string>& names,
                      const std::vector<std::string>& arguments) override {
        std::vector<std::string> all = names;
        all.insert(all.end(), arguments.begin(), arguments.end());
        {
            const std::lock_guard<std::mutex> hold(lock_);
            programs_.push_back(all);
        }
        Note("start " + names.front());
    }
    std::string DownloadFolder() override { return downloadFolder; }

    // What a program that is run does, and whether it ends with status 0.
    std::function<bool(const std::vector<std::string>&)> runProgram;
    std::string downloadFolder = "/downloads";

private:
    static constexpr std::chrono::seconds kPatience{60};

    bool Note(const std::string& what) {
        const std::lock_guard<std::mutex> hold(lock_);
        done_.push_back(what);
        changed_.notify_all();
        return true;
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::vector<std::string> done_;
    std::vector<std::vector<std::string>> programs_;
};

} // namespace tarnwick::test
