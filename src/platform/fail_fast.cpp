#include "platform/fail_fast.h"

#include <cstdlib>

namespace tarnwick {

void FailFast() {
    std::_Exit(kFailFastStatus);
}

} // namespace tarnwick
