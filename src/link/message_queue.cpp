#include "link/message_queue.h"

#include "platform/console.h"
#include "platform/within_memory.h"

namespace tarnwick {

bool MessageQueue::Push(std::string text) {
    const std::lock_guard<std::mutex> hold(lock_);
    const std::size_t bytes = BytesOf(text);
    if (stopped_ || bytes > kMostBytes - bytes_) { return false; }
    // First, since without a thread the text would wait for ever, and its bytes would stay counted.
    if (!thread_.joinable()) {
        thread_ = std::thread([this] { Run(); });
    }
    texts_.push_back(std::move(text));
    bytes_ += bytes;
    changed_.notify_one();
    return true;
}

void MessageQueue::Stop() {
    {
        const std::lock_guard<std::mutex> hold(lock_);
        stopped_ = true;
        changed_.notify_one();
    }
    if (thread_.joinable()) { thread_.join(); }
}

void MessageQueue::Run() {
    std::unique_lock<std::mutex> hold(lock_);
    while (true) {
        changed_.wait(hold, [this] { return stopped_ || !texts_.empty(); });
        if (stopped_) { return; }
        const std::string text = std::move(texts_.front());
        texts_.pop_front();
        bytes_ -= BytesOf(text);
        hold.unlock();
        if (!WithinMemory([&] { handle_(text); })) {
            ConsolePrint("<E> Message of the server: it needs more memory than there is\n");
        }
        hold.lock();
    }
}

} // namespace tarnwick
