#pragma once

#include <cstdio>
#include <functional>

namespace tarnwick {

// Runs work in a forked copy of this process, so that a crash or a hang there does us no harm. We read its
// standard error; its standard output is discarded. Start it while there is no other thread.
class ForkedWork {
public:
    // The copy runs `work` and exits without destroying static objects. If no copy can be made, there is
    // nothing to read.
    explicit ForkedWork(const std::function<void()>& work);
    ForkedWork(const ForkedWork&) = delete;
    ForkedWork& operator=(const ForkedWork&) = delete;
    ~ForkedWork();

    // Whether there is a copy.
    bool IsThere() const { return process_ > 0; }
    // Whether there is none because memory ran out.
    bool LacksMemory() const { return lacksMemory_; }
    // The next character of its standard error, or EOF when it has ended or closed that.
    int Next() { return stream_ != nullptr ? std::getc(stream_) : EOF; }
    // Waits for the copy to end; with `kill` ends it first.
    void End(bool kill);

private:
    std::FILE* stream_ = nullptr;
    int process_ = 0; // 0 when there is none to wait for
    bool lacksMemory_ = false;
};

} // namespace tarnwick
