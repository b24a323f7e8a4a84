#include "platform/flush_output.h"

#include <cerrno>
#include <cstdio>

namespace tarnwick {

int FlushOutput() {
    errno = 0;
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) { return 0; }
    return errno != 0 ? errno : EIO;
}

} // namespace tarnwick
