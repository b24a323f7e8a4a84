// No process can be copied here: nothing is tried, and the caller says so.

#include "platform/forked_work.h"

namespace tarnwick {

ForkedWork::ForkedWork(const std::function<void()>&) {}

ForkedWork::~ForkedWork() = default;

void ForkedWork::End(bool) {}

} // namespace tarnwick
