#include "platform/interrupts.h"

#include <csignal>
#include <initializer_list>

namespace tarnwick {

void OnFirstInterrupt(void (*handler)(int)) {
    // The system forgets the handler when it calls it.
    for (const int signal : {SIGINT, SIGBREAK, SIGTERM}) { std::signal(signal, handler); }
}

} // namespace tarnwick
