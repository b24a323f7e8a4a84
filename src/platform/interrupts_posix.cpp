#include "platform/interrupts.h"

#include <csignal>

namespace tarnwick {

void OnFirstInterrupt(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

} // namespace tarnwick
