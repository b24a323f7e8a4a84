#pragma once

#include "platform/helpers.h"

namespace tarnwick::test {

// Helpers that do all they can before the calling thread begins, and on that thread; one more of them than
// there can be.
class HelpersFirst final : public Helpers {
public:
    HelpersFirst() : Helpers(1, 0) {}
    void Run(const Work& work) override {
        for (int i = 0; i <= kMost; ++i) { work(false); }
        work(true);
    }
};

} // namespace tarnwick::test
