#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace tarnwick {

// Handles texts one after the other on a thread of its own, so that no caller waits: neither the network's
// thread nor the dialog's.
class MessageQueue {
public:
    explicit MessageQueue(std::function<void(const std::string&)> handle) : handle_(std::move(handle)) {}
    MessageQueue(const MessageQueue&) = delete;
    MessageQueue& operator=(const MessageQueue&) = delete;
    ~MessageQueue() { Stop(); }

    // Takes a text, on any thread. False when more than kMostBytes would wait, or after Stop. Throws what the
    // standard library throws when there is no memory, or no thread, for it; then the text isn't taken.
    bool Push(std::string text);

    // Waits until the current text is handled; drops the others.
    void Stop();

    // The most that may wait: far more than any service sends, far less than a machine's memory.
    static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

private:
    void Run();
    static std::size_t BytesOf(const std::string& text) { return text.size() + sizeof text; }

    std::function<void(const std::string&)> handle_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::deque<std::string> texts_;
    std::size_t bytes_ = 0;
    bool stopped_ = false;
    std::thread thread_; // started by the first text
};

} // namespace tarnwick
