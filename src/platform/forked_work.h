#pragma once

#include <cstdio>
#include <functional>

namespace tarnwick {

// Work that a copy of this process does, so that whatever ends it or keeps it for ever does us no harm. Its
// standard error comes to us, its standard output goes nowhere. To be started while there is no other thread.
class ForkedWork {
public:
    // Has the copy do `work` and then end, without the ends of static objects. Where no copy can be made,
    // there is nothing to read.
    explicit ForkedWork(const std::function<void()>& work);
    ForkedWork(const ForkedWork&) = delete;
    ForkedWork& operator=(const ForkedWork&) = delete;
    ~ForkedWork();

    // Whether there is a copy.
    bool IsThere() const { return process_ > 0; }
    // The next character of its standard error, or EOF when it has ended or closed that.
    int Next() { return stream_ != nullptr ? std::getc(stream_) : EOF; }
    // Ends it if need be and waits until it has.
    void End(bool kill);

private:
    std::FILE* stream_ = nullptr;
    int process_ = 0; // 0 when there is none to wait for
};

} // namespace tarnwick
