// This system can't copy a process: nothing is tried, and the caller says so.

#include "platform/forked_work.h"

namespace tarnwick {

ForkedWork::ForkedWork(const std::function<void()>&) {}

ForkedWork::~ForkedWork() = default;

void ForkedWork::End(bool) {}

} // namespace tarnwick
