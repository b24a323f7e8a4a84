#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>

namespace tarnwick {

// Threads that take part in the work of another thread while they have none of their own.
class Helpers {
public:
    // Called with true on the thread whose work it is, with false on a helper. It throws nothing.
    using Work = std::function<void(bool isOwn)>;

    static constexpr int kMost = 5;
    // Help with a file pays from this many bytes on.
    static constexpr std::size_t kLeastBytes = std::size_t{4} << 20;

    virtual ~Helpers() = default;

    // How many may take part beside the thread whose work it is.
    int Count() const { return count_; }
    // Whether they are worth calling for a file of so many bytes.
    bool AreFor(std::size_t bytes) const { return count_ > 0 && bytes >= leastBytes_; }

    // Calls `work` on the calling thread and, until that call returns, on each helper that is free; returns
    // when all calls have returned. No call may rely on another one.
    virtual void Run(const Work& work) = 0;

    // As many as there are cores for beside the calling thread, kMost at most.
    static int FreeCores();

protected:
    Helpers(int count, std::size_t leastBytes) : count_(count), leastBytes_(leastBytes) {}

private:
    const int count_;
    const std::size_t leastBytes_;
};

// Helpers that are started for each piece of work; if the system refuses to start some, the work goes on
// without them.
class StartedHelpers final : public Helpers {
public:
    explicit StartedHelpers(int count = FreeCores(), std::size_t leastBytes = kLeastBytes)
        : Helpers(count, leastBytes) {}

    void Run(const Work& work) override;
};

// Helpers that are the threads of one loop, each once it has nothing left to do. Any thread may call all of
// this.
class IdleHelpers final : public Helpers {
public:
    explicit IdleHelpers(int count = FreeCores(), std::size_t leastBytes = kLeastBytes)
        : Helpers(count, leastBytes) {}

    void Run(const Work& work) override;

    // A thread of the loop begins, or ends, a stretch of its own work.
    void Begin();
    void End();

    // How the wait ended.
    enum class Outcome { kHelped, kNobodyBusy, kTimeOver };

    // Called on a thread between End and Begin: waits until another thread offers work, and takes part in it.
    // The wait ends after `milliseconds` (never for 0), or when no thread is busy any more.
    Outcome Help(int milliseconds);

private:
    // Work that can be joined, on the stack of the thread whose work it is.
    struct Offer {
        const Work* work;
        int joined = 0; // helpers that have come
        int inside = 0; // those that haven't left
        Offer* next = nullptr;
    };

    Offer* Open();
    void Close(const Offer* offer);

    std::mutex lock_; // guards what follows
    std::condition_variable changed_;
    Offer* offers_ = nullptr; // those that can still be joined
    int busy_ = 0;
};

} // namespace tarnwick
