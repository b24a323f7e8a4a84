#pragma once

namespace tarnwick {

// Calls `handler` at the first Ctrl-C or SIGTERM, which then doesn't end the program; the second one does.
// `handler` may only set atomic variables: it runs in the midst of anything.
void OnFirstInterrupt(void (*handler)(int));

} // namespace tarnwick
