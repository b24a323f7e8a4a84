#pragma once

#include "platform/helpers.h"

namespace tarnwick::test {

// A helper that does all it can before the thread whose work it is begins, and on that thread.
class HelpersFirst final : public Helpers {
public:
    HelpersFirst() : Helpers(1, 0) {}
    void Run(const Work& work) override {
        work(false);
        work(true);
    }
};

} // namespace tarnwick::test
