#pragma once

#include "mesher/mesh_format.h"
#include "platform/service_process.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>

namespace tarnwick {

enum class MeshEnd {
    kAnswered,
    kTimeLimit,
    kCancelled,
    kCrash, // the process ended by itself
    kOutOfMemory,
    kRubbish, // what it said is no message
    kNotStarted
};

struct MeshOutcome {
    MeshEnd end = MeshEnd::kNotStarted;
    MeshAnswer answer;     // of kAnswered
    bool hasBegun = false; // whether it told of any progress
    MeshProgress progress; // the last that it told
    std::string words;     // for a user; empty where it answered
};

// A running tarnwick-mesh, for one thread at a time. It is started with the first request, and again after it
// had to be ended.
class MeshProcess {
public:
    // A limit of 0 bytes is none. `cancel` may be null, is read only, and must outlive this object.
    MeshProcess(std::string program, std::size_t memoryLimit, const std::atomic<bool>* cancel)
        : program_(std::move(program)), memoryLimit_(memoryLimit), cancel_(cancel) {}
    MeshProcess(const MeshProcess&) = delete;
    MeshProcess& operator=(const MeshProcess&) = delete;

    // Waits for the answer. `limit` is called with each progress, first with one of kReading, and returns
    // when to give up, by ClockSeconds. Unless it answered, the process is gone afterwards.
    MeshOutcome Ask(const MeshRequest& request, const std::function<double(const MeshProgress&)>& limit);

private:
    MeshOutcome AskOnce(const MeshRequest& request, const std::function<double(const MeshProgress&)>& limit);
    bool Start(std::string* words);
    bool IsCancelled() const { return cancel_ != nullptr && cancel_->load(std::memory_order_relaxed); }

    const std::string program_;
    const std::size_t memoryLimit_; // bytes
    const std::atomic<bool>* const cancel_;
    ServiceProcess process_;
};

} // namespace tarnwick
