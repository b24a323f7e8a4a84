#include "platform/stall.h"

#include "platform/console.h"

#include <windows.h>

namespace tarnwick {

void Stall(const char* name, const char* reason) {
    ConsolePrint("<E> %s: reading stands still, %s\n", name, reason);
    for (;;) { Sleep(INFINITE); }
}

} // namespace tarnwick
